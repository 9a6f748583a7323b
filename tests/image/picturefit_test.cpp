#include "app/mmscrun.h"
#include "image/jpegwriter.h"
#include "image/picturefit.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

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

} // namespace

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
