#include "app/mmscrun.h"
#include "image/picturefiles.h"
#include "package/archivereader.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFileInfo>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

class MmscBuild : public ::testing::Test {
protected:
    MmscBuild() {
        media.write(u"photo.gif"_s, test::padded(test::tinyGif(), 1000));
        media.write(u"voice.amr"_s, QByteArray(300, 'a'));
    }
    // `line` split at spaces; %1 is the media folder, %2 a target archive in it.
    test::MmscRun mmsc(QString line, std::function<void()> inChild = {},
                       const QString& command = u"build"_s) {
        line.replace(u"%1"_s, media.path()).replace(u"%2"_s, target);
        return test::runMmsc({u"--home"_s, home.path(), command}, line, std::move(inChild));
    }
    QStringList homeEntries() const {
        return QDir(home.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QByteArray stored(const QString& file) const {
        return test::TempDir::read(home.file(u"UserData/MMS/"_s + file));
    }

    test::TempDir home;
    test::TempDir media;
    const QString target = media.file(u"out.tpl"_s);
    const QString twoSlides = u"--subject Hello --slide --pic %1/photo.gif --text Hi "
                              "--slide --dur 5 --sound %1/voice.amr "_s;
};

} // namespace

TEST_F(MmscBuild, InfoPrintsTheCountAndTheSizeEstimate) {
    const test::MmscRun r = mmsc(twoSlides + u"--info"_s);
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    const int size = 499 + 5 + 2 * 36 + (1000 + 41 + 27) + (2 + 2 + 42 + 28) + (300 + 30 + 37);
    EXPECT_EQ(r.out, u"slides: 2\nsize: %1\n"_s.arg(size));
    EXPECT_EQ(mmsc(u"--info"_s).out, u"slides: 0\nsize: 0\n"_s);
    EXPECT_TRUE(homeEntries().isEmpty());
}

TEST_F(MmscBuild, SaveReplacesTheOldMessageWholeAndExportWritesOnlyTheChosenFile) {
    ASSERT_EQ(mmsc(u"--slide --slide --slide --text x --save msg"_s).exitCode, 0);
    EXPECT_FALSE(stored(u"msg/text3.txt"_s).isEmpty());
    const test::MmscRun r = mmsc(twoSlides + u"--save msg"_s);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(QDir(home.file(u"UserData/MMS/msg"_s)).entryList(QDir::Files, QDir::Name).join(u' '),
              u"main.smil pic1.gif sound2.amr text1.txt texts.xml"_s);
    // The edited duration is a number and goes into the index bare; the new slide's stays quoted.
    EXPECT_EQ(stored(u"msg.mmt"_s),
              QByteArray("Hello\r\n\"3\",\"I\",\"T\",\"N\"\r\n5,\"N\",\"N\",\"S\"\r\n"));

    media.write(u"out.tpl"_s, "old contents");
    ASSERT_EQ(mmsc(twoSlides + u"--export %2"_s).exitCode, 0);
    EXPECT_EQ(test::tarNames(target), u"main.smil texts.xml pic1.gif sound2.amr"_s);
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
}

TEST_F(MmscBuild, PicturesAndSoundsFollowTheComposersRulesUnlessRaw) {
    media.write(u"a.png"_s, test::encoded(test::filled(40, 30, Qt::red), "PNG"));
    media.write(u"b.jpeg"_s, test::encoded(test::filled(40, 30, Qt::blue), "JPEG"));
    media.write(u"large.bmp"_s, test::encoded(test::filled(300, 200, Qt::green), "BMP"));
    media.write(u"text.jpg"_s, "not a picture");
    ASSERT_EQ(mmsc(u"--slide --pic %1/a.png --slide --pic %1/b.jpeg --slide --pic %1/large.bmp --save m"_s)
                  .exitCode,
              0);
    // The large picture was re-encoded as a JPEG of the same size, and the scratch copy is gone.
    EXPECT_EQ(QDir(home.file(u"UserData/MMS/m"_s)).entryList({u"pic*"_s}, QDir::Files, QDir::Name),
              QStringList({u"pic1.png"_s, u"pic2.jpeg"_s, u"pic3.jpg"_s}));
    const QImage converted = QImage::fromData(stored(u"m/pic3.jpg"_s), "JPEG");
    EXPECT_EQ(converted.size(), QSize(300, 200));
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
    // --raw takes any file as it is.
    ASSERT_EQ(mmsc(u"--raw --slide --pic %1/text.jpg --sound %1/photo.gif --save r"_s).exitCode, 0);
    EXPECT_EQ(stored(u"r/pic1.jpg"_s), QByteArray("not a picture"));
}

TEST_F(MmscBuild, BadInputIsRefusedWithOneLineAndExitTwoWritingNothing) {
    media.write(u"text.jpg"_s, "not a picture");
    media.write(u"empty.gif"_s, "");
    media.write(u"big.gif"_s, test::padded(test::tinyGif(), 102400));
    media.write(u"noise.bmp"_s, test::encoded(test::noise(600, 600), "BMP"));
    media.write(u"long.amr"_s, QByteArray(102400, 'a'));
    for (const char* line : {"--slide --pic %1/photo.gif --slide --pic %1/text.jpg --save m",
                             "--slide --pic %1/empty.gif --save m",
                             "--slide --pic %1/big.gif --save m",
                             "--slide --pic %1/noise.bmp --export %2",
                             "--slide --sound %1/long.amr --save m",
                             "--slide --sound %1/photo.gif --save m",
                             "--subject Hello,world --slide --save m",
                             "--slide --pic %1/missing.gif --save m",
                             "--slide --sound %1 --export %2",
                             "--slide --dur 32768 --save m",
                             "--slide --dur -1",
                             "--slide --dur",
                             "--text early --save m",
                             "--slide --colour red",
                             "--slide extra",
                             "--slide --save a/b",
                             "--slide --save m --export %2",
                             "--slide --export %1",
                             "--slide --export %1/no/dir/x.tpl",
                             "--subject two\nlines --save m"}) {
        const test::MmscRun r = mmsc(QString::fromUtf8(line));
        EXPECT_EQ(r.exitCode, 2) << line;
        EXPECT_TRUE(r.err.startsWith(u"mmsc: "_s) && r.err.count(u'\n') == 1) << line << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << line;
    }
    EXPECT_TRUE(homeEntries().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(target));
    // --fit shrinks the picture its JPEG could not fit, keeping its shape.
    ASSERT_EQ(mmsc(u"--fit --slide --pic %1/noise.bmp --save f"_s).exitCode, 0);
    const QImage fitted = QImage::fromData(stored(u"f/pic1.jpg"_s), "JPEG");
    EXPECT_TRUE(stored(u"f/pic1.jpg"_s).size() < 102400 && fitted.width() == fitted.height());
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
}

// Writes stop at 20000 bytes, as on a full disk, and mmsc says so in the system's words.
TEST_F(MmscBuild, AFullDiskAndAReadOnlyFolderAreNamed) {
    media.write(u"voice.amr"_s, QByteArray(60000, 'a'));
    const auto fullDisk = [] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{20000, 20000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    for (const char* line :
         {"--slide --sound %1/voice.amr --save m", "--slide --sound %1/voice.amr --export %2"}) {
        const test::MmscRun r = mmsc(QString::fromLatin1(line), fullDisk);
        EXPECT_EQ(r.exitCode, 2);
        EXPECT_TRUE(r.err.contains(u"sound1.amr"_s) && r.err.contains(u"File too large"_s))
            << r.err.toStdString();
    }
    ASSERT_EQ(mmsc(u"--slide --sound %1/voice.amr --save m"_s).exitCode, 0);
    const test::MmscRun r = mmsc(u"m %2"_s, fullDisk, u"mms"_s);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains(u"File too large"_s)) << r.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(target));

    // Without the power to override permissions, in a home folder that cannot be written.
    test::TempDir readOnly;
    QFile::setPermissions(readOnly.path(), QFileDevice::Permissions(0x5555));
    QFile::setPermissions(media.path(), QFileDevice::Permissions(0x7755));
    const test::MmscRun denied =
        test::runMmsc({u"--home"_s, readOnly.path(), u"build"_s}, u"--slide --save m"_s, [] {
            if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(3);
        });
    EXPECT_EQ(denied.exitCode, 2);
    EXPECT_TRUE(denied.err.contains(u"Permission denied"_s)) << denied.err.toStdString();
}
