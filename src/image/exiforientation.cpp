#include "image/exiforientation.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QtEndian>

namespace mms {

namespace {

constexpr int kOrientationTag = 0x0112;
// Segments looked at before giving up; real files have a handful before the frame.
constexpr int kMaxSegments = 256;

bool isJpegStart(const QByteArray& head) {
    return head.size() >= 2 && quint8(head[0]) == 0xFF && quint8(head[1]) == 0xD8;
}

// The orientation in a TIFF block (what follows "Exif\0\0"): IFD0's entry, its value in the entry's
// own four bytes.
int tiffOrientation(const QByteArray& tiff) {
    if (tiff.size() < 8) return 0;
    const bool little = tiff.startsWith("II");
    if (!little && !tiff.startsWith("MM")) return 0;
    const auto* p = reinterpret_cast<const uchar*>(tiff.constData());
    const auto u16 = [&](qint64 at) -> quint32 {
        return little ? qFromLittleEndian<quint16>(p + at) : qFromBigEndian<quint16>(p + at);
    };
    const auto u32 = [&](qint64 at) -> quint32 {
        return little ? qFromLittleEndian<quint32>(p + at) : qFromBigEndian<quint32>(p + at);
    };
    const qint64 ifd = u32(4);
    if (ifd + 2 > tiff.size()) return 0;
    const quint32 entries = u16(ifd);
    for (quint32 i = 0; i < entries; ++i) {
        const qint64 e = ifd + 2 + 12 * qint64(i);
        if (e + 12 > tiff.size()) return 0;
        if (u16(e) != kOrientationTag) continue;
        if (u32(e + 4) != 1) return 0;
        qint64 value = 0;
        switch (u16(e + 2)) {
        case 1: // BYTE
            value = p[e + 8];
            break;
        case 3: // SHORT
            value = u16(e + 8);
            break;
        case 4: // LONG
            value = u32(e + 8);
            break;
        case 9: // SLONG
            value = qint32(u32(e + 8));
            break;
        default:
            return 0;
        }
        return value >= 1 && value <= 8 ? int(value) : 0;
    }
    return 0;
}

bool endsHeaders(quint8 marker) {
    const bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    return frame || marker == 0xDA || marker == 0xD9;
}

} // namespace

int exifOrientation(QIODevice& device) {
    if (!device.seek(0) || !isJpegStart(device.read(2))) return 0;
    for (int segment = 0; segment < kMaxSegments; ++segment) {
        const QByteArray header = device.read(4);
        if (header.size() < 4 || quint8(header[0]) != 0xFF) return 0;
        const quint8 marker = quint8(header[1]);
        if (marker == 0xFF) { // a fill byte: the marker is one byte on
            if (!device.seek(device.pos() - 3)) return 0;
            continue;
        }
        if (endsHeaders(marker)) return 0;
        const int length = (quint8(header[2]) << 8) | quint8(header[3]);
        if (length < 2) return 0;
        if (marker == 0xE1) {
            const QByteArray body = device.read(length - 2);
            if (body.startsWith(QByteArrayView("Exif\0\0", 6))) return tiffOrientation(body.mid(6));
        } else if (!device.seek(device.pos() + length - 2)) {
            return 0;
        }
    }
    return 0;
}

int exifOrientation(const QByteArray& bytes) {
    QByteArray copy = bytes; // shares the data; QBuffer wants a non-const array
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    return exifOrientation(buffer);
}

QImageIOHandler::Transformations orientationTransform(int exifOrientation) {
    switch (exifOrientation) {
    case 2:
        return QImageIOHandler::TransformationMirror;
    case 3:
        return QImageIOHandler::TransformationRotate180;
    case 4:
        return QImageIOHandler::TransformationFlip;
    case 5:
        return QImageIOHandler::TransformationFlipAndRotate90;
    case 6:
        return QImageIOHandler::TransformationRotate90;
    case 7:
        return QImageIOHandler::TransformationMirrorAndRotate90;
    case 8:
        return QImageIOHandler::TransformationRotate270;
    default:
        return QImageIOHandler::TransformationNone;
    }
}

QImageIOHandler::Transformations uprightTransform(const QByteArray& bytes, QImageReader& reader) {
    reader.setAutoTransform(false);
    if (isJpegStart(bytes.left(2))) return orientationTransform(exifOrientation(bytes));
    return reader.transformation();
}

QImageIOHandler::Transformations uprightTransform(const QString& path, QImageReader& reader) {
    reader.setAutoTransform(false);
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && isJpegStart(file.peek(2)))
        return orientationTransform(exifOrientation(file));
    return reader.transformation();
}

} // namespace mms
