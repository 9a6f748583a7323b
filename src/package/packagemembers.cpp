#include "package/packagemembers.h"

#include "common/mediakind.h"
#include "model/cslide.h"

namespace mms {

namespace {

bool isPlainSuffix(const QString& suffix) {
    if (suffix.isEmpty()) return false;
    for (QChar c : suffix)
        if (!((c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
              (c >= QLatin1Char('0') && c <= QLatin1Char('9'))))
            return false;
    return true;
}

} // namespace

PictureMember pictureMember(const QString& path, int n) {
    const QString number = QString::number(n);
    if (isVideoClip(path)) return {QStringLiteral("vdo") + number + QStringLiteral(".3gp"), true};
    const QString fileName = CSlide::extractFileName(path);
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    QString suffix = dot < 0 ? QString() : fileName.mid(dot + 1).toLower();
    if (!isPlainSuffix(suffix)) suffix = QStringLiteral("bin");
    return {QStringLiteral("pic") + number + QLatin1Char('.') + suffix};
}

QString soundMember(const QString& path, int n) {
    const bool midi = mediaKindOf(path) == MediaKind::Midi;
    return QStringLiteral("sound") + QString::number(n) +
           (midi ? QStringLiteral(".mid") : QStringLiteral(".amr"));
}

} // namespace mms
