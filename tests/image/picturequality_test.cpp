#include "app/mmscrun.h"
#include "image/jpegwriter.h"
#include "image/picturefit.h"
#include "image/picturequality.h"
#include "picturefiles.h"
#include "support/scratchsettings.h"
#include "support/tempdir.h"

#include <QScopeGuard>
#include <gtest/gtest.h>
#include <turbojpeg.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// A smooth field under noise, at a size that fills no whole block: compresses like a photograph
// and exercises the partial blocks at the right and bottom edges.
QImage photo(int width = 333, int height = 251) {
    QImage image = test::noise(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const QRgb n = image.pixel(x, y) & 0x1f1f1f;
            image.setPixel(x, y,
                           0xff000000u + (QRgb(x * 200 / width) << 16) + (QRgb(y * 200 / height) << 8) + n);
        }
    return image;
}

// The conversion of a JPEG as it was first written: TurboJPEG decodes the whole picture into a
// bitmap's bottom-up BGR rows (a picture cut short still gives one), which encodeJpeg encodes.
QByteArray throughWholeBitmap(const QByteArray& source, int quality) {
    tjhandle handle = tjInitDecompress();
    const auto* data = reinterpret_cast<const unsigned char*>(source.constData());
    int width = 0, height = 0, subsampling = 0, colourspace = 0;
    tjDecompressHeader3(handle, data, source.size(), &width, &height, &subsampling, &colourspace);
    cDIBSection dib;
    EXPECT_TRUE(dib.Create(width, height));
    tjDecompress2(handle, data, source.size(), dib.DIBSectionBitsPtr(), width, dib.BytesPerScanLine(), height,
                  TJPF_BGR, TJFLAG_BOTTOMUP);
    tjDestroy(handle);
    QByteArray jpeg;
    EXPECT_TRUE(encodeJpeg(dib, quality, jpeg).isOk());
    return jpeg;
}

} // namespace

TEST(PictureQuality, AJpegConvertsToTheSameBytesAsThroughAWholeBitmap) {
    test::TempDir dir;
    const QByteArray colour = test::encoded(photo(), "JPG", 90);
    const std::pair<const char*, QByteArray> sources[] = {
        {"colour", colour},
        {"progressive", test::encoded(photo(), "JPG", 80, true)},
        {"grey", test::encoded(photo().convertToFormat(QImage::Format_Grayscale8), "JPG", 90)},
        {"cut short", colour.left(colour.size() * 2 / 3)},
        {"one pixel", test::encoded(photo(1, 1), "JPG", 90)},
    };
    const QString out = dir.file(u"out.jpg"_s);
    // The standard quality, a chosen one, and the qualities where the encoder changes its DCT.
    for (const int quality : {kJpegQuality, 60, 95, 96, 100}) {
        for (const auto& [name, bytes] : sources) {
            ASSERT_TRUE(reencodeAsJpeg(dir.write(u"in.jpg"_s, bytes), out, quality).isOk()) << name;
            EXPECT_TRUE(test::TempDir::read(out) == throughWholeBitmap(bytes, quality))
                << name << " at " << quality;
        }
    }
}

TEST(PictureQuality, TheSettingKeepsAQualityFrom1To100AndOtherwiseGivesTheStandard) {
    const test::ScratchSettings scratch;
    EXPECT_EQ(readPictureQualitySetting(), kJpegQuality);
    for (const int quality : {1, 85, 100}) {
        writePictureQualitySetting(quality);
        EXPECT_EQ(readPictureQualitySetting(), quality);
    }
    for (const int outside : {0, 101}) {
        writePictureQualitySetting(outside);
        EXPECT_EQ(readPictureQualitySetting(), kJpegQuality) << outside;
    }
    for (const QString& text : {u"60.5"_s, u"high"_s, u""_s})
        EXPECT_EQ(parsePictureQuality(text), std::nullopt) << text.toStdString();
}

// mmsc takes the setting unless told otherwise, the fit in every trial; MmscPictures has the refusals.
TEST(PictureQuality, MmscConvertsAtTheSettingOrTheQualityGiven) {
    test::TempDir dir;
    dir.write(u"config/Morvane.conf"_s, "[General]\nPictureQuality=85\n");
    const QByteArray savedConfig = qgetenv("XDG_CONFIG_HOME"); // the child's settings
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(dir.file(u"config"_s)));
    const auto restore = qScopeGuard([&] {
        savedConfig.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", savedConfig);
    });
    const QByteArray source = test::encoded(photo(), "JPG", 90);
    const QString in = dir.write(u"in.jpg"_s, source), out = dir.file(u"out.jpg"_s);

    for (const auto& [args, quality] :
         {std::pair(u"jpeg %1 %2"_s, 85), std::pair(u"jpeg %1 %2 --quality 60"_s, 60)}) {
        ASSERT_EQ(test::runMmsc({}, args.arg(in, out)).exitCode, 0) << quality;
        EXPECT_TRUE(test::TempDir::read(out) == throughWholeBitmap(source, quality)) << quality;
    }
    ASSERT_EQ(test::runMmsc({}, u"fit %1 %2 --quality 60 --max-bytes 6000"_s.arg(in, out)).exitCode, 0);
    EXPECT_EQ(test::quantTables(test::TempDir::read(out)), test::quantTables(throughWholeBitmap(source, 60)));
}
