#include "app/mmscrun.h"
#include "image/jpegwriter.h"
#include "image/picturefit.h"
#include "image/pictureimport.h"
#include "image/picturequality.h"
#include "picturefiles.h"
#include "support/scratchsettings.h"
#include "support/scriptedtime.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>
#include <turbojpeg.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

QByteArray quantTables(const QByteArray& jpeg) {
    return jpeg.mid(jpeg.indexOf("\xFF\xDB"), 2 * 69);
}

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

// Both conversions use the quality given, the fit in every trial.
TEST(PictureQuality, TheImportAndTheFitEncodeAtTheChosenQuality) {
    test::TempDir home;
    test::FixedClock clock;
    test::ScriptedRandom random;
    random.draws = {0.5, 0.25};
    const QByteArray bmp = test::encoded(photo(400, 300), "BMP");
    const QString source = home.write(u"big.bmp"_s, bmp);
    QByteArray standard, best;
    ASSERT_TRUE(encodeJpeg(QImage::fromData(bmp).convertToFormat(QImage::Format_RGB32), 35, standard).isOk());
    ASSERT_TRUE(encodeJpeg(QImage::fromData(bmp).convertToFormat(QImage::Format_RGB32), 85, best).isOk());
    ASSERT_NE(quantTables(standard), quantTables(best));

    const PictureImport imported = importPicture(source, true, home.path(), clock, random, false, 85);
    EXPECT_TRUE(test::TempDir::read(imported.convertedPath) == best);

    const FitResult atStandard = fitPicture(bmp, u"big.bmp"_s, 8000);
    const FitResult atBest = fitPicture(bmp, u"big.bmp"_s, 8000, nullptr, 85);
    ASSERT_TRUE(atStandard.fitted() && atBest.fitted());
    EXPECT_EQ(quantTables(atBest.jpeg), quantTables(best));
    EXPECT_LE(atBest.jpeg.size(), 8000);
    EXPECT_LT(atBest.size.width(), atStandard.size.width()); // more detail costs pixels
}

// The child's settings: XDG_CONFIG_HOME set to a folder for as long as this object lives.
class ConfigHome {
public:
    explicit ConfigHome(const QString& folder) : old_(qgetenv("XDG_CONFIG_HOME")) {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder));
    }
    ~ConfigHome() { old_.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", old_); }
    ConfigHome(const ConfigHome&) = delete;
    ConfigHome& operator=(const ConfigHome&) = delete;

private:
    const QByteArray old_;
};

// mmsc takes the setting unless told otherwise.
TEST(PictureQuality, MmscConvertsAtTheSettingOrTheQualityGiven) {
    test::TempDir dir;
    dir.write(u"config/Morvane.conf"_s, "[General]\nPictureQuality=85\n");
    const ConfigHome config(dir.file(u"config"_s));
    const QByteArray source = test::encoded(photo(), "JPG", 90);
    const QString in = dir.write(u"in.jpg"_s, source), out = dir.file(u"out.jpg"_s);

    ASSERT_EQ(test::runMmsc({}, u"jpeg %1 %2"_s.arg(in, out)).exitCode, 0);
    EXPECT_TRUE(test::TempDir::read(out) == throughWholeBitmap(source, 85));
    ASSERT_EQ(test::runMmsc({}, u"jpeg %1 %2 --quality 60"_s.arg(in, out)).exitCode, 0);
    EXPECT_TRUE(test::TempDir::read(out) == throughWholeBitmap(source, 60));
    ASSERT_EQ(test::runMmsc({}, u"fit %1 %2 --quality 60 --max-bytes 6000"_s.arg(in, out)).exitCode, 0);
    EXPECT_EQ(quantTables(test::TempDir::read(out)), quantTables(throughWholeBitmap(source, 60)));

    for (const QString& bad : {u"jpeg %1 %2 --quality 0"_s, u"fit %1 %2 --quality"_s,
                               u"build --quality x --slide --pic %1 --export %2"_s})
        test::expectRun(test::runMmsc({}, bad.arg(in, out)), 2, {}, u"--quality"_s);
}
