#pragma once

#include "support/tempdir.h"

#include <QLibraryInfo>
#include <QSettings>
#include <QStandardPaths>

namespace mms::test {

// The user's settings live in a scratch folder for as long as this object does.
class ScratchSettings {
public:
    ScratchSettings() { QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir_.path()); }
    ~ScratchSettings() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    }
    ScratchSettings(const ScratchSettings&) = delete;
    ScratchSettings& operator=(const ScratchSettings&) = delete;

private:
    TempDir dir_;
};

} // namespace mms::test
