#include "image/jpegwriter.h"
#include "picturefiles.h"
#include "support/outsidetool.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;

namespace {

QByteArray quantTables(const QByteArray& jpeg) {
    return jpeg.mid(jpeg.indexOf("\xFF\xDB"), 2 * 69);
}

// Red above blue with a green left edge: shows flips, mirror images and swapped channels.
QImage marked(QImage::Format format = QImage::Format_RGB32) {
    QImage image = test::filled(37, 20, Qt::red);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 37; ++x)
            if (x == 0 || y >= 10) image.setPixelColor(x, y, x == 0 ? Qt::green : Qt::blue);
    return image.convertToFormat(format);
}

} // namespace

TEST(JpegWriter, WritesBaselineThreeComponentJpegsOfTheSourceSizeAtQuality35) {
    test::TempDir dir;
    const QString out = dir.file(QStringLiteral("out.jpg"));
    const std::pair<const char*, QByteArray> sources[] = {
        {"palette.png", test::encoded(marked(QImage::Format_Indexed8), "PNG")},
        {"grey.jpg", test::encoded(marked(QImage::Format_Grayscale8), "JPG", 95)},
        {"colour.jpg", test::encoded(marked(), "JPG", 95)},
        {"colour.bmp", test::encoded(marked(), "BMP")}};
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
                                      dir.write(QStringLiteral("in.ppm"), test::encoded(marked(), "PPM"))});
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
