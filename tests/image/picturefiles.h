#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QRandomGenerator>

namespace mms::test {

// Encodes a picture in one of Qt's formats ("BMP", "PNG", "JPG").
inline QByteArray encoded(const QImage& image, const char* format, int quality = -1) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, quality);
    return bytes;
}

inline QImage filled(int width, int height, QColor colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// Noise compresses badly, so a noisy picture stays large even as a JPEG at quality 35.
inline QImage noise(int width, int height, quint32 seed = 7) {
    QImage image(width, height, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = 0xFF000000u | (random.generate() & 0xFFFFFFu);
    }
    return image;
}

// A BMP of the picture padded with trailing bytes to exactly `length` bytes (readers stop at the
// pixel data, so the picture stays loadable).
inline QByteArray bmpOfLength(const QImage& image, qsizetype length) {
    QByteArray bytes = encoded(image, "BMP");
    if (bytes.size() < length) bytes.append(length - bytes.size(), '\0');
    return bytes;
}

// A 1 by 1 GIF; trailing bytes after its end marker are ignored by readers.
inline QByteArray tinyGif(qsizetype length = 0) {
    static const unsigned char gif[] = {'G', 'I',  'F', '8', '9', 'a', 1, 0,    1, 0, 0x80, 0,
                                        0,   0xFF, 0,   0,   0,   0,   0, ',',  0, 0, 0,    0,
                                        1,   0,    1,   0,   0,   2,   2, 0x44, 1, 0, ';'};
    QByteArray bytes(reinterpret_cast<const char*>(gif), sizeof gif);
    if (bytes.size() < length) bytes.append(length - bytes.size(), '\0');
    return bytes;
}

} // namespace mms::test
