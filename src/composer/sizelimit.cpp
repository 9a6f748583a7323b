#include "composer/sizelimit.h"

#include <QSettings>
#include <QVariant>

namespace mms {

namespace {

// Beside the language setting, in the same place.
const QString kOrganisation = QStringLiteral("Morvane");
const QString kKey = QStringLiteral("MessageSizeLimit");

} // namespace

qint64 readSizeLimitSetting() {
    bool ok = false;
    const QSettings settings(QSettings::NativeFormat, QSettings::UserScope, kOrganisation);
    const qint64 bytes = settings.value(kKey).toLongLong(&ok);
    if (!ok || bytes < kMinCustomLimitKB * 1024 || bytes > qint64(kMaxCustomLimitKB) * 1024)
        return kDefaultSizeLimit;
    return bytes;
}

void writeSizeLimitSetting(qint64 bytes) {
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope, kOrganisation);
    settings.setValue(kKey, bytes);
}

GaugeLevel gaugeLevel(qint64 size, qint64 limit) {
    if (size > limit) return GaugeLevel::Over;
    return size * 10 > limit * 9 ? GaugeLevel::Near : GaugeLevel::Normal;
}

} // namespace mms
