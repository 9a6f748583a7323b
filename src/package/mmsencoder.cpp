#include "package/mmsencoder.h"

#include "common/fileio.h"
#include "common/mediakind.h"
#include "package/packagemembers.h"

#include <QFile>
#include <limits>

namespace mms {

namespace {

constexpr int kShortLengthMax = 30;
constexpr char kLengthQuote = 0x1F;
const QByteArray kStartId = QByteArrayLiteral("AAAA"); // the header's start parameter names the SMIL part

// A value length: one byte up to 30, else the length quote and a uintvar.
QByteArray valueLength(qint64 length, bool alwaysQuoted = false) {
    if (!alwaysQuoted && length <= kShortLengthMax) return QByteArray(1, char(length));
    return QByteArray(1, kLengthQuote) + MmsEncoder::uintvar(quint64(length));
}

// The content type of a part (without its value length), by the extension of `source`.
QByteArray contentType(MediaKind kind, const QByteArray& name, const QString& source) {
    const QByteArray nameParameter = QByteArrayLiteral("\x85") + name + '\0';
    auto byText = [&](const char* mime) { return QByteArray(mime) + '\0' + nameParameter; };
    switch (kind) {
    case MediaKind::Gif:
        return QByteArrayLiteral("\x9D") + nameParameter;
    case MediaKind::Text:
        return QByteArrayLiteral("\x83\x81\xEA") + nameParameter;
    case MediaKind::Smil:
        return byText("application/smil") + QByteArrayLiteral("\x81\xEA");
    case MediaKind::Other:
        return byText(sniffedPictureType(source));
    default:
        return byText(mimeTypeOf(kind));
    }
}

bool seekTo(QIODevice& out, qint64 pos) {
    return pos >= 1 && out.seek(pos - 1);
}

bool writeAll(QIODevice& out, const QByteArray& bytes) {
    return fileio::writeWhole(out, bytes);
}

// An address header (To, Cc): the field byte and the address as a text string, or with the UTF-8
// charset when it is not plain ASCII.
QByteArray addressHeader(char field, const QString& address) {
    QByteArray text = address.toUtf8();
    if (!text.isEmpty() && (uchar(text.front()) & 0x80)) text.prepend('\x7F'); // a quote before a high byte
    text += '\0';
    for (QChar c : address)
        if (c.unicode() > 127) return field + valueLength(text.size() + 1) + '\xEA' + text;
    return field + text;
}

// From: the sender's address, or the token that has the server insert it.
QByteArray fromHeader(const QString& address) {
    if (address.isEmpty()) return QByteArrayLiteral("\x89\x01\x81");
    const QByteArray text = addressHeader('\x80', address);
    return '\x89' + valueLength(text.size()) + text;
}

QString join(const QString& folder, const QString& name) {
    return folder + QLatin1Char('/') + name;
}

} // namespace

QByteArray MmsEncoder::uintvar(quint64 value) {
    QByteArray groups(1, char(value & 0x7F));
    for (value >>= 7; value > 0; value >>= 7)
        groups.prepend(char((value & 0x7F) | 0x80));
    return groups;
}

void MmsEncoder::show(const QString& text, const QString& detail) {
    lastFailure_ = detail;
    if (sink_) sink_->inform(text);
}

bool MmsEncoder::calculateDataLen(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        show(QStringLiteral("Error"), path + QStringLiteral(": ") + file.errorString());
        return false;
    }
    lengthBuffer_ = uintvar(quint64(file.size()));
    return true;
}

qint32 MmsEncoder::generateMMSHeader(QIODevice& out, qint32 /*pos*/, const qint16& parts,
                                     const QString& subject) {
    if (parts < 0) {
        show(QStringLiteral("Error"), QStringLiteral("a negative number of parts"));
        return 0;
    }
    return writeHeader(out, quint32(parts), subject);
}

qint32 MmsEncoder::writeHeader(QIODevice& out, quint32 parts, const QString& subject,
                               const MmsRecipients& recipients) {
    const QByteArray text = subject.toUtf8();
    QByteArray header =
        QByteArrayLiteral("\x8C\x80\x98") + "B1127540881" + '\0' + QByteArrayLiteral("\x8D\x90");
    // The addresses sit between the version and the subject, in the order From, To, Cc.
    header += fromHeader(recipients.from);
    for (const QString& address : recipients.to)
        header += addressHeader('\x97', address);
    for (const QString& address : recipients.cc)
        header += addressHeader('\x82', address);
    header += '\x96' + valueLength(text.size() + 3) + QByteArrayLiteral("\xEA\x7F") + text + '\0';
    header += QByteArrayLiteral("\x8A\x80\x8F\x81\x86\x81\x90\x81");
    header += QByteArrayLiteral("\x84\x1B\xB3\x89") + "application/smil" + '\0' + '\x8A' + "<" + kStartId +
              ">" + '\0';
    header += uintvar(quint64(parts));
    if (!seekTo(out, 1) || !writeAll(out, header)) {
        show(QStringLiteral("Error"),
             QStringLiteral("the header could not be written: ") + out.errorString());
        return 0;
    }
    return 1 + qint32(header.size());
}

qint32 MmsEncoder::generateMsgElement(QIODevice& out, const QString& source, qint32 pos) {
    const QString fileName = CSlide::extractFileName(source);
    const MediaKind kind = mediaKindOf(source);
    const QByteArray name = fileName.toUtf8();
    const bool smil = kind == MediaKind::Smil;
    const QString failed = fileName + QStringLiteral(": Error");

    const QByteArray inner = contentType(kind, name, source);
    QByteArray headers = valueLength(inner.size(), smil) + inner;
    headers += QByteArrayLiteral("\xC0\x22<") + (smil ? kStartId : name) + ">" + '\0';
    if (!smil) headers += '\x8E' + name + '\0';
    if (headers.size() >= 256) {
        show(QStringLiteral("ImgHeader: oversized"),
             source + QStringLiteral(": the part's headers exceed 255 bytes"));
        return 0;
    }

    if (!calculateDataLen(source)) {
        show(failed, lastFailure_);
        return 0;
    }
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly)) {
        show(failed, source + QStringLiteral(": ") + file.errorString());
        return 0;
    }
    const QByteArray data = file.readAll();
    if (lengthBuffer_ != uintvar(quint64(data.size()))) { // changed or unreadable since it was measured
        show(failed, source + QStringLiteral(": the file changed or could not be read whole"));
        return 0;
    }
    const QByteArray entry = uintvar(quint64(headers.size())) + lengthBuffer_ + headers;
    const qint64 end = qint64(pos) + entry.size() + data.size();
    if (end > std::numeric_limits<qint32>::max() || !seekTo(out, pos) || !writeAll(out, entry) ||
        !writeAll(out, data)) {
        show(failed, source + QStringLiteral(": the part could not be written: ") + out.errorString());
        return 0;
    }
    return qint32(end);
}

int MmsEncoder::countParts(const CSlide& slides, qint16 count) {
    int parts = 1;
    int n = 0;
    for (auto node = slides.firstItem(); node && n < count; node = node->NextNode, ++n)
        parts += !node->DataImgPath.isEmpty() + !node->DataText.isEmpty() + !node->DataSoundPath.isEmpty();
    return parts;
}

qint32 MmsEncoder::generateMMSBody(QIODevice& out, const CSlide& slides, const QString& packageFolder,
                                   qint32 start, const qint16& count) {
    qint32 pos = generateMsgElement(out, join(packageFolder, QStringLiteral("main.smil")), start);
    int n = 0;
    for (auto node = slides.firstItem(); node && n < count && pos != 0; node = node->NextNode) {
        const QString number = QString::number(++n);
        // The parts are looked up under the names the package writer gave them.
        if (!node->DataImgPath.isEmpty())
            pos = generateMsgElement(out, join(packageFolder, pictureMember(node->DataImgPath, n).name), pos);
        if (pos != 0 && !node->DataText.isEmpty())
            pos = generateMsgElement(
                out, join(packageFolder, QStringLiteral("text") + number + QStringLiteral(".txt")), pos);
        if (pos != 0 && !node->DataSoundPath.isEmpty())
            pos = generateMsgElement(out, join(packageFolder, soundMember(node->DataSoundPath, n)), pos);
    }
    return pos;
}

qint32 MmsEncoder::generateMMSHeader(const QString& outPath, qint32 pos, const qint16& parts,
                                     const QString& subject) {
    QFile file(outPath);
    if (!file.open(QIODevice::ReadWrite)) {
        show(QStringLiteral("Error"), outPath + QStringLiteral(": ") + file.errorString());
        return 0;
    }
    return generateMMSHeader(file, pos, parts, subject);
}

qint32 MmsEncoder::generateMsgElement(const QString& outPath, const QString& source, qint32 pos) {
    QFile file(outPath);
    if (!file.open(QIODevice::ReadWrite)) {
        show(CSlide::extractFileName(source) + QStringLiteral(": Error"),
             outPath + QStringLiteral(": ") + file.errorString());
        return 0;
    }
    return generateMsgElement(file, source, pos);
}

Status writeSendRequest(const CSlide& slides, const QString& packageFolder, const QString& subject,
                        QIODevice& out, MessageSink* sink, const MmsRecipients& recipients) {
    MmsEncoder encoder(sink);
    const int count = slides.getTotalSlide();
    const qint32 bodyStart =
        encoder.writeHeader(out, quint32(MmsEncoder::countParts(slides, qint16(count))), subject, recipients);
    if (bodyStart == 0 || encoder.generateMMSBody(out, slides, packageFolder, bodyStart, qint16(count)) == 0)
        return Status::failure(encoder.lastFailure());
    return Status::ok();
}

Status writeSendRequest(const CSlide& slides, const QString& packageFolder, const QString& subject,
                        const QString& outPath, MessageSink* sink, const MmsRecipients& recipients) {
    return fileio::writeFileSafely(outPath, [&](QIODevice& out) {
        return writeSendRequest(slides, packageFolder, subject, out, sink, recipients);
    });
}

} // namespace mms
