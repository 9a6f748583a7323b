#include "image/cdibsection.h"

#include <QPainter>
#include <cstring>
#include <limits>
#include <new>

namespace mms {

void cDIBSection::ClearUp() {
    bits_.reset();
    width_ = 0;
    height_ = 0;
}

bool cDIBSection::Create(int width, int height) {
    ClearUp();
    if (width <= 0 || height <= 0) return false;
    // The row length (width * 3, padded) and the whole size must stay addressable.
    const qint64 stride = (qint64(width) * 3 + 3) & ~qint64(3);
    const qint64 size = stride * height;
    if (stride > std::numeric_limits<int>::max() || size > qint64(std::numeric_limits<std::ptrdiff_t>::max()))
        return false;
    bits_.reset(new (std::nothrow) uchar[size_t(size)]);
    if (!bits_) return false;
    std::memset(bits_.get(), 0, size_t(size));
    width_ = width;
    height_ = height;
    return true;
}

bool cDIBSection::LoadPictureBlt(const QImage& picture, int srcLeft, int srcTop, int srcWidth,
                                 int srcHeight) {
    if (!bits_ || picture.isNull()) return false;
    QRect source(srcLeft, srcTop, srcWidth < 0 ? width_ : srcWidth, srcHeight < 0 ? height_ : srcHeight);
    source &= picture.rect();
    source.setWidth(qMin(source.width(), width_));
    source.setHeight(qMin(source.height(), height_));
    if (source.isEmpty()) return false;

    QImage part = source == picture.rect() ? picture : picture.copy(source);
    if (part.format() != QImage::Format_BGR888) part = part.convertToFormat(QImage::Format_BGR888);
    if (part.isNull()) return false; // out of memory while converting

    const qint64 stride = BytesPerScanLine();
    const size_t rowBytes = size_t(part.width()) * 3;
    for (int y = 0; y < part.height(); ++y) {
        // Row y from the top is row (height - 1 - y) from the bottom.
        uchar* row = bits_.get() + stride * (height_ - 1 - y);
        std::memcpy(row, part.constScanLine(y), rowBytes);
    }
    return true;
}

bool cDIBSection::CreateFromPicture(const QImage& picture) {
    if (picture.isNull() || !Create(picture.width(), picture.height())) {
        ClearUp();
        return false;
    }
    if (!picture.hasAlphaChannel()) {
        if (LoadPictureBlt(picture)) return true;
        ClearUp();
        return false;
    }
    // A JPEG has no transparency: lay the picture on white, as a viewer shows it on a page.
    QImage flat(picture.size(), QImage::Format_RGB32);
    if (flat.isNull()) {
        ClearUp();
        return false;
    }
    flat.fill(Qt::white);
    {
        QPainter painter(&flat);
        painter.drawImage(0, 0, picture);
    }
    if (LoadPictureBlt(flat)) return true;
    ClearUp();
    return false;
}

QImage cDIBSection::toImage() const {
    if (!bits_) return {};
    QImage image(width_, height_, QImage::Format_BGR888);
    if (image.isNull()) return {};
    const qint64 stride = BytesPerScanLine();
    for (int y = 0; y < height_; ++y)
        std::memcpy(image.scanLine(y), bits_.get() + stride * (height_ - 1 - y), size_t(width_) * 3);
    return image;
}

} // namespace mms
