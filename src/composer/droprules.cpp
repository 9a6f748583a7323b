#include "composer/droprules.h"

#include "common/mediakind.h"

#include <QFileInfo>

namespace mms {

DropKind dropKindOf(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile()) return DropKind::Refused;
    if (isPicture(path) || isVideoClip(path)) return DropKind::Picture;
    if (isSound(path)) return DropKind::Sound;
    return DropKind::Refused;
}

} // namespace mms
