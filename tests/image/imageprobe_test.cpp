#include "image/imageprobe.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <tuple>

using namespace mms;

namespace {

QByteArray encode(const QImage& image, const char* format, bool progressive = false) {
    return test::encoded(image, format, -1, progressive);
}

QImage picture(int w, int h, QImage::Format format) {
    return test::filled(w, h, Qt::red).convertToFormat(format);
}

void expectProbe(const QByteArray& bytes, bool answer, int type, int w, int h, int depth, const char* what) {
    const ImageProbe r = checkValidImg(QByteArrayView(bytes));
    EXPECT_EQ(std::tuple(r.answer, r.imgType, r.imgWidth, r.imgHeight, r.imgDepth),
              std::tuple(answer, type, w, h, depth))
        << what;
}
void expectRefused(const QByteArray& bytes, const char* what) {
    expectProbe(bytes, false, 0, 0, 0, 0, what);
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

} // namespace

TEST(ImageProbe, RealHeadersOfEveryKind) {
    expectProbe(QByteArray::fromHex("474946383961 2c01 c800 f7 0000"), true, 1, 300, 200, 8, "gif");
    expectProbe(encode(picture(321, 17, QImage::Format_RGB888), "bmp"), true, 4, 321, 17, 24, "bmp");
    expectProbe(encode(picture(40, 30, QImage::Format_RGB888), "png"), true, 3, 40, 30, 24, "png rgb");
    expectProbe(encode(picture(40, 30, QImage::Format_ARGB32), "png"), true, 3, 40, 30, 32, "png rgba");
    expectProbe(encode(picture(40, 30, QImage::Format_Grayscale8), "png"), true, 3, 40, 30, 8, "png grey");
    expectProbe(encode(picture(40, 30, QImage::Format_Grayscale16), "png"), true, 3, 40, 30, 16,
                "png grey 16");
    expectProbe(encode(picture(640, 480, QImage::Format_RGB32), "jpeg"), true, 2, 640, 480, 24,
                "jpeg baseline");
    expectProbe(encode(picture(64, 48, QImage::Format_Grayscale8), "jpeg"), true, 2, 64, 48, 8, "jpeg grey");
    expectProbe(encode(picture(90, 70, QImage::Format_RGB32), "jpeg", true), true, 2, 90, 70, 24,
                "jpeg progressive");
}

TEST(ImageProbe, HeaderFieldRules) {
    QByteArray png = encode(picture(4, 4, QImage::Format_Indexed8), "png");
    png[25] = 3;
    png[24] = 4; // a palette image is 8 bits deep whatever its bit depth
    expectProbe(png, true, 3, 4, 4, 8, "palette");
    png[25] = 4;
    png[24] = 16;
    expectProbe(png, true, 3, 4, 4, 32, "grey with alpha");
    png[25] = 5; // unknown colour type: falls through to the JPEG scan, which finds nothing
    expectRefused(png, "unknown colour type");
    expectProbe(png + segment(0xD8, {}).left(2) + segment(0xC0, frame(9, 7, 3)), true, 2, 7, 9, 24,
                "unknown colour type with a frame");

    QByteArray bmp(54, '\0');
    bmp[0] = 'B', bmp[1] = 'M', bmp[18] = char(0x70), bmp[19] = char(0x11), bmp[20] = 1, bmp[22] = 5,
    bmp[28] = 32;
    expectProbe(bmp, true, 4, 0x1170, 5, 32, "bmp wider than 65535");

    // Segments before the frame are skipped, DHT (C4) is not a frame; any prefix before SOI is fine.
    const QByteArray soi("\xFF\xD8", 2);
    const QByteArray jpeg = "junk" + soi + segment(0xE0, "JFIF\0") + segment(0xC4, QByteArray(20, 1)) +
                            segment(0xC8, {}) + segment(0xC2, frame(100, 200, 1));
    expectProbe(jpeg, true, 2, 200, 100, 8, "skipped segments");
}

TEST(ImageProbe, HostileBytesStayInsideTheBuffer) {
    expectRefused({}, "empty");
    expectRefused("just some text\n", "text");
    expectRefused(QByteArray(70000, char(0xFF)), "all 0xFF");

    const QByteArray soi("\xFF\xD8\xFF", 3);
    for (int at : {65520, 65522, 65523, 65524, 65525, 65530}) {
        QByteArray b(at, 'x');
        b += soi + QByteArray("\xC0\x00\x11", 3);
        b += QByteArray(20, char(0xFF));
        const ImageProbe r = checkValidImg(QByteArrayView(b));
        EXPECT_EQ(r.imgType, at <= 65522 ? 2 : 0) << at;
    }
    // A segment length that jumps past the limit, one that lands on the limit, and a zero length.
    const QByteArray start("\xFF\xD8\xFF\xE1", 4);
    expectRefused(start + QByteArray("\xFF\xFF", 2), "jump past the end");
    QByteArray toLimit = start + QByteArray::fromHex("fff8") + QByteArray(65540, '\0');
    expectRefused(toLimit, "jump to the limit");
    expectProbe(start + QByteArray(2, '\0') + segment(0xC1, frame(3, 4, 3)), true, 2, 4, 3, 24,
                "zero length");

    // A frame beyond the first 64 KiB is not seen.
    expectRefused(soi.left(2) + segment(0xFE, QByteArray(65000, 'c')) + segment(0xFE, QByteArray(600, 'c')) +
                      segment(0xC0, frame(1, 1, 3)),
                  "frame too late");
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
