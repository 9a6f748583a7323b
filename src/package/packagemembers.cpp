#include "package/packagemembers.h"

#include "common/mediakind.h"
#include "model/cslide.h"

#include <QFile>

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

const char* sniffedPictureType(const QString& path) {
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(8) : QByteArray();
    if (head.startsWith("GIF8")) return "image/gif";
    if (head.startsWith("\xFF\xD8\xFF")) return "image/jpeg";
    if (head.startsWith("\x89PNG")) return "image/png";
    if (head.startsWith("BM")) return "image/bmp";
    return "application/octet-stream";
}

const char* mimeTypeOf(MediaKind kind) {
    switch (kind) {
    case MediaKind::Gif:
        return "image/gif";
    case MediaKind::Jpeg:
        return "image/jpeg";
    case MediaKind::Bmp:
        return "image/bmp";
    case MediaKind::Png:
        return "image/png";
    case MediaKind::Video3gp:
        return "video/3gpp";
    case MediaKind::Amr:
        return "audio/amr";
    case MediaKind::Midi:
        return "audio/midi";
    case MediaKind::Text:
        return "text/plain";
    case MediaKind::Smil:
        return "application/smil";
    case MediaKind::Other:
        break;
    }
    return nullptr;
}

QString memberMimeType(const QString& path) {
    const char* type = mimeTypeOf(mediaKindOf(path));
    return QLatin1String(type ? type : sniffedPictureType(path));
}

} // namespace mms
