#include "image/picturecheck.h"

#include "image/imageprobe.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QStringDecoder>
#include <memory>
#include <optional>
#include <turbojpeg.h>

namespace mms {

namespace {

using Kind = PictureTrouble::Kind;

struct TjHandleCloser {
    void operator()(void* handle) const { tjDestroy(handle); }
};

// Enough of the start to tell text from binary.
constexpr qsizetype kTextSample = 4096;

PictureTrouble trouble(Kind kind, QSize size = {}) {
    PictureTrouble t;
    t.kind = kind;
    t.size = size;
    return t;
}

// Valid UTF-8 (a character cut at the sample's end aside) without control characters other than
// the usual white space.
bool looksLikeText(const QByteArray& bytes) {
    const QByteArray sample = bytes.left(kTextSample);
    for (char c : sample) {
        const auto u = quint8(c);
        if (u < 0x20 && u != '\t' && u != '\n' && u != '\r' && u != '\f') return false;
        if (u == 0x7F) return false;
    }
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = utf8.decode(sample);
    const bool cut = sample.size() < bytes.size();
    return !utf8.hasError() ||
           (cut && !decoded.left(decoded.size() - 1).contains(QChar::ReplacementCharacter));
}

// The ceiling Qt's readers apply, so that a hostile header cannot claim gigabytes.
bool tooManyPixels(QSize size) {
    const qint64 limit = qint64(QImageReader::allocationLimit()) * 1024 * 1024;
    return limit > 0 && qint64(size.width()) * size.height() * 4 > limit;
}

// nullopt: not a JPEG TurboJPEG decodes to RGB (CMYK): the general reader decides.
std::optional<PictureTrouble> checkJpeg(const QByteArray& bytes) {
    std::unique_ptr<void, TjHandleCloser> handle(tjInitDecompress());
    if (!handle) return std::nullopt;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    const auto length = static_cast<unsigned long>(bytes.size());
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    if (tjDecompressHeader3(handle.get(), data, length, &width, &height, &subsampling, &colourspace) != 0)
        return trouble(Kind::Damaged);
    if (colourspace == TJCS_CMYK || colourspace == TJCS_YCCK) return std::nullopt;
    if (tooManyPixels(QSize(width, height))) return trouble(Kind::TooLarge, QSize(width, height));
    // An eighth of each side: the whole stream is still decoded, for a fraction of the pixels.
    const tjscalingfactor eighth{1, 8};
    const int w = TJSCALED(width, eighth), h = TJSCALED(height, eighth);
    QByteArray pixels(qsizetype(w) * h * 3, Qt::Uninitialized);
    if (tjDecompress2(handle.get(), data, length, reinterpret_cast<unsigned char*>(pixels.data()), w, 0, h,
                      TJPF_RGB, 0) == 0)
        return trouble(Kind::None);
    return trouble(tjGetErrorCode(handle.get()) == TJERR_WARNING ? Kind::CutShort : Kind::Damaged);
}

} // namespace

PictureTrouble checkPictureBytes(const QByteArray& bytes) {
    if (bytes.isEmpty()) return trouble(Kind::Empty);
    QByteArray copy = bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const ImageProbe probe = checkValidImg(QByteArrayView(bytes));
    if (!probe.answer && !reader.canRead())
        return trouble(looksLikeText(bytes) ? Kind::Text : Kind::NotPicture);
    if (probe.imgType == ImageProbe::Jpeg)
        if (std::optional<PictureTrouble> jpeg = checkJpeg(bytes)) return *jpeg;
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty()) return trouble(Kind::Damaged);
    if (tooManyPixels(size)) return trouble(Kind::TooLarge, size);
    return trouble(reader.read().isNull() ? Kind::Damaged : Kind::None);
}

PictureTrouble checkPictureFile(const QString& path) {
    PictureTrouble unreadable = trouble(Kind::Unreadable);
    if (!QFileInfo(path).isFile()) {
        unreadable.detail =
            QFileInfo::exists(path) ? QStringLiteral("it is not a file") : QStringLiteral("no such file");
        return unreadable;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        unreadable.detail = file.errorString();
        return unreadable;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        unreadable.detail = file.errorString();
        return unreadable;
    }
    return checkPictureBytes(bytes);
}

QString plainReason(const PictureTrouble& t) {
    switch (t.kind) {
    case Kind::None:
        return QStringLiteral("is a readable picture");
    case Kind::Unreadable:
        return QStringLiteral("cannot be read (%1)").arg(t.detail);
    case Kind::Empty:
        return QStringLiteral("is an empty file");
    case Kind::Text:
        return QStringLiteral("is not a picture (the file is text)");
    case Kind::NotPicture:
        return QStringLiteral("is not a picture (not a GIF, JPEG, BMP or PNG file)");
    case Kind::Damaged:
    case Kind::CutShort:
        return QStringLiteral("is cut short or damaged");
    case Kind::TooLarge:
        return QStringLiteral("is too large to decode (%1 \u00d7 %2 pixels)")
            .arg(t.size.width())
            .arg(t.size.height());
    }
    return {};
}

QString describeTrouble(const QString& path, const PictureTrouble& t) {
    return QStringLiteral("'%1' %2").arg(QDir::toNativeSeparators(path), plainReason(t));
}

} // namespace mms
