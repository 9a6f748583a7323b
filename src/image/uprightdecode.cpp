#include "image/uprightdecode.h"

#include "image/exiforientation.h"
#include "image/picturecheck.h"

#include <QBuffer>
#include <QDir>
#include <QImageReader>
#include <QPainter>
#include <QTransform>
#include <memory>
#include <turbojpeg.h>

namespace mms {

namespace {

struct TjHandleCloser {
    void operator()(void* handle) const { tjDestroy(handle); }
};
using TjHandle = std::unique_ptr<void, TjHandleCloser>;

// TurboJPEG's cheap scales: the others cost as much as a full decode.
constexpr int kScaleDenominators[] = {8, 4, 2, 1};

int scaled(int side, int denominator) {
    return (side + denominator - 1) / denominator;
}

// Transparent parts on white, as a viewer shows the picture on a page; one pixel format for all.
QImage flattened(const QImage& picture) {
    if (!picture.hasAlphaChannel()) return picture.convertToFormat(QImage::Format_RGB32);
    QImage flat(picture.size(), QImage::Format_RGB32);
    if (flat.isNull()) return flat;
    flat.fill(Qt::white);
    QPainter painter(&flat);
    painter.drawImage(0, 0, picture);
    return flat;
}

} // namespace

QImage applyOrientation(QImage picture, QImageIOHandler::Transformations orientation) {
    const bool mirror = orientation & QImageIOHandler::TransformationMirror;
    const bool flip = orientation & QImageIOHandler::TransformationFlip;
    if (mirror || flip) picture = picture.mirrored(mirror, flip);
    if (orientation & QImageIOHandler::TransformationRotate90)
        picture = picture.transformed(QTransform().rotate(90));
    return picture;
}

Status UprightPicture::open(const QByteArray& bytes, const QString& name) {
    bytes_ = bytes;
    name_ = QDir::toNativeSeparators(name);
    QBuffer buffer(&bytes_);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    stored_ = reader.size();
    if (!reader.canRead() || !stored_.isValid() || stored_.isEmpty()) return unreadable();
    orientation_ = uprightTransform(bytes_, reader);
    upright_ = orientation_ & QImageIOHandler::TransformationRotate90 ? stored_.transposed() : stored_;

    turboJpeg_ = false;
    TjHandle handle(tjInitDecompress());
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    if (handle &&
        tjDecompressHeader3(handle.get(), reinterpret_cast<const unsigned char*>(bytes_.constData()),
                            static_cast<unsigned long>(bytes_.size()), &width, &height, &subsampling,
                            &colourspace) == 0)
        turboJpeg_ = colourspace != TJCS_CMYK && colourspace != TJCS_YCCK && QSize(width, height) == stored_;
    return Status::ok();
}

// The reader's own words ("Unsupported image format") help nobody: the check finds the reason.
Status UprightPicture::unreadable() const {
    PictureTrouble trouble = checkPictureBytes(bytes_);
    if (trouble.ok()) trouble.kind = PictureTrouble::Kind::Damaged;
    return Status::failure(describeTrouble(name_, trouble));
}

Status UprightPicture::tooLarge(QSize size) const {
    return Status::failure(QStringLiteral("%1: the picture is too large to convert (%2 by %3 pixels)")
                               .arg(name_)
                               .arg(size.width())
                               .arg(size.height()));
}

Status UprightPicture::decode(int minLongSide, QImage& out) const {
    Status status = turboJpeg_ ? decodeJpeg(minLongSide, out) : decodeOther(out);
    if (!status) return status;
    out = applyOrientation(std::move(out), orientation_);
    if (out.isNull()) return tooLarge(upright_);
    return Status::ok();
}

Status UprightPicture::decodeJpeg(int minLongSide, QImage& out) const {
    int denominator = 1;
    for (int d : kScaleDenominators) {
        if (qMax(scaled(stored_.width(), d), scaled(stored_.height(), d)) >= minLongSide) {
            denominator = d;
            break;
        }
    }
    const QSize size(scaled(stored_.width(), denominator), scaled(stored_.height(), denominator));
    // The same ceiling as the general reader's, so a hostile header cannot claim gigabytes.
    const qint64 limit = qint64(QImageReader::allocationLimit()) * 1024 * 1024;
    if (limit > 0 && qint64(size.width()) * size.height() * 4 > limit) return tooLarge(stored_);
    out = QImage(size, QImage::Format_RGB32);
    if (out.isNull()) return tooLarge(stored_);
    TjHandle handle(tjInitDecompress());
    // BGRX rows are RGB32 words on a little-endian machine; TurboJPEG fills the X byte with 0xFF.
    const int result = tjDecompress2(handle.get(), reinterpret_cast<const unsigned char*>(bytes_.constData()),
                                     static_cast<unsigned long>(bytes_.size()), out.bits(), size.width(),
                                     int(out.bytesPerLine()), size.height(), TJPF_BGRX, 0);
    // A warning (say, data cut short) still gives a picture.
    if (result != 0 && tjGetErrorCode(handle.get()) != TJERR_WARNING) return unreadable();
    return Status::ok();
}

Status UprightPicture::decodeOther(QImage& out) const {
    QByteArray bytes = bytes_;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(false); // applied by decode(), the same way for every format
    const QImage picture = reader.read();
    if (picture.isNull()) return unreadable();
    out = flattened(picture);
    if (out.isNull()) return tooLarge(picture.size());
    return Status::ok();
}

} // namespace mms
