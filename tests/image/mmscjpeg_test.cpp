#include "picturefiles.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct MmscRun {
    int status = -1;
    QString err;
};

MmscRun mmsc(const QStringList& args, const QString& home) {
    QProcess process;
    process.start(QStringLiteral(MMS_BIN_DIR "/mmsc"), QStringList{QStringLiteral("--home"), home} + args);
    process.waitForFinished(30000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

TEST(MmscJpeg, ReencodesAnyPictureAndWritesNothingForBadInput) {
    if (!QFileInfo::exists(QStringLiteral(MMS_BIN_DIR "/mmsc"))) GTEST_SKIP() << "mmsc is not built";
    mms::test::TempDir dir;
    // Larger than the attachment limit: the command converts it all the same.
    const QString big =
        dir.write(QStringLiteral("big.bmp"), mms::test::encoded(mms::test::noise(500, 400), "BMP"));
    const QString out = dir.file(QStringLiteral("out.jpg"));
    EXPECT_EQ(mmsc({QStringLiteral("jpeg"), big, out}, dir.path()).status, 0);
    EXPECT_EQ(QImage(out).size(), QSize(500, 400));

    const QString text = dir.write(QStringLiteral("text.gif"), "no picture here");
    const QString never = dir.file(QStringLiteral("never.jpg"));
    const MmscRun refused = mmsc({QStringLiteral("jpeg"), text, never}, dir.path());
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("text.gif"))) << refused.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(never));
    EXPECT_EQ(mmsc({QStringLiteral("jpeg"), big}, dir.path()).status, 2);
}
