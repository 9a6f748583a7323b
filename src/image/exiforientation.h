#pragma once

#include <QByteArray>
#include <QImageIOHandler>
#include <QString>

class QIODevice;
class QImageReader;

namespace mms {

// A JPEG's Exif orientation, 1 to 8, or 0 when it has none or the bytes are no JPEG. The tag counts
// whatever integer type it was written as (BYTE, SHORT, LONG or SLONG, one value, either byte
// order): cameras write them all, though SHORT is the standard type. Reads segment headers from the
// device's start up to the frame, and the Exif block itself.
int exifOrientation(QIODevice& device);
int exifOrientation(const QByteArray& bytes);

// The transformation that stands the stored pixels upright, as Qt's readers name it.
QImageIOHandler::Transformations orientationTransform(int exifOrientation);

// How a picture is turned upright: a JPEG by its Exif orientation as above, any other format as its
// reader says. `bytes` or `path` hold the same picture as `reader`, whose automatic transformation
// is switched off so the caller applies this one (applyOrientation).
QImageIOHandler::Transformations uprightTransform(const QByteArray& bytes, QImageReader& reader);
QImageIOHandler::Transformations uprightTransform(const QString& path, QImageReader& reader);

} // namespace mms
