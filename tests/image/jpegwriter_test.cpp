#include "image/cdibsection.h"
#include "image/jpegwriter.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>
#include <map>
#include <turbojpeg.h>

using namespace mms;

namespace {

// The markers of a JPEG up to its first scan: the frame type, its component count and the
// quantisation tables by id.
struct JpegLayout {
    int frameMarker = 0;
    int components = 0;
    std::map<int, QByteArray> quantTables;
};

JpegLayout layoutOf(const QByteArray& jpeg) {
    JpegLayout layout;
    qsizetype i = 2; // after the start-of-image marker
    while (i + 4 <= jpeg.size() && quint8(jpeg[i]) == 0xFF) {
        const int marker = quint8(jpeg[i + 1]);
        const int length = quint8(jpeg[i + 2]) * 256 + quint8(jpeg[i + 3]);
        const QByteArray body = jpeg.mid(i + 4, length - 2);
        if (marker == 0xDB)
            for (qsizetype t = 0; t + 65 <= body.size(); t += 65)
                layout.quantTables[body[t] & 0x0F] = body.mid(t + 1, 64);
        if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
            layout.frameMarker = marker;
            layout.components = quint8(body[5]);
        }
        if (marker == 0xDA) break;
        i += 2 + length;
    }
    return layout;
}

// Top half red, bottom half blue, a green left edge: shows flips, mirror images and channel swaps.
QImage orientationPicture(QImage::Format format = QImage::Format_RGB32) {
    QImage image = test::filled(37, 20, Qt::red);
    for (int y = 10; y < 20; ++y)
        for (int x = 0; x < 37; ++x)
            image.setPixelColor(x, y, Qt::blue);
    for (int y = 0; y < 20; ++y)
        image.setPixelColor(0, y, Qt::green);
    return image.convertToFormat(format);
}

} // namespace

TEST(CDibSection, HoldsBottomUpBgrRowsPaddedToFourBytes) {
    cDIBSection dib;
    ASSERT_TRUE(dib.CreateFromPicture(orientationPicture()));
    EXPECT_EQ(dib.Width(), 37);
    EXPECT_EQ(dib.Height(), 20);
    EXPECT_EQ(dib.BytesPerScanLine(), 112); // 111 rounded up
    const uchar* bits = dib.DIBSectionBitsPtr();
    // The first row in memory is the picture's bottom row: blue, stored B, G, R; green at x = 0.
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(bits), 6), QByteArray("\x00\xFF\x00\xFF\x00\x00", 6));
    EXPECT_EQ(bits[111], 0); // padding
    const uchar* top = bits + 19 * 112 + 3;
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(top), 3), QByteArray("\x00\x00\xFF", 3));
    EXPECT_EQ(dib.toImage().convertToFormat(QImage::Format_RGB32), orientationPicture());

    EXPECT_FALSE(dib.Create(0, 5));
    EXPECT_TRUE(dib.isNull());
    EXPECT_FALSE(dib.CreateFromPicture(QImage()));
}

TEST(CDibSection, TurnsGreyPaletteAndTransparentPicturesIntoColour) {
    cDIBSection dib;
    QImage grey(3, 2, QImage::Format_Grayscale8);
    grey.fill(QColor(90, 90, 90));
    ASSERT_TRUE(dib.CreateFromPicture(grey));
    EXPECT_EQ(dib.toImage().pixelColor(2, 1), QColor(90, 90, 90));

    QImage palette(4, 4, QImage::Format_Indexed8);
    palette.setColorTable({qRgb(10, 200, 30)});
    palette.fill(0);
    ASSERT_TRUE(dib.CreateFromPicture(palette));
    EXPECT_EQ(dib.toImage().pixelColor(3, 3), QColor(10, 200, 30));

    QImage clear(2, 2, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    ASSERT_TRUE(dib.CreateFromPicture(clear));
    EXPECT_EQ(dib.toImage().pixelColor(0, 0), QColor(Qt::white));
}

TEST(JpegWriter, WritesABaselineThreeComponentJpegOfTheSourceSizeAtQuality35) {
    test::TempDir dir;
    cDIBSection dib;
    ASSERT_TRUE(dib.CreateFromPicture(orientationPicture(QImage::Format_Indexed8)));
    const QString path = dir.file(QStringLiteral("out.jpg"));
    ASSERT_TRUE(writeJpegFile(dib, path, kJpegQuality).isOk());
    const QByteArray jpeg = test::TempDir::read(path);

    tjhandle handle = tjInitDecompress();
    int width = 0, height = 0, subsamp = -1, colourspace = -1;
    ASSERT_EQ(tjDecompressHeader3(handle, reinterpret_cast<const unsigned char*>(jpeg.constData()),
                                  static_cast<unsigned long>(jpeg.size()), &width, &height, &subsamp,
                                  &colourspace),
              0);
    tjDestroy(handle);
    EXPECT_EQ(width, 37);
    EXPECT_EQ(height, 20);
    EXPECT_EQ(subsamp, TJSAMP_420);
    EXPECT_EQ(colourspace, TJCS_YCbCr);
    const JpegLayout layout = layoutOf(jpeg);
    EXPECT_EQ(layout.frameMarker, 0xC0); // baseline
    EXPECT_EQ(layout.components, 3);
    // Quality 35 scales the standard tables by 5000 / 35: their first entries 16 and 17 become 23 and 24.
    ASSERT_EQ(layout.quantTables.size(), 2u);
    EXPECT_EQ(quint8(layout.quantTables.at(0)[0]), 23);
    EXPECT_EQ(quint8(layout.quantTables.at(1)[0]), 24);

    // Right way up, not mirrored, colours in place.
    const QImage back(path);
    EXPECT_GT(back.pixelColor(20, 2).red(), 200);
    EXPECT_GT(back.pixelColor(20, 17).blue(), 200);
    EXPECT_GT(back.pixelColor(0, 5).green(), 150);

    // The same tables as libjpeg-turbo's own encoder at quality 35.
    const QString cjpeg = QStandardPaths::findExecutable(QStringLiteral("cjpeg"));
    if (cjpeg.isEmpty()) GTEST_SKIP() << "cjpeg is not installed";
    const QString ppm = dir.write(QStringLiteral("in.ppm"), test::encoded(orientationPicture(), "PPM"));
    QProcess process;
    process.start(cjpeg, {QStringLiteral("-quality"), QStringLiteral("35"), ppm});
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(layoutOf(process.readAllStandardOutput()).quantTables, layout.quantTables);
}

TEST(JpegWriter, ReencodingKeepsTheSourceUprightAndInColour) {
    test::TempDir dir;
    const QImage grey = orientationPicture(QImage::Format_Grayscale8);
    const struct {
        const char* name;
        QByteArray bytes;
    } sources[] = {{"colour.jpg", test::encoded(orientationPicture(), "JPG", 95)},
                   {"grey.jpg", test::encoded(grey, "JPG", 95)},
                   {"palette.gif.png", test::encoded(orientationPicture(QImage::Format_Indexed8), "PNG")}};
    for (const auto& source : sources) {
        const QString out = dir.file(QStringLiteral("out.jpg"));
        ASSERT_TRUE(reencodeAsJpeg(dir.write(QLatin1String(source.name), source.bytes), out).isOk())
            << source.name;
        const QByteArray jpeg = test::TempDir::read(out);
        EXPECT_EQ(layoutOf(jpeg).components, 3) << source.name;
        const QImage back = QImage::fromData(jpeg);
        const QImage original = QImage::fromData(source.bytes);
        EXPECT_EQ(back.size(), original.size());
        for (const QPoint p : {QPoint(20, 2), QPoint(20, 17), QPoint(0, 5)})
            EXPECT_LT(qAbs(qGray(back.pixel(p)) - qGray(original.pixel(p))), 40) << source.name;
    }
}

TEST(JpegWriter, AFailureLeavesNoFileAndAnExistingOneUntouched) {
    test::TempDir dir;
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(8, 8));
    const QString missingFolder = dir.file(QStringLiteral("no/such/folder/out.jpg"));
    const Status status = writeJpegFile(dib, missingFolder, kJpegQuality);
    EXPECT_FALSE(status.isOk());
    EXPECT_TRUE(status.message().contains(QStringLiteral("out.jpg")));

    const QString existing = dir.write(QStringLiteral("keep.jpg"), "precious");
    EXPECT_FALSE(writeJpegFile(dib, existing, 0).isOk());
    EXPECT_FALSE(writeJpegFile(cDIBSection(), existing, kJpegQuality).isOk());
    EXPECT_EQ(test::TempDir::read(existing), QByteArray("precious"));

    const QString text = dir.write(QStringLiteral("text.jpg"), "not a picture");
    EXPECT_FALSE(reencodeAsJpeg(text, existing).isOk());
    EXPECT_EQ(test::TempDir::read(existing), QByteArray("precious"));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);
}
