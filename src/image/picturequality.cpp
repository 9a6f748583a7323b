#include "image/picturequality.h"

#include <QSettings>
#include <QVariant>

namespace mms {

namespace {

// With the language and the size limit, in the organisation's settings.
const QString kOrganisation = QStringLiteral("Morvane");
const QString kKey = QStringLiteral("PictureQuality");

} // namespace

std::optional<int> parsePictureQuality(const QString& text) {
    bool ok = false;
    const int quality = text.toInt(&ok);
    if (!ok || quality < 1 || quality > 100) return std::nullopt;
    return quality;
}

int readPictureQualitySetting() {
    const QSettings settings(QSettings::NativeFormat, QSettings::UserScope, kOrganisation);
    return parsePictureQuality(settings.value(kKey).toString()).value_or(kJpegQuality);
}

void writePictureQualitySetting(int quality) {
    QSettings settings(QSettings::NativeFormat, QSettings::UserScope, kOrganisation);
    settings.setValue(kKey, quality);
}

} // namespace mms
