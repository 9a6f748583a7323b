#include "common/mediakind.h"

#include <QStringView>

namespace mms {

MediaKind mediaKindOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    if (dot < 0 || dot < slash) return MediaKind::Other;
    const QStringView extension = QStringView(path).mid(dot + 1);
    const auto is = [&](const char* name) {
        return extension.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    };
    if (is("gif")) return MediaKind::Gif;
    if (is("jpg") || is("jpeg") || is("jpe")) return MediaKind::Jpeg;
    if (is("bmp")) return MediaKind::Bmp;
    if (is("png")) return MediaKind::Png;
    if (is("3gp")) return MediaKind::Video3gp;
    if (is("amr")) return MediaKind::Amr;
    if (is("mid")) return MediaKind::Midi;
    if (is("txt")) return MediaKind::Text;
    if (is("smil")) return MediaKind::Smil;
    return MediaKind::Other;
}

bool isPicture(const QString& path) {
    const MediaKind kind = mediaKindOf(path);
    return kind == MediaKind::Gif || kind == MediaKind::Jpeg || kind == MediaKind::Bmp;
}

bool isVideoClip(const QString& path) {
    return mediaKindOf(path) == MediaKind::Video3gp;
}

bool isSound(const QString& path) {
    const MediaKind kind = mediaKindOf(path);
    return kind == MediaKind::Amr || kind == MediaKind::Midi;
}

bool matchesGifPattern(const QString& path) {
    return path.endsWith(QLatin1String(".gif")) || path.endsWith(QLatin1String(".GIF"));
}

bool matchesClipPattern(const QString& path) {
    return path.endsWith(QLatin1String(".3gp"));
}

} // namespace mms
