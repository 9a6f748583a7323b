#include "app/mmscrun.h"
#include "common/workspace.h"
#include "image/jpegwriter.h"
#include "image/picturefit.h"
#include "image/pictureimport.h"
#include "image/picturetexts.h"
#include "picturefiles.h"
#include "support/outsidetool.h"
#include "support/qtprint.h"
#include "support/scriptedtime.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

QByteArray quantTables(const QByteArray& jpeg) {
    return jpeg.mid(jpeg.indexOf("\xFF\xDB"), 2 * 69);
}

// Red above blue with a green left edge: shows flips, mirror images and swapped channels.
QImage edged(QImage::Format format = QImage::Format_RGB32) {
    QImage image = test::filled(37, 20, Qt::red);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 37; ++x)
            if (x == 0 || y >= 10) image.setPixelColor(x, y, x == 0 ? Qt::green : Qt::blue);
    return image.convertToFormat(format);
}

// Noise, so that the size depends on the pixels, over a red left half and a blue right half.
QImage marked(int width, int height) {
    QImage image = test::noise(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, (image.pixel(x, y) & 0x3f3f3f) | (x < width / 2 ? 0xffc00000 : 0xff0000c0));
    return image;
}

bool reddish(QRgb c) {
    return qRed(c) > qBlue(c) + 60;
}

class PictureImportTest : public ::testing::Test {
protected:
    PictureImportTest() {
        clock.time = QDateTime(QDate(2024, 3, 7), QTime(9, 5, 41)); // no field padded
        random.draws = {0.5, 0.25, 0.5, 0.75};
    }
    QString library(const QString& name, const QByteArray& bytes, qsizetype length = 0) const {
        return home.write(QStringLiteral("UserData/Picture/") + name, test::padded(bytes, length));
    }
    QString scratch(const QString& name = {}) const { return workspace::tmpJpg(home.path()) + u'/' + name; }
    qsizetype scratchCount() const { return QDir(scratch()).entryList(QDir::Files).size(); }
    PictureImport import(const QString& source, bool listHasItems = true) {
        return importPicture(source, listHasItems, home.path(), clock, random);
    }
    test::TempDir home;
    test::FixedClock clock;
    test::ScriptedRandom random;
    const QByteArray bmp = test::encoded(test::filled(150, 150, Qt::darkCyan), "BMP");
};

} // namespace

TEST(JpegWriter, WritesBaselineThreeComponentJpegsOfTheSourceSizeAtQuality35) {
    test::TempDir dir;
    const QString out = dir.file(QStringLiteral("out.jpg"));
    const std::pair<const char*, QByteArray> sources[] = {
        {"palette.png", test::encoded(edged(QImage::Format_Indexed8), "PNG")},
        {"grey.jpg", test::encoded(edged(QImage::Format_Grayscale8), "JPG", 95)},
        {"colour.jpg", test::encoded(edged(), "JPG", 95)},
        {"colour.bmp", test::encoded(edged(), "BMP")}};
    for (const auto& [name, bytes] : sources) {
        ASSERT_TRUE(reencodeAsJpeg(dir.write(QLatin1String(name), bytes), out).isOk()) << name;
        const QByteArray jpeg = test::TempDir::read(out);
        const qsizetype frame = jpeg.indexOf("\xFF\xC0"); // baseline
        ASSERT_GT(frame, 0) << name;
        // 20 rows of 37; Y, Cb, Cr with only Y sampled 2x2 (4:2:0).
        EXPECT_EQ(jpeg.mid(frame + 5, 14).toHex(), QByteArray("0014002503012200021101031101")) << name;
        // Upright, not mirrored, colours in place: the bottom-up rows were read the right way.
        const QImage back(out), original = QImage::fromData(bytes);
        for (const QPoint p : {QPoint(20, 2), QPoint(20, 17), QPoint(0, 5)})
            EXPECT_LT(qAbs(qGray(back.pixel(p)) - qGray(original.pixel(p))), 40) << name;
    }
    // Quality 35: libjpeg-turbo's own encoder at that quality uses the same tables.
    const auto cjpeg = test::runTool(QStringLiteral("cjpeg"),
                                     {QStringLiteral("-quality"), QStringLiteral("35"),
                                      dir.write(QStringLiteral("in.ppm"), test::encoded(edged(), "PPM"))});
    if (!cjpeg) GTEST_SKIP() << "cjpeg (libjpeg-turbo-progs) is not installed";
    EXPECT_EQ(quantTables(cjpeg->out), quantTables(test::TempDir::read(out)));
}

TEST(JpegWriter, AFailureLeavesNoFileAndAnExistingOneUntouched) {
    test::TempDir dir;
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(8, 8));
    const Status status = writeJpegFile(dib, dir.file(QStringLiteral("no/folder/out.jpg")), kJpegQuality);
    EXPECT_TRUE(status.message().contains(QStringLiteral("out.jpg")));
    const QString existing = dir.write(QStringLiteral("keep.jpg"), "precious");
    EXPECT_FALSE(writeJpegFile(dib, existing, 0).isOk());
    EXPECT_FALSE(reencodeAsJpeg(dir.write(QStringLiteral("text.jpg"), "no picture"), existing).isOk());
    EXPECT_EQ(test::TempDir::read(existing), QByteArray("precious"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
}

// Every case: the limit is met, the shape kept within a pixel, one pixel more on the long side
// would not fit (checked by scaling the same upright pixels), and the result is an upright JPEG
// without an orientation tag.
TEST(PictureFit, FindsTheLargestUprightSizeUnderTheLimit) {
    const struct {
        const char* name;
        QByteArray bytes;
        qint64 maxBytes;
        QSize upright;
    } cases[] = {
        {"landscape bmp", test::encoded(marked(900, 500), "BMP"), kFitMaxBytes, {900, 500}},
        {"turned jpeg",
         test::withOrientation(test::encoded(marked(1600, 1000), "JPG", 95), 6),
         10000,
         {1000, 1600}},
        {"thin png", test::encoded(marked(3000, 7), "PNG"), 4000, {3000, 7}},
        {"fits whole", test::encoded(marked(60, 40), "PNG"), kFitMaxBytes, {60, 40}},
    };
    for (const auto& c : cases) {
        const FitResult fit = fitPicture(c.bytes, QString::fromLatin1(c.name), c.maxBytes);
        ASSERT_TRUE(fit.fitted()) << c.name << ": " << fit.message.toStdString();
        EXPECT_LE(fit.jpeg.size(), c.maxBytes) << c.name;
        const QImage back = QImage::fromData(fit.jpeg);
        EXPECT_EQ(back.size(), fit.size) << c.name;
        EXPECT_FALSE(fit.jpeg.contains("Exif")) << c.name;
        EXPECT_TRUE(fit.jpeg.contains("\xFF\xC0")) << c.name; // baseline
        const double scale = double(fit.size.width()) / c.upright.width();
        EXPECT_LE(std::abs(c.upright.height() * scale - fit.size.height()), 1.0) << c.name;
        // Red on the left, or on top once turned a quarter clockwise; blue opposite.
        const bool turned = c.upright.height() > c.upright.width();
        const int w = back.width() - 1, h = back.height() - 1;
        EXPECT_TRUE(reddish(back.pixel(turned ? QPoint(w / 2, 0) : QPoint(0, h / 2)))) << c.name;
        EXPECT_FALSE(reddish(back.pixel(turned ? QPoint(w / 2, h) : QPoint(w, h / 2)))) << c.name;
        if (fit.size == c.upright) continue;
        // Repeats the search's last step, except on the JPEG, which it decoded at half scale.
        if (QByteArray(c.name).endsWith("jpeg")) continue;
        const int longer = qMax(fit.size.width(), fit.size.height()) + 1;
        const QSize next =
            c.upright.width() >= c.upright.height()
                ? QSize(longer, qMax(1, qRound(double(c.upright.height()) * longer / c.upright.width())))
                : QSize(qMax(1, qRound(double(c.upright.width()) * longer / c.upright.height())), longer);
        QByteArray bigger;
        ASSERT_TRUE(encodeJpeg(QImage::fromData(c.bytes)
                                   .convertToFormat(QImage::Format_RGB32)
                                   .scaled(next, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                               kJpegQuality, bigger)
                        .isOk());
        EXPECT_GT(bigger.size(), c.maxBytes) << c.name;
    }
}

TEST(PictureFit, SaysWhyWhenNoSizeFitsAndWritesNothing) {
    test::TempDir dir;
    const QString picture = dir.write(u"p.png"_s, test::encoded(marked(80, 60), "PNG"));
    const QString out = dir.file(u"out.jpg"_s);
    // Even 1 by 1 pixel takes the JPEG's headers and tables: several hundred bytes.
    FitResult fit = fitPictureToFile(picture, out, 300);
    EXPECT_EQ(fit.outcome, FitResult::Outcome::NoFit);
    EXPECT_TRUE(fit.message.contains(u"p.png"_s) && fit.message.contains(u"300"_s));
    // A strip 1 pixel high keeps its shape down to a long side of 32768 at the smallest.
    fit = fitPicture(test::encoded(test::noise(65535, 1), "PNG"), u"strip"_s, 2000);
    EXPECT_EQ(fit.outcome, FitResult::Outcome::NoFit);
    EXPECT_TRUE(fit.message.contains(u"32768 by 1"_s)) << fit.message.toStdString();

    fit = fitPictureToFile(dir.write(u"t.jpg"_s, "not a picture"), out);
    EXPECT_EQ(fit.outcome, FitResult::Outcome::Failed);
    EXPECT_TRUE(fit.message.contains(u"t.jpg"_s));
    const std::atomic<bool> cancelled{true};
    EXPECT_EQ(fitPictureToFile(picture, out, 2000, &cancelled).outcome, FitResult::Outcome::Cancelled);
    EXPECT_FALSE(QFile::exists(out));
}

TEST(PictureFit, MmscFitPrintsTheResultOrSaysWhyInOneLine) {
    test::TempDir dir;
    const QString in = dir.write(u"in.bmp"_s, test::encoded(marked(700, 300), "BMP"));
    const QString out = dir.file(u"out.jpg"_s);
    test::MmscRun run = test::runMmsc({}, u"fit %1 %2"_s.arg(in, out));
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QSize size = QImage::fromData(test::TempDir::read(out), "JPEG").size();
    EXPECT_EQ(run.out,
              u"%1\t%2x%3\t%4\n"_s.arg(out).arg(size.width()).arg(size.height()).arg(QFileInfo(out).size()));
    EXPECT_LT(QFileInfo(out).size(), kAttachmentLimit); // the default limit

    const QString none = dir.file(u"none.jpg"_s);
    run = test::runMmsc({}, u"fit %1 %2 --max-bytes 200"_s.arg(in, none));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err.count(u'\n'), 1);
    for (const QString& bad : {u"fit %1"_s.arg(in), u"fit %1 %2 --max-bytes x"_s.arg(in, none),
                               u"fit %1/missing.png %2"_s.arg(dir.path(), none)})
        EXPECT_EQ(test::runMmsc({}, bad).exitCode, 2) << bad.toStdString();
    EXPECT_FALSE(QFile::exists(none));
}

TEST_F(PictureImportTest, ScratchNamesHaveNoPaddingAndNeverReuseAName) {
    EXPECT_EQ(conversionStamp(QDateTime(QDate(2024, 12, 17), QTime(13, 45))), QStringLiteral("202412171345"));
    const QString big = library(QStringLiteral("big.bmp"), bmp, 200000);
    EXPECT_EQ(import(big).picturePath, scratch(QStringLiteral("2024379555000.jpg")));
    EXPECT_EQ(import(big).picturePath, scratch(QStringLiteral("2024379532500.jpg")));
    // 55000 drawn again: drawn anew rather than overwriting a picture a slide may hold.
    EXPECT_EQ(import(big).picturePath, scratch(QStringLiteral("2024379577500.jpg")));
}

TEST_F(PictureImportTest, OnlyFilesUnderTheLimitAreUsedAsTheyAre) {
    const QString under = library(QStringLiteral("under.bmp"), bmp, 102399);
    const QString at = library(QStringLiteral("at.bmp"), bmp, 102400);
    EXPECT_EQ(import(under).picturePath, under);
    const PictureImport converted = import(at);
    EXPECT_EQ(converted.picturePath, scratch(QStringLiteral("2024379555000.jpg")));
    EXPECT_LT(QFileInfo(converted.picturePath).size(), kAttachmentLimit);
    EXPECT_EQ(QImage(converted.picturePath).size(), QSize(150, 150));
    EXPECT_EQ(import(at, false).picturePath, at); // nothing listed: used as it is, whatever its size
    EXPECT_EQ(scratchCount(), 1);
}

TEST_F(PictureImportTest, LargeGifsByTheirTwoPatternsAndConversionsStillTooLargeAreRefused) {
    for (const char* name : {"big.gif", "BIG.GIF"})
        EXPECT_EQ(import(library(QLatin1String(name), test::tinyGif(), 150000)).errorNumber,
                  imagetext::kErrPictureTooLarge);
    EXPECT_EQ(scratchCount(), 0);
    const PictureImport mixed = import(library(QStringLiteral("mixed.Gif"), test::tinyGif(), 150000));
    EXPECT_GT(QImage(mixed.picturePath).pixelColor(0, 0).red(), 180);
    // A conversion still too large stays in the scratch folder.
    const PictureImport result =
        import(library(QStringLiteral("noise.bmp"), test::encoded(test::noise(600, 600), "BMP")));
    EXPECT_EQ(result.errorNumber, imagetext::kErrPictureTooLarge);
    EXPECT_TRUE(result.picturePath.isEmpty());
    EXPECT_GE(QFileInfo(result.convertedPath).size(), kAttachmentLimit);
    EXPECT_TRUE(result.convertedPath.startsWith(scratch()));
}

TEST_F(PictureImportTest, UnreadableSourcesAreReportedWithTheirName) {
    const PictureImport missing = import(home.file(QStringLiteral("gone.jpg")));
    EXPECT_EQ(missing.errorNumber, imagetext::kErrPictureNotLoaded);
    EXPECT_TRUE(missing.detail.contains(QStringLiteral("gone.jpg")));
    const PictureImport broken = import(library(QStringLiteral("fake.jpg"), QByteArray(150000, 'x')));
    EXPECT_EQ(broken.errorNumber, picturetext::kErrTextFile);
    EXPECT_EQ(broken.errorText(QStringLiteral("No.\n%1")), QStringLiteral("No.\n") + broken.detail);
    EXPECT_TRUE(broken.detail.contains(QStringLiteral("fake.jpg")));
    EXPECT_EQ(scratchCount(), 0);
}
