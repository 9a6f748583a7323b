#include "common/workspace.h"
#include "image/pictureimport.h"
#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/scriptedtime.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;

namespace {

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
                  kErrPictureTooLarge);
    EXPECT_EQ(scratchCount(), 0);
    const PictureImport mixed = import(library(QStringLiteral("mixed.Gif"), test::tinyGif(), 150000));
    EXPECT_GT(QImage(mixed.picturePath).pixelColor(0, 0).red(), 180);
    // A conversion still too large stays in the scratch folder.
    const PictureImport result =
        import(library(QStringLiteral("noise.bmp"), test::encoded(test::noise(600, 600), "BMP")));
    EXPECT_EQ(result.errorNumber, kErrPictureTooLarge);
    EXPECT_TRUE(result.picturePath.isEmpty());
    EXPECT_GE(QFileInfo(result.convertedPath).size(), kAttachmentLimit);
    EXPECT_TRUE(result.convertedPath.startsWith(scratch()));
}

TEST_F(PictureImportTest, UnreadableSourcesAreReportedWithTheirName) {
    const PictureImport missing = import(home.file(QStringLiteral("gone.jpg")));
    EXPECT_EQ(missing.errorNumber, kErrPictureNotLoaded);
    EXPECT_TRUE(missing.detail.contains(QStringLiteral("gone.jpg")));
    const PictureImport broken = import(library(QStringLiteral("fake.jpg"), QByteArray(150000, 'x')));
    EXPECT_EQ(broken.errorNumber, kErrPictureNotConverted);
    EXPECT_EQ(broken.errorText(QStringLiteral("No.\n%1")), QStringLiteral("No.\n") + broken.detail);
    EXPECT_TRUE(broken.detail.contains(QStringLiteral("fake.jpg")));
    EXPECT_EQ(scratchCount(), 0);
}
