#include "image/exiforientation.h"
#include "image/imageprobe.h"
#include "image/picturecheck.h"
#include "image/picturetexts.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>
#include <tuple>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;
using Kind = PictureTrouble::Kind;

namespace {

QByteArray bytes(std::initializer_list<int> values) {
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

QByteArray frame(int h, int w, int components) {
    return bytes({8, h >> 8, h & 0xFF, w >> 8, w & 0xFF, components});
}

QByteArray encode(QImage::Format format, int w, int h, const char* type, bool progressive = false) {
    return encoded(filled(w, h, Qt::red).convertToFormat(format), type, -1, progressive);
}

// A 4 by 4 PNG whose header claims `colourType` at `bitDepth`.
QByteArray png(int colourType, int bitDepth) {
    QByteArray b = encode(QImage::Format_Indexed8, 4, 4, "png");
    b[25] = char(colourType);
    b[24] = char(bitDepth);
    return b;
}

// What a phone puts before the frame: Exif, maker data and a preview, 100 KB and more in all.
QByteArray phoneMetadata() {
    QByteArray out;
    for (int marker : {0xE1, 0xE5, 0xE6, 0xE7, 0xE8})
        out += segment(marker, QByteArray(21000 + marker, char(marker)));
    return out;
}

} // namespace

// Every row is probed in memory and from a file, which reads the first 64 KiB and seeks beyond.
TEST(ImageProbe, HeadersChainsAndHostileBytesInMemoryAndInFiles) {
    QByteArray bmp(54, '\0');
    bmp[0] = 'B', bmp[1] = 'M', bmp[18] = char(0x70), bmp[19] = char(0x11), bmp[20] = 1, bmp[22] = 5,
    bmp[28] = 32;
    const QByteArray soi("\xFF\xD8", 2), app1("\xFF\xD8\xFF\xE1", 4);
    const QByteArray plain = noisyJpeg(64, 48), phone = afterSoi(plain, phoneMetadata());
    ASSERT_GT(phone.size(), 100000);
    const struct {
        const char* what;
        QByteArray bytes;
        bool answer = false;
        int type = 0, w = 0, h = 0, depth = 0;
    } cases[] = {
        {"gif", QByteArray::fromHex("474946383961 2c01 c800 f7 0000"), true, 1, 300, 200, 8},
        {"gif87a of one bit", QByteArray::fromHex("474946 383761 0a00 0b00 00"), true, 1, 10, 11, 1},
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
        // A frame beyond the first 64 KiB is found by the chain; a start of image beyond them is not.
        {"frame beyond 64 KiB",
         soi + segment(0xFE, QByteArray(65000, 'c')) + segment(0xFE, QByteArray(600, 'c')) +
             segment(0xC0, frame(1, 1, 3)),
         true, 2, 1, 1, 24},
        {"phone photo", phone, true, 2, 64, 48, 24},
        {"broken chain", afterSoi(plain, phoneMetadata() + "garbage between segments")},
        {"chain past the end", phone.left(100000)},
    };
    TempDir dir;
    for (const auto& c : cases) {
        ImageProbe fromFile;
        ASSERT_TRUE(checkValidImg(dir.write(u"p.jpg"_s, c.bytes), fromFile)) << c.what;
        for (const ImageProbe& r : {fromFile, checkValidImg(QByteArrayView(c.bytes))})
            EXPECT_EQ(std::tuple(r.answer, r.imgType, r.imgWidth, r.imgHeight, r.imgDepth),
                      std::tuple(c.answer, c.type, c.w, c.h, c.depth))
                << c.what;
    }
    for (int at : {65520, 65522, 65523, 65524, 65525, 65530}) {
        const QByteArray b =
            QByteArray(at, 'x') + soi + QByteArray("\xFF\xC0\x00\x11", 4) + QByteArray(20, char(0xFF));
        EXPECT_EQ(checkValidImg(QByteArrayView(b)).imgType, at <= 65522 ? 2 : 0) << at;
    }
    ImageProbe r;
    r.imgType = 7;
    const Status missing = checkValidImg(dir.file(u"missing.png"_s), r);
    EXPECT_TRUE(!missing.isOk() && missing.message().contains(u"missing.png"_s));
    EXPECT_EQ(r.imgType, 0);
    EXPECT_FALSE(checkValidImg(dir.path(), r).isOk()); // a folder is not a file
}

TEST(ExifOrientation, EveryIntegerTypeInEitherByteOrderAndNothingElse) {
    const struct {
        int type;
        quint32 count, value;
        int expected;
    } cases[] = {{1, 1, 6, 6},           {3, 1, 8, 8}, {4, 1, 5, 5}, {9, 1, 6, 6}, {3, 1, 9, 0},
                 {9, 1, quint32(-6), 0}, {8, 1, 6, 0}, {5, 1, 6, 0}, {3, 2, 6, 0}};
    const QByteArray plain = noisyJpeg(40, 20);
    for (const auto& c : cases)
        for (bool little : {true, false}) {
            // After a large maker segment, as phones write it.
            const QByteArray jpeg = afterSoi(plain, segment(0xE5, QByteArray(60000, 'm')) +
                                                        exif(little, c.type, c.count, c.value));
            EXPECT_EQ(exifOrientation(jpeg), c.expected) << c.type << ' ' << c.value << ' ' << little;
        }
    EXPECT_EQ(exifOrientation(solid("PNG", 4, 4, Qt::red)), 0);
}

TEST(PictureCheck, EveryUnreadablePictureHasAPlainReason) {
    const QByteArray good = noisyJpeg(64, 64);
    const QByteArray png = encoded(noise(64, 64), "PNG");
    const struct {
        const char* what;
        QByteArray bytes;
        Kind kind;
        const char* reason;
    } cases[] = {
        {"good", good, Kind::None, ""},
        {"empty", {}, Kind::Empty, "is an empty file"},
        {"text", "Dear Sir,\nthis is no picture.\n", Kind::Text, "is not a picture (the file is text)"},
        {"binary", QByteArray(300, char(0x01)), Kind::NotPicture, "is not a picture"},
        {"cut short", good.left(good.size() / 2), Kind::CutShort, "is cut short or damaged"},
        {"header only", good.left(good.indexOf("\xFF\xDA")), Kind::Damaged, "is cut short or damaged"},
        {"png cut short", png.left(png.size() / 2), Kind::Damaged, "is cut short or damaged"},
        {"too large", claiming(solid("JPEG", 16, 16, Qt::red), 25200, 33300), Kind::TooLarge,
         "is too large to decode (25200 \u00d7 33300 pixels)"},
    };
    for (const auto& c : cases) {
        const PictureTrouble t = checkPictureBytes(c.bytes);
        EXPECT_EQ(t.kind, c.kind) << c.what;
        if (!t.ok()) {
            EXPECT_TRUE(plainReason(t).startsWith(QString::fromUtf8(c.reason))) << c.what;
        }
    }
}
