#pragma once

#include "model/status.h"

#include <QByteArray>
#include <QImage>
#include <QImageIOHandler>
#include <QSize>
#include <QString>

namespace mms {

// A picture file's bytes read for conversion: upright (its EXIF orientation applied, as the
// thumbnails and the slide show it) and flat (transparent parts on white) in QImage::Format_RGB32.
// A JPEG is decoded by TurboJPEG, at a reduced DCT scale when asked for less than its full size.
class UprightPicture {
public:
    // Reads the header: size and orientation. Fails naming `name` when the bytes are no picture.
    Status open(const QByteArray& bytes, const QString& name);

    // The upright size at full scale.
    QSize size() const { return upright_; }
    // Decodes at the smallest scale whose upright long side is at least minLongSide (the full size
    // when no smaller scale reaches it, and always for formats that cannot decode scaled).
    Status decode(int minLongSide, QImage& out) const;

private:
    Status decodeJpeg(int minLongSide, QImage& out) const;
    Status decodeOther(QImage& out) const;
    Status tooLarge(QSize size) const;
    Status unreadable() const;

    QByteArray bytes_;
    QString name_;
    QSize stored_;  // as the pixels are stored
    QSize upright_; // after the orientation
    QImageIOHandler::Transformations orientation_ = QImageIOHandler::TransformationNone;
    bool turboJpeg_ = false;
};

// The orientation applied as Qt's readers apply it: mirrored and flipped first, then turned a
// quarter clockwise.
QImage applyOrientation(QImage picture, QImageIOHandler::Transformations orientation);

} // namespace mms
