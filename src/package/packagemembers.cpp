#include "package/packagemembers.h"

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
    const QString type = CSlide::extractFileType(path).toLower();
    const QString number = QString::number(n);
    if (type == QLatin1String("gif") || type == QLatin1String("jpg") || type == QLatin1String("bmp"))
        return {QStringLiteral("pic") + number + QLatin1Char('.') + type};
    if (type == QLatin1String("3gp")) return {QStringLiteral("vdo") + number + QStringLiteral(".3gp"), true};
    const QString fileName = CSlide::extractFileName(path);
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    QString suffix = dot < 0 ? QString() : fileName.mid(dot + 1).toLower();
    if (!isPlainSuffix(suffix)) suffix = QStringLiteral("bin");
    return {QStringLiteral("pic") + number + QLatin1Char('.') + suffix};
}

QString soundMember(const QString& path, int n) {
    const bool midi = CSlide::extractFileType(path).toLower() == QLatin1String("mid");
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

QString memberMimeType(const QString& path) {
    static const std::pair<const char*, const char*> byExtension[] = {
        {"gif", "image/gif"}, {"jpg", "image/jpeg"}, {"jpeg", "image/jpeg"},      {"jpe", "image/jpeg"},
        {"bmp", "image/bmp"}, {"png", "image/png"},  {"3gp", "video/3gpp"},       {"txt", "text/plain"},
        {"amr", "audio/amr"}, {"mid", "audio/midi"}, {"smil", "application/smil"}};
    const QString type = CSlide::extractFileType(path).toLower();
    for (const auto& [extension, mime] : byExtension)
        if (type == QLatin1String(extension)) return QLatin1String(mime);
    return QLatin1String(sniffedPictureType(path));
}

} // namespace mms
