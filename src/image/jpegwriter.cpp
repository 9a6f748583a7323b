#include "image/jpegwriter.h"

#include "common/fileio.h"
#include "image/jpegtranscode.h"
#include "image/picturecheck.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <limits>
#include <memory>
#include <turbojpeg.h>
#if __has_include(<jconfig.h>)
#include <jconfig.h>
#endif

namespace mms {

namespace {

struct TjHandleCloser {
    void operator()(void* handle) const { tjDestroy(handle); }
};
struct TjBufferFree {
    void operator()(unsigned char* buffer) const { tjFree(buffer); }
};

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// The one encoder setting of the program: baseline (no progressive flag), three components with
// chroma halved both ways, the standard tables scaled to the quality.
Status compress(const uchar* pixels, int width, int pitch, int height, int pixelFormat, int flags,
                int quality, QByteArray& jpeg) {
    if (quality < 1 || quality > 100)
        return Status::failure(QStringLiteral("JPEG quality %1 is outside 1 to 100.").arg(quality));

    std::unique_ptr<void, TjHandleCloser> handle(tjInitCompress());
    if (!handle)
        return Status::failure(QStringLiteral("The JPEG encoder could not start: %1")
                                   .arg(QString::fromLocal8Bit(tjGetErrorStr2(nullptr))));

    unsigned char* out = nullptr;
    unsigned long outSize = 0;
    const int result = tjCompress2(handle.get(), pixels, width, pitch, height, pixelFormat, &out, &outSize,
                                   TJSAMP_420, quality, flags);
    std::unique_ptr<unsigned char, TjBufferFree> owned(out);
    if (result != 0)
        return Status::failure(QStringLiteral("The JPEG encoder failed: %1")
                                   .arg(QString::fromLocal8Bit(tjGetErrorStr2(handle.get()))));
    if (outSize >= static_cast<unsigned long>(std::numeric_limits<int>::max()))
        return Status::failure(QStringLiteral("The JPEG is too large to keep in memory."));
    jpeg = QByteArray(reinterpret_cast<const char*>(out), qsizetype(outSize));
    return Status::ok();
}

} // namespace

Status encodeJpeg(const cDIBSection& dib, int quality, QByteArray& jpeg) {
    if (dib.isNull()) return Status::failure(QStringLiteral("There is no picture to encode."));
    // The rows are bottom-up with their padding; the pitch tells the encoder where each row starts.
    return compress(dib.DIBSectionBitsPtr(), dib.Width(), dib.BytesPerScanLine(), dib.Height(), TJPF_BGR,
                    TJFLAG_BOTTOMUP, quality, jpeg);
}

LibraryInfo jpegLibrary() {
    QString version;
#ifdef LIBJPEG_TURBO_VERSION_NUMBER
    const int v = LIBJPEG_TURBO_VERSION_NUMBER; // 2001005 is 2.1.5
    version = QStringLiteral("%1.%2.%3").arg(v / 1000000).arg(v / 1000 % 1000).arg(v % 1000);
#endif
    return {QStringLiteral("libjpeg-turbo"), version, QStringLiteral("IJG, BSD 3-Clause, zlib")};
}

Status encodeJpeg(const QImage& picture, int quality, QByteArray& jpeg) {
    if (picture.isNull() || picture.format() != QImage::Format_RGB32)
        return Status::failure(QStringLiteral("There is no picture to encode."));
    // 0xffRRGGBB words are blue, green, red, unused bytes in memory on a little-endian machine.
    static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "RGB32 rows are read as BGRX");
    return compress(picture.constBits(), picture.width(), int(picture.bytesPerLine()), picture.height(),
                    TJPF_BGRX, 0, quality, jpeg);
}

Status writeJpegFile(const cDIBSection& dib, const QString& path, int quality) {
    QByteArray jpeg;
    if (Status encoded = encodeJpeg(dib, quality, jpeg); !encoded) return encoded;
    return fileio::writeFileSafely(path, jpeg);
}

Status reencodeAsJpeg(const QString& source, const QString& target, int quality) {
    QFile file(source);
    if (!QFileInfo(source).isFile())
        return Status::failure(QStringLiteral("%1: no such file").arg(shown(source)));
    if (!file.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("%1: %2").arg(shown(source), file.errorString()));
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Status::failure(QStringLiteral("%1: %2").arg(shown(source), file.errorString()));
    file.close();

    // A JPEG goes from decoder to encoder without a bitmap in between.
    QByteArray jpeg;
    if (Status direct = transcodeJpeg(bytes, quality, jpeg); !direct)
        return Status::failure(QStringLiteral("%1: %2").arg(shown(source), direct.message()));
    if (!jpeg.isEmpty()) return fileio::writeFileSafely(target, jpeg);

    cDIBSection dib;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer);
        reader.setAutoTransform(false); // the stored pixels as they are, unrotated
        QImage picture = reader.read();
        if (picture.isNull()) {
            PictureTrouble trouble = checkPictureBytes(bytes);
            if (trouble.ok()) trouble.kind = PictureTrouble::Kind::Damaged;
            return Status::failure(describeTrouble(source, trouble));
        }
        bytes.clear();
        if (!dib.CreateFromPicture(picture))
            return Status::failure(QStringLiteral("%1: the picture is too large to convert (%2 by %3 pixels)")
                                       .arg(shown(source))
                                       .arg(picture.width())
                                       .arg(picture.height()));
    }
    return writeJpegFile(dib, target, quality);
}

} // namespace mms
