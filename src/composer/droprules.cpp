#include "composer/droprules.h"

#include <QFileInfo>

namespace mms {

DropKind dropKindOf(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile()) return DropKind::Refused;
    const QString type = info.suffix().toLower();
    if (type == QLatin1String("gif") || type == QLatin1String("jpg") || type == QLatin1String("jpeg") ||
        type == QLatin1String("bmp") || type == QLatin1String("3gp"))
        return DropKind::Picture;
    if (type == QLatin1String("amr") || type == QLatin1String("mid")) return DropKind::Sound;
    return DropKind::Refused;
}

} // namespace mms
