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

#include <QImageReader>
#include <gtest/gtest.h>
#include <tuple>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

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
        clock.time = QDateTime(QDate(2024, 3, 7), QTime(9, 5, 41));
        random.draws = {0.5, 0.25, 0.5, 0.75};
    }
    QString library(const QString& name, const QByteArray& bytes, qsizetype length = 0) const {
        return home.write(u"UserData/Picture/"_s + name, test::padded(bytes, length));
    }
    QString scratch(const QString& name = {}) const { return workspace::tmpJpg(home.path()) + u'/' + name; }
    qsizetype scratchCount() const { return QDir(scratch()).entryList(QDir::Files).size(); }
    PictureImport import(const QString& source, bool listHasItems = true) {
        return importPicture(source, listHasItems, home.path(), clock, random);
    }
    test::TempDir home;
    test::FixedClock clock;
    test::ScriptedRandom random;
    const QByteArray bmp = test::solid("BMP", 150, 150, Qt::darkCyan);
};

} // namespace

TEST(JpegWriter, WritesBaselineThreeComponentJpegsOfTheSourceSizeAtQuality35) {
    test::TempDir dir;
    const QString out = dir.file(u"out.jpg"_s);
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
    const auto cjpeg = test::runTool(
        u"cjpeg"_s, {u"-quality"_s, u"35"_s, dir.write(u"in.ppm"_s, test::encoded(edged(), "PPM"))});
    if (!cjpeg) GTEST_SKIP() << "cjpeg (libjpeg-turbo-progs) is not installed";
    EXPECT_EQ(test::quantTables(cjpeg->out), test::quantTables(test::TempDir::read(out)));
}

TEST(JpegWriter, AFailureLeavesNoFileAndAnExistingOneUntouched) {
    test::TempDir dir;
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(8, 8));
    const Status status = writeJpegFile(dib, dir.file(u"no/folder/out.jpg"_s), kJpegQuality);
    EXPECT_TRUE(status.message().contains(u"out.jpg"_s));
    const QString existing = dir.write(u"keep.jpg"_s, "precious");
    EXPECT_FALSE(writeJpegFile(dib, existing, 0).isOk());
    EXPECT_FALSE(reencodeAsJpeg(dir.write(u"text.jpg"_s, "no picture"), existing).isOk());
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
        const QImage scaled =
            QImage::fromData(c.bytes).scaled(next, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        EXPECT_GT(test::jpegOf(scaled, kJpegQuality).size(), c.maxBytes) << c.name;
    }
}

TEST(PictureFit, SaysWhyWhenNoSizeFitsAndWritesNothing) {
    test::TempDir dir;
    const QString picture = dir.write(u"p.png"_s, test::encoded(marked(80, 60), "PNG"));
    const QString out = dir.file(u"out.jpg"_s);
    const std::atomic<bool> cancelled{true};
    const struct {
        FitResult fit;
        FitResult::Outcome outcome;
        QStringList told;
    } cases[] = {
        // Even 1 by 1 pixel takes the JPEG's headers and tables: several hundred bytes.
        {fitPictureToFile(picture, out, 300), FitResult::Outcome::NoFit, {u"p.png"_s, u"300"_s}},
        // A strip 1 pixel high keeps its shape down to a long side of 32768 at the smallest.
        {fitPicture(test::encoded(test::noise(65535, 1), "PNG"), u"strip"_s, 2000),
         FitResult::Outcome::NoFit,
         {u"32768 by 1"_s}},
        {fitPictureToFile(dir.write(u"t.jpg"_s, "not a picture"), out),
         FitResult::Outcome::Failed,
         {u"t.jpg"_s}},
        {fitPictureToFile(picture, out, 2000, &cancelled), FitResult::Outcome::Cancelled, {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.fit.outcome, c.outcome) << c.fit.message.toStdString();
        for (const QString& part : c.told)
            EXPECT_TRUE(c.fit.message.contains(part)) << c.fit.message.toStdString();
    }
    EXPECT_FALSE(QFile::exists(out));
}

// mmsc's picture commands print one line, or say why in one line and write nothing.
TEST(MmscPictures, FitAndGifPrintTheResultOrSayWhyAndWriteAllOrNothing) {
    test::TempDir dir;
    const QString bmp = dir.write(u"in.bmp"_s, test::encoded(marked(700, 300), "BMP"));
    const QString gif = dir.write(u"in.gif"_s, test::animatedGif(QSize(256, 256), {5, 5, 5}, 0));
    const QString text = dir.write(u"text.gif"_s, "not a picture"), none = dir.file(u"none"_s);
    for (const auto& [command, in, frames] :
         {std::tuple(u"fit"_s, bmp, u""_s), std::tuple(u"gif"_s, gif, u"\t3"_s)}) {
        const QString out = dir.file(command + u".out"_s);
        const test::MmscRun run = test::runMmsc({}, u"%1 %2 %3"_s.arg(command, in, out));
        const QSize size = QImageReader(out).size();
        test::expectRun(run, 0,
                        u"%1%2\t%3x%4\t%5\n"_s.arg(out, frames)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(QFileInfo(out).size()));
        EXPECT_LT(QFileInfo(out).size(), kAttachmentLimit); // the default limit
    }
    const struct {
        QString args;
        int status;
        const char* errHas;
    } refusals[] = {
        {u"fit %1 %2 --max-bytes 200"_s.arg(bmp, none), 1, "200"},
        {u"gif %1 %2 --max-bytes 10"_s.arg(gif, none), 1, "10"},
        {u"fit %1"_s.arg(bmp), 2, ""},
        {u"gif %1"_s.arg(gif), 2, ""},
        {u"fit %1 %2 --max-bytes x"_s.arg(bmp, none), 2, "--max-bytes"},
        {u"gif %1 %2 --max-bytes 0"_s.arg(gif, none), 2, "--max-bytes"},
        {u"fit %1/missing.png %2"_s.arg(dir.path(), none), 2, "missing.png"},
        {u"gif %1 %2"_s.arg(text, none), 2, "text.gif"},
        {u"jpeg %1 %2 --quality 0"_s.arg(bmp, none), 2, "--quality"},
        {u"fit %1 %2 --quality"_s.arg(bmp, none), 2, "--quality"},
        {u"build --quality x --slide --pic %1 --export %2"_s.arg(bmp, none), 2, "--quality"},
    };
    for (const auto& c : refusals) {
        SCOPED_TRACE(c.args.toStdString());
        test::expectRun(test::runMmsc({}, c.args), c.status, {}, QLatin1String(c.errHas));
    }
    EXPECT_FALSE(QFile::exists(none));
}

// The file at the limit is converted three times: three scratch names, none reused.
TEST_F(PictureImportTest, OnlyFilesUnderTheLimitAreUsedAsTheyAreAndScratchNamesAreNeverReused) {
    EXPECT_EQ(conversionStamp(QDateTime(QDate(2024, 12, 17), QTime(13, 45))), u"202412171345"_s);
    const QString under = library(u"under.bmp"_s, bmp, 102399);
    const QString at = library(u"at.bmp"_s, bmp, 102400);
    EXPECT_EQ(import(under).picturePath, under);
    const PictureImport converted = import(at);
    EXPECT_EQ(converted.picturePath, scratch(u"2024379555000.jpg"_s)); // no field padded
    EXPECT_LT(QFileInfo(converted.picturePath).size(), kAttachmentLimit);
    EXPECT_EQ(QImage(converted.picturePath).size(), QSize(150, 150));
    EXPECT_EQ(import(at, false).picturePath, at); // nothing listed: used as it is, whatever its size
    EXPECT_EQ(import(at).picturePath, scratch(u"2024379532500.jpg"_s));
    // 55000 drawn again: drawn anew rather than overwriting a picture a slide may hold.
    EXPECT_EQ(import(at).picturePath, scratch(u"2024379577500.jpg"_s));
    EXPECT_EQ(scratchCount(), 3);
}

TEST_F(PictureImportTest, RefusedSourcesSayWhyAndLeaveNoScratchFile) {
    const struct {
        QString source;
        int error;
        bool named; // the detail names the file
    } cases[] = {{library(u"big.gif"_s, test::tinyGif(), 150000), imagetext::kErrPictureTooLarge, false},
                 {library(u"BIG.GIF"_s, test::tinyGif(), 150000), imagetext::kErrPictureTooLarge, false},
                 {home.file(u"gone.jpg"_s), imagetext::kErrPictureNotLoaded, true},
                 {library(u"fake.jpg"_s, QByteArray(150000, 'x')), picturetext::kErrTextFile, true}};
    for (const auto& c : cases) {
        const PictureImport refused = import(c.source);
        EXPECT_EQ(refused.errorNumber, c.error) << c.source.toStdString();
        EXPECT_EQ(refused.detail.contains(QFileInfo(c.source).fileName()), c.named) << c.source.toStdString();
        EXPECT_EQ(refused.errorText(u"No.\n%1"_s), u"No.\n"_s + refused.detail);
    }
    EXPECT_EQ(scratchCount(), 0);
    // Only the two spellings of the extension mark a GIF: this one is converted.
    const PictureImport mixed = import(library(u"mixed.Gif"_s, test::tinyGif(), 150000));
    EXPECT_GT(QImage(mixed.picturePath).pixelColor(0, 0).red(), 180);
    // A conversion still too large stays in the scratch folder.
    const PictureImport result = import(library(u"noise.bmp"_s, test::encoded(test::noise(600, 600), "BMP")));
    EXPECT_EQ(result.errorNumber, imagetext::kErrPictureTooLarge);
    EXPECT_TRUE(result.picturePath.isEmpty());
    EXPECT_GE(QFileInfo(result.convertedPath).size(), kAttachmentLimit);
    EXPECT_TRUE(result.convertedPath.startsWith(scratch()));
}
