#include "image/pictureimport.h"
#include "picturefiles.h"
#include "store/workspace.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFileInfo>
#include <deque>
#include <gtest/gtest.h>

using namespace mms;

namespace {

class FixedClock final : public Clock {
public:
    QDateTime now() const override { return when; }
    QDateTime when{QDate(2024, 3, 7), QTime(9, 5, 41)};
};

class ScriptedRandom final : public RandomSource {
public:
    double uniform() override {
        if (draws.empty()) return 0.0;
        const double d = draws.front();
        draws.pop_front();
        return d;
    }
    std::deque<double> draws;
};

class PictureImportTest : public ::testing::Test {
protected:
    QString app() const { return home.path(); }
    QString library(const QString& name, const QByteArray& bytes) const {
        return home.write(QStringLiteral("UserData/Picture/") + name, bytes);
    }
    QStringList scratch() const { return QDir(workspace::tmpJpg(app())).entryList(QDir::Files); }
    PictureImport import(const QString& source, bool listHasItems = true) {
        return importPicture(source, listHasItems, app(), clock, random);
    }
    test::TempDir home;
    FixedClock clock;
    ScriptedRandom random;
};

} // namespace

TEST_F(PictureImportTest, ScratchNamesHaveNoPaddingAndDifferWithinAMinute) {
    EXPECT_EQ(conversionStamp(clock.when), QStringLiteral("20243795"));
    EXPECT_EQ(conversionStamp(QDateTime(QDate(2024, 12, 17), QTime(13, 45))), QStringLiteral("2024121713"
                                                                                             "45"));
    random.draws = {0.0, 0.5, 0.99999999};
    EXPECT_EQ(conversionNumber(random), 10000);
    EXPECT_EQ(conversionNumber(random), 55000);
    EXPECT_EQ(conversionNumber(random), 99999);

    const QString source =
        library(QStringLiteral("big.bmp"), test::bmpOfLength(test::filled(300, 200, Qt::red), 200000));
    random.draws = {0.5, 0.25};
    const PictureImport first = import(source);
    const PictureImport second = import(source);
    EXPECT_EQ(first.picturePath, workspace::tmpJpg(app()) + QStringLiteral("/2024379555000.jpg"));
    EXPECT_EQ(second.picturePath, workspace::tmpJpg(app()) + QStringLiteral("/2024379532500.jpg"));

    // The same number again: drawn anew rather than overwriting the picture a slide may hold.
    random.draws = {0.5, 0.5, 0.75};
    const PictureImport third = import(source);
    EXPECT_EQ(third.picturePath, workspace::tmpJpg(app()) + QStringLiteral("/2024379577500.jpg"));
    EXPECT_EQ(scratch().size(), 3);
}

TEST_F(PictureImportTest, OnlyFilesUnderTheLimitAreUsedAsTheyAre) {
    const QImage picture = test::filled(150, 150, Qt::darkCyan);
    const QString under = library(QStringLiteral("under.bmp"), test::bmpOfLength(picture, 102399));
    const QString at = library(QStringLiteral("at.bmp"), test::bmpOfLength(picture, 102400));

    const PictureImport small = import(under);
    ASSERT_TRUE(small.attach());
    EXPECT_EQ(small.picturePath, under);
    EXPECT_TRUE(small.convertedPath.isEmpty());

    random.draws = {0.1};
    const PictureImport converted = import(at);
    ASSERT_TRUE(converted.attach());
    EXPECT_EQ(converted.picturePath, converted.convertedPath);
    EXPECT_TRUE(converted.picturePath.startsWith(workspace::tmpJpg(app()) + QLatin1Char('/')));
    EXPECT_LT(QFileInfo(converted.picturePath).size(), kAttachmentLimit);
    EXPECT_EQ(QImage(converted.picturePath).size(), QSize(150, 150));

    // With nothing listed the command uses the file as it is, whatever its size.
    EXPECT_EQ(import(at, false).picturePath, at);
    EXPECT_EQ(scratch().size(), 1);
}

TEST_F(PictureImportTest, LargeGifsAreRefusedByTheirTwoPatternsOnly) {
    for (const QString& name : {QStringLiteral("big.gif"), QStringLiteral("BIG.GIF")}) {
        const PictureImport result = import(library(name, test::tinyGif(150 * 1024)));
        EXPECT_FALSE(result.attach()) << name.toStdString();
        EXPECT_EQ(result.errorNumber, kErrPictureTooLarge);
    }
    EXPECT_TRUE(scratch().isEmpty());

    const PictureImport mixed = import(library(QStringLiteral("mixed.Gif"), test::tinyGif(150 * 1024)));
    ASSERT_TRUE(mixed.attach()) << mixed.detail.toStdString();
    const QImage back(mixed.picturePath);
    EXPECT_EQ(back.size(), QSize(1, 1));
    EXPECT_GT(back.pixelColor(0, 0).red(), 180);
}

TEST_F(PictureImportTest, AConversionStillTooLargeIsRefusedAndLeftInTheScratchFolder) {
    const QString source = library(QStringLiteral("noise.bmp"), test::encoded(test::noise(600, 600), "BMP"));
    const PictureImport result = import(source);
    EXPECT_FALSE(result.attach());
    EXPECT_EQ(result.errorNumber, kErrPictureTooLarge);
    EXPECT_TRUE(result.picturePath.isEmpty());
    ASSERT_EQ(scratch().size(), 1);
    EXPECT_EQ(workspace::tmpJpg(app()) + QLatin1Char('/') + scratch().first(), result.convertedPath);
    EXPECT_GE(QFileInfo(result.convertedPath).size(), kAttachmentLimit);
}

TEST_F(PictureImportTest, UnreadableSourcesAreReportedAndNothingIsAttached) {
    const PictureImport missing = import(app() + QStringLiteral("/UserData/Picture/gone.jpg"));
    EXPECT_EQ(missing.errorNumber, kErrPictureNotLoaded);
    EXPECT_TRUE(missing.detail.contains(QStringLiteral("gone.jpg")));

    const PictureImport broken = import(library(QStringLiteral("fake.jpg"), QByteArray(150000, 'x')));
    EXPECT_EQ(broken.errorNumber, kErrPictureNotConverted);
    EXPECT_TRUE(broken.detail.contains(QStringLiteral("fake.jpg")));
    EXPECT_TRUE(scratch().isEmpty());

    const QString text =
        QStringLiteral("The picture could not be converted to JPEG. The slide was left unchanged.\n%1");
    EXPECT_EQ(broken.errorText(text), text.arg(broken.detail));
    EXPECT_EQ(PictureImport{}.errorText(QStringLiteral("Too large")), QStringLiteral("Too large"));
}
