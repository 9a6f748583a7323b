#include "image/exiforientation.h"
#include "image/imageprobe.h"
#include "image/picturecheck.h"
#include "image/pictureimport.h"
#include "image/picturetexts.h"
#include "image/thumbnailloader.h"
#include "image/uprightdecode.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/scriptedtime.h"
#include "support/tempdir.h"

#include <QtEndian>
#include <gtest/gtest.h>
#include <tuple>

using namespace mms;
using namespace Qt::StringLiterals;
using Kind = PictureTrouble::Kind;

namespace {

QByteArray segment(int marker, const QByteArray& body) {
    const int n = int(body.size()) + 2;
    const char header[] = {char(0xFF), char(marker), char(n >> 8), char(n & 0xFF)};
    return QByteArray(header, 4) + body;
}

// What a phone puts before the frame: Exif, maker data and a preview, 100 KB and more in all.
QByteArray phoneMetadata() {
    QByteArray out;
    for (int marker : {0xE1, 0xE5, 0xE6, 0xE7, 0xE8})
        out += segment(marker, QByteArray(21000 + marker, char(marker)));
    return out;
}

QByteArray afterSoi(const QByteArray& jpeg, const QByteArray& inserted) {
    return jpeg.left(2) + inserted + jpeg.mid(2);
}

// An Exif block whose IFD0 holds one orientation entry.
QByteArray exif(bool little, int type, quint32 count, quint32 value) {
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

QByteArray photo(int w, int h) {
    return test::encoded(test::noise(w, h), "JPEG", 90);
}

} // namespace

TEST(ImageProbe, FollowsTheChainToAFrameBehindLargeMetadataAndNoFurtherThanItMust) {
    test::TempDir dir;
    const QByteArray plain = photo(64, 48);
    const QByteArray phone = afterSoi(plain, phoneMetadata());
    ASSERT_GT(phone.size(), 100000);
    const QByteArray gap = afterSoi(plain, phoneMetadata() + "garbage between segments");
    const struct {
        const char* what;
        QByteArray bytes;
        bool answer;
    } cases[] = {{"phone photo", phone, true},
                 {"broken chain", gap, false},
                 {"chain past the end", phone.left(100000), false}};
    for (const auto& c : cases) {
        ImageProbe fromFile;
        ASSERT_TRUE(checkValidImg(dir.write(u"p.jpg"_s, c.bytes), fromFile)) << c.what;
        for (const ImageProbe& r : {fromFile, checkValidImg(QByteArrayView(c.bytes))})
            EXPECT_EQ(std::tuple(r.answer, r.imgType, r.imgWidth, r.imgHeight, r.imgDepth),
                      c.answer ? std::tuple(true, 2, 64, 48, quint8(24))
                               : std::tuple(false, 0, 0, 0, quint8(0)))
                << c.what;
    }
    dir.write(u"p.jpg"_s, phone);
    EXPECT_EQ(listPictureFiles(dir.path(), 0), QStringList{u"p.jpg"_s});
}

TEST(ExifOrientation, EveryIntegerTypeInEitherByteOrderAndNothingElse) {
    const struct {
        int type;
        quint32 count, value;
        int expected;
    } cases[] = {{1, 1, 6, 6},           {3, 1, 8, 8}, {4, 1, 5, 5}, {9, 1, 6, 6}, {3, 1, 9, 0},
                 {9, 1, quint32(-6), 0}, {8, 1, 6, 0}, {5, 1, 6, 0}, {3, 2, 6, 0}};
    const QByteArray plain = photo(40, 20);
    for (const auto& c : cases)
        for (bool little : {true, false}) {
            // After a large maker segment, as phones write it.
            const QByteArray jpeg = afterSoi(plain, segment(0xE5, QByteArray(60000, 'm')) +
                                                        exif(little, c.type, c.count, c.value));
            EXPECT_EQ(exifOrientation(jpeg), c.expected) << c.type << ' ' << c.value << ' ' << little;
        }
    EXPECT_EQ(exifOrientation(test::encoded(test::filled(4, 4, Qt::red), "PNG")), 0);

    // Turned wherever a picture is shown or converted.
    test::TempDir dir;
    const QByteArray turned = afterSoi(plain, exif(false, 9, 1, 6));
    UprightPicture upright;
    ASSERT_TRUE(upright.open(turned, u"t.jpg"_s));
    EXPECT_EQ(upright.size(), QSize(20, 40));
    const QImage thumbnail = loadFittedPicture(dir.write(u"t.jpg"_s, turned), QSize(40, 40), Qt::white);
    EXPECT_EQ(thumbnail.pixelColor(2, 20), QColor(Qt::white)); // a tall picture leaves the sides empty
    EXPECT_NE(thumbnail.pixelColor(20, 2), QColor(Qt::white));
}

TEST(PictureCheck, EveryUnreadablePictureHasAPlainReason) {
    const QByteArray good = photo(64, 64);
    QByteArray huge = test::encoded(test::filled(16, 16, Qt::red), "JPEG");
    const qsizetype sof = huge.indexOf("\xFF\xC0");
    qToBigEndian<quint16>(33300, huge.data() + sof + 5), qToBigEndian<quint16>(25200, huge.data() + sof + 7);
    QByteArray png = test::encoded(test::noise(64, 64), "PNG");
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
        {"too large", huge, Kind::TooLarge, "is too large to decode (25200 \u00d7 33300 pixels)"},
    };
    for (const auto& c : cases) {
        const PictureTrouble t = checkPictureBytes(c.bytes);
        EXPECT_EQ(t.kind, c.kind) << c.what;
        if (!t.ok()) {
            EXPECT_TRUE(plainReason(t).startsWith(QString::fromUtf8(c.reason))) << c.what;
        }
    }
}

TEST(PictureCheck, ACutShortJpegIsAttachedOnlyWhenTheUserTakesIt) {
    test::TempDir home;
    test::FixedClock clock;
    test::ScriptedRandom random;
    const QByteArray good = photo(64, 64);
    const QString cut = home.write(u"cut.jpg"_s, good.left(good.size() / 2));
    const PictureImport refused = importPicture(cut, true, home.path(), clock, random);
    EXPECT_TRUE(refused.canTakeDamaged());
    EXPECT_EQ(refused.errorText(u"%1 bad"_s), QDir::toNativeSeparators(cut) + u" bad"_s);
    EXPECT_EQ(importPicture(cut, true, home.path(), clock, random, true).picturePath, cut);
    const QString text = home.write(u"note.jpg"_s, "hello");
    EXPECT_EQ(importPicture(text, true, home.path(), clock, random).errorNumber, picturetext::kErrTextFile);
}
