#include "common/mediakind.h"

#include <QStringList>
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

bool isVideoFile(const QString& path) {
    static const QStringList kinds{QStringLiteral("mp4"), QStringLiteral("m4v"), QStringLiteral("mov"),
                                   QStringLiteral("3gp"), QStringLiteral("3g2"), QStringLiteral("webm"),
                                   QStringLiteral("mkv"), QStringLiteral("avi"), QStringLiteral("ogv")};
    const QString name =
        path.mid(qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\'))) + 1);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 && kinds.contains(name.mid(dot + 1).toLower());
}

} // namespace mms
