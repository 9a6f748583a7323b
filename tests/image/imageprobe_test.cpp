#include "image/imageprobe.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <tuple>

using namespace mms;

namespace {

QByteArray encode(QImage::Format format, int w, int h, const char* type, bool progressive = false) {
    return test::encoded(test::filled(w, h, Qt::red).convertToFormat(format), type, -1, progressive);
}

QByteArray bytes(std::initializer_list<int> values) {
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

QByteArray segment(int marker, const QByteArray& body) {
    const int n = int(body.size()) + 2;
    return bytes({0xFF, marker, n >> 8, n & 0xFF}) + body;
}

QByteArray frame(int h, int w, int components) {
    return bytes({8, h >> 8, h & 0xFF, w >> 8, w & 0xFF, components});
}

// A 4 by 4 PNG whose header claims `colourType` at `bitDepth`.
QByteArray png(int colourType, int bitDepth) {
    QByteArray b = encode(QImage::Format_Indexed8, 4, 4, "png");
    b[25] = char(colourType);
    b[24] = char(bitDepth);
    return b;
}

} // namespace

TEST(ImageProbe, HeadersAndHostileBytes) {
    QByteArray bmp(54, '\0');
    bmp[0] = 'B', bmp[1] = 'M', bmp[18] = char(0x70), bmp[19] = char(0x11), bmp[20] = 1, bmp[22] = 5,
    bmp[28] = 32;
    const QByteArray soi("\xFF\xD8", 2), app1("\xFF\xD8\xFF\xE1", 4);
    const struct {
        const char* what;
        QByteArray bytes;
        bool answer = false;
        int type = 0, w = 0, h = 0, depth = 0;
    } cases[] = {
        {"gif", QByteArray::fromHex("474946383961 2c01 c800 f7 0000"), true, 1, 300, 200, 8},
        {"bmp", encode(QImage::Format_RGB888, 321, 17, "bmp"), true, 4, 321, 17, 24},
        {"bmp wider than 65535", bmp, true, 4, 0x1170, 5, 32},
        {"png rgb", encode(QImage::Format_RGB888, 40, 30, "png"), true, 3, 40, 30, 24},
        {"png rgba", encode(QImage::Format_ARGB32, 40, 30, "png"), true, 3, 40, 30, 32},
        {"png grey", encode(QImage::Format_Grayscale8, 40, 30, "png"), true, 3, 40, 30, 8},
        {"png grey 16", encode(QImage::Format_Grayscale16, 40, 30, "png"), true, 3, 40, 30, 16},
        // A palette image is 8 bits deep whatever its bit depth.
        {"palette", png(3, 4), true, 3, 4, 4, 8},
        {"grey with alpha", png(4, 16), true, 3, 4, 4, 32},
        // An unknown colour type falls through to the JPEG scan.
        {"unknown colour type", png(5, 16)},
        {"unknown colour type with a frame", png(5, 16) + soi + segment(0xC0, frame(9, 7, 3)), true, 2, 7, 9,
         24},
        {"jpeg baseline", encode(QImage::Format_RGB32, 640, 480, "jpeg"), true, 2, 640, 480, 24},
        {"jpeg grey", encode(QImage::Format_Grayscale8, 64, 48, "jpeg"), true, 2, 64, 48, 8},
        {"jpeg progressive", encode(QImage::Format_RGB32, 90, 70, "jpeg", true), true, 2, 90, 70, 24},
        // Segments before the frame are skipped, DHT (C4) is not a frame; any prefix before SOI is fine.
        {"skipped segments",
         "junk" + soi + segment(0xE0, "JFIF\0") + segment(0xC4, QByteArray(20, 1)) + segment(0xC8, {}) +
             segment(0xC2, frame(100, 200, 1)),
         true, 2, 200, 100, 8},
        {"empty", {}},
        {"all 0xFF", QByteArray(70000, char(0xFF))},
        // A segment length that jumps past the limit, one that lands on the limit, and a zero length.
        {"jump past the end", app1 + QByteArray("\xFF\xFF", 2)},
        {"jump to the limit", app1 + QByteArray::fromHex("fff8") + QByteArray(65540, '\0')},
        {"zero length", app1 + QByteArray(2, '\0') + segment(0xC1, frame(3, 4, 3)), true, 2, 4, 3, 24},
        // A frame beyond the first 64 KiB is not seen.
        {"frame too late", soi + segment(0xFE, QByteArray(65000, 'c')) + segment(0xFE, QByteArray(600, 'c')) +
                               segment(0xC0, frame(1, 1, 3))},
    };
    for (const auto& c : cases) {
        const ImageProbe r = checkValidImg(QByteArrayView(c.bytes));
        EXPECT_EQ(std::tuple(r.answer, r.imgType, r.imgWidth, r.imgHeight, r.imgDepth),
                  std::tuple(c.answer, c.type, c.w, c.h, c.depth))
            << c.what;
    }
    for (int at : {65520, 65522, 65523, 65524, 65525, 65530}) {
        const QByteArray b =
            QByteArray(at, 'x') + soi + QByteArray("\xFF\xC0\x00\x11", 4) + QByteArray(20, char(0xFF));
        EXPECT_EQ(checkValidImg(QByteArrayView(b)).imgType, at <= 65522 ? 2 : 0) << at;
    }
}

TEST(ImageProbe, FilesAreReadAndUnreadableOnesReported) {
    test::TempDir dir;
    ImageProbe r;
    ASSERT_TRUE(checkValidImg(
        dir.write(QStringLiteral("a.gif"), QByteArray::fromHex("474946 383761 0a00 0b00 00")), r));
    EXPECT_EQ(r.imgType, 1);
    EXPECT_EQ(r.imgDepth, 1);
    r.imgType = 7;
    const Status s = checkValidImg(dir.file(QStringLiteral("missing.png")), r);
    EXPECT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(QStringLiteral("missing.png")));
    EXPECT_EQ(r.imgType, 0);
    EXPECT_FALSE(checkValidImg(dir.path(), r).isOk()); // a folder is not a file
}
