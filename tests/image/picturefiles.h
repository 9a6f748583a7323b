#pragma once

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QRandomGenerator>
#include <QtEndian>
#include <gif_lib.h>
#include <gtest/gtest.h>
#include <vector>

#include "image/jpegwriter.h"

namespace mms::test {

inline QByteArray encoded(const QImage& image, const char* format, int quality = -1,
                          bool progressive = false) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    writer.setProgressiveScanWrite(progressive);
    writer.write(image);
    return buffer.data();
}

inline QImage filled(int width, int height, QColor colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

inline QByteArray solid(const char* format, int width, int height, QColor colour) {
    return encoded(filled(width, height, colour), format);
}

// Noise compresses badly: a noisy picture stays large even as a JPEG at quality 35.
inline QImage noise(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xFF000000u | (random.generate() & 0xFFFFFFu));
    return image;
}

// Readers stop at the end of the picture data, so trailing bytes set a file's length freely.
inline QByteArray padded(QByteArray bytes, qsizetype length) {
    if (bytes.size() < length) bytes.append(length - bytes.size(), '\0');
    return bytes;
}

// Colours as a lossy format or a scaled thumbnail gives them back.
inline bool near(QColor a, QColor b) {
    return qAbs(a.red() - b.red()) < 40 && qAbs(a.green() - b.green()) < 40 && qAbs(a.blue() - b.blue()) < 40;
}

inline QByteArray noisyJpeg(int width, int height) {
    return encoded(noise(width, height), "JPG", 90);
}

// The JPEG the program's own encoder makes of an image.
inline QByteArray jpegOf(const QImage& image, int quality) {
    QByteArray jpeg;
    EXPECT_TRUE(encodeJpeg(image.convertToFormat(QImage::Format_RGB32), quality, jpeg).isOk());
    return jpeg;
}

inline QByteArray quantTables(const QByteArray& jpeg) {
    return jpeg.mid(jpeg.indexOf("\xFF\xDB"), 2 * 69);
}

inline QByteArray segment(int marker, const QByteArray& body) {
    const int n = int(body.size()) + 2;
    const char header[] = {char(0xFF), char(marker), char(n >> 8), char(n & 0xFF)};
    return QByteArray(header, 4) + body;
}

inline QByteArray afterSoi(const QByteArray& jpeg, const QByteArray& inserted) {
    return jpeg.left(2) + inserted + jpeg.mid(2);
}

// An Exif block whose IFD0 holds one orientation entry (6: the stored pixels are to be turned a
// quarter clockwise).
inline QByteArray exif(bool little, int type, quint32 count, quint32 value) {
    QByteArray tiff(8 + 2 + 12 + 4, '\0');
    auto* p = reinterpret_cast<uchar*>(tiff.data());
    const auto put16 = [&](int at, quint16 v) {
        little ? qToLittleEndian(v, p + at) : qToBigEndian(v, p + at);
    };
    const auto put32 = [&](int at, quint32 v) {
        little ? qToLittleEndian(v, p + at) : qToBigEndian(v, p + at);
    };
    tiff[0] = tiff[1] = little ? 'I' : 'M';
    put16(2, 42), put32(4, 8), put16(8, 1), put16(10, 0x0112), put16(12, quint16(type)), put32(14, count);
    if (type == 1)
        p[18] = uchar(value);
    else if (type == 3 || type == 8)
        put16(18, quint16(value));
    else
        put32(18, value);
    return segment(0xE1, QByteArray("Exif\0\0", 6) + tiff);
}

inline QByteArray withOrientation(const QByteArray& jpeg, int orientation) {
    return afterSoi(jpeg, exif(true, 3, 1, quint32(orientation)));
}

// The JPEG with its baseline frame header claiming another size.
inline QByteArray claiming(QByteArray jpeg, int width, int height) {
    const qsizetype frame = jpeg.indexOf("\xFF\xC0");
    qToBigEndian<quint16>(quint16(height), jpeg.data() + frame + 5);
    qToBigEndian<quint16>(quint16(width), jpeg.data() + frame + 7);
    return jpeg;
}

// A 1 by 1 red GIF.
inline QByteArray tinyGif() {
    return QByteArray::fromHex("474946383961010001008000 00ff0000000000 2c00000000010001000002024401003b");
}

// Written with giflib, which the program itself uses.
inline int toArray(GifFileType* gif, const GifByteType* data, int n) {
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(data), n);
    return n;
}

// Noise frames of 256 colours, which LZW cannot pack: 64 KB a frame at 256 by 256.
inline QByteArray animatedGif(QSize size, const std::vector<int>& delays, int loops) {
    QByteArray out;
    GifFileType* gif = EGifOpen(&out, toArray, nullptr);
    EGifSetGifVersion(gif, true);
    GifColorType colours[256];
    for (int i = 0; i < 256; ++i)
        colours[i] = {GifByteType(i), GifByteType(255 - i), GifByteType(i * 7)};
    ColorMapObject* map = GifMakeMapObject(256, colours);
    EGifPutScreenDesc(gif, size.width(), size.height(), 8, 0, map);
    if (loops >= 0) {
        const GifByteType loop[3] = {1, GifByteType(loops), 0};
        EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE);
        EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0");
        EGifPutExtensionBlock(gif, 3, loop);
        EGifPutExtensionTrailer(gif);
    }
    QRandomGenerator random(3);
    std::vector<GifByteType> line(size_t(size.width()));
    for (int delay : delays) {
        GraphicsControlBlock gcb{DISPOSAL_UNSPECIFIED, false, delay, NO_TRANSPARENT_COLOR};
        GifByteType extension[4];
        EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(EGifGCBToExtension(&gcb, extension)), extension);
        EGifPutImageDesc(gif, 0, 0, size.width(), size.height(), false, nullptr);
        for (int y = 0; y < size.height(); ++y) {
            for (GifByteType& pixel : line)
                pixel = GifByteType(random.bounded(256));
            EGifPutLine(gif, line.data(), size.width());
        }
    }
    EGifCloseFile(gif, nullptr);
    GifFreeMapObject(map);
    return out;
}

} // namespace mms::test
