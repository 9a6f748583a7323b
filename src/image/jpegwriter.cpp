#include "image/jpegwriter.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>
#include <limits>
#include <memory>
#include <turbojpeg.h>

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

} // namespace

Status encodeJpeg(const cDIBSection& dib, int quality, QByteArray& jpeg) {
    if (dib.isNull()) return Status::failure(QStringLiteral("There is no picture to encode."));
    if (quality < 1 || quality > 100)
        return Status::failure(QStringLiteral("JPEG quality %1 is outside 1 to 100.").arg(quality));

    std::unique_ptr<void, TjHandleCloser> handle(tjInitCompress());
    if (!handle)
        return Status::failure(QStringLiteral("The JPEG encoder could not start: %1")
                                   .arg(QString::fromLocal8Bit(tjGetErrorStr2(nullptr))));

    unsigned char* out = nullptr;
    unsigned long outSize = 0;
    // The rows are bottom-up with their padding; the pitch tells the encoder where each row starts.
    // No progressive flag: the result is baseline.
    const int result =
        tjCompress2(handle.get(), dib.DIBSectionBitsPtr(), dib.Width(), dib.BytesPerScanLine(), dib.Height(),
                    TJPF_BGR, &out, &outSize, TJSAMP_420, quality, TJFLAG_BOTTOMUP);
    std::unique_ptr<unsigned char, TjBufferFree> owned(out);
    if (result != 0)
        return Status::failure(QStringLiteral("The JPEG encoder failed: %1")
                                   .arg(QString::fromLocal8Bit(tjGetErrorStr2(handle.get()))));
    if (outSize >= static_cast<unsigned long>(std::numeric_limits<int>::max()))
        return Status::failure(QStringLiteral("The JPEG is too large to keep in memory."));
    jpeg = QByteArray(reinterpret_cast<const char*>(out), qsizetype(outSize));
    return Status::ok();
}

Status writeJpegFile(const cDIBSection& dib, const QString& path, int quality) {
    QByteArray jpeg;
    if (Status encoded = encodeJpeg(dib, quality, jpeg); !encoded) return encoded;

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Status::failure(QStringLiteral("%1: %2").arg(shown(path), file.errorString()));
    if (file.write(jpeg) != jpeg.size()) {
        const QString why = file.errorString();
        file.cancelWriting();
        return Status::failure(QStringLiteral("%1: %2").arg(shown(path), why));
    }
    if (!file.commit()) return Status::failure(QStringLiteral("%1: %2").arg(shown(path), file.errorString()));
    return Status::ok();
}

Status loadPicture(const QString& path, QImage& picture) {
    if (!QFileInfo(path).isFile())
        return Status::failure(QStringLiteral("%1: no such file").arg(shown(path)));
    QImageReader reader(path);
    // A picture whose name says one type and whose bytes another is read by its bytes.
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(false);
    QImage loaded = reader.read();
    if (loaded.isNull())
        return Status::failure(QStringLiteral("%1: %2").arg(shown(path), reader.errorString()));
    picture = std::move(loaded);
    return Status::ok();
}

Status reencodeAsJpeg(const QString& source, const QString& target, int quality) {
    QImage picture;
    if (Status loaded = loadPicture(source, picture); !loaded) return loaded;
    cDIBSection dib;
    if (!dib.CreateFromPicture(picture))
        return Status::failure(QStringLiteral("%1: the picture is too large to convert (%2 by %3 pixels)")
                                   .arg(shown(source))
                                   .arg(picture.width())
                                   .arg(picture.height()));
    picture = QImage(); // the bitmap holds the pixels now
    return writeJpegFile(dib, target, quality);
}

} // namespace mms
