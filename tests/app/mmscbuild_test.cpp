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

TEST_F(MmscBuild, SaveStoresTheSlidesAndExportWritesOnlyTheChosenFile) {
    test::expectRun(mmsc(twoSlides + u"--save msg"_s), 0);
    EXPECT_EQ(QDir(home.file(u"UserData/MMS/msg"_s)).entryList(QDir::Files, QDir::Name).join(u' '),
              u"main.smil pic1.gif sound2.amr text1.txt texts.xml"_s);
    // The edited duration is a number and goes into the index bare; the new slide's stays quoted.
    EXPECT_EQ(stored(u"msg.mmt"_s),
              QByteArray("Hello\r\n\"3\",\"I\",\"T\",\"N\"\r\n5,\"N\",\"N\",\"S\"\r\n"));

    media.write(u"out.tpl"_s, "old contents");
    test::expectRun(mmsc(twoSlides + u"--export %2"_s), 0);
    EXPECT_EQ(test::tarNames(target), u"main.smil texts.xml pic1.gif sound2.amr"_s);
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
}

TEST_F(MmscBuild, PicturesAndSoundsFollowTheComposersRulesAndBadInputWritesNothing) {
    media.write(u"text.jpg"_s, "not a picture");
    media.write(u"empty.gif"_s, "");
    media.write(u"big.gif"_s, test::padded(test::tinyGif(), 102400));
    media.write(u"noise.bmp"_s, test::encoded(test::noise(600, 600), "BMP"));
    media.write(u"long.amr"_s, QByteArray(102400, 'a'));
    for (const QString& line : {u"--slide --pic %1/photo.gif --slide --pic %1/text.jpg --save m"_s,
                                u"--slide --pic %1/empty.gif --save m"_s,
                                u"--slide --pic %1/big.gif --save m"_s,
                                u"--slide --pic %1/noise.bmp --export %2"_s,
                                u"--slide --sound %1/long.amr --save m"_s,
                                u"--slide --sound %1/photo.gif --save m"_s,
                                u"--subject Hello,world --slide --save m"_s,
                                u"--slide --pic %1/missing.gif --save m"_s,
                                u"--slide --sound %1 --export %2"_s,
                                u"--slide --dur 32768 --save m"_s,
                                u"--slide --dur -1"_s,
                                u"--slide --dur"_s,
                                u"--text early --save m"_s,
                                u"--slide --colour red"_s,
                                u"--slide extra"_s,
                                u"--slide --save a/b"_s,
                                u"--slide --save m --export %2"_s,
                                u"--slide --export %1"_s,
                                u"--slide --export %1/no/dir/x.tpl"_s,
                                u"--subject two\nlines --save m"_s}) {
        SCOPED_TRACE(line.toStdString());
        test::expectRun(mmsc(line), 2);
    }
    // --info writes nothing either.
    const int size = 499 + 5 + 2 * 36 + (1000 + 41 + 27) + (2 + 2 + 42 + 28) + (300 + 30 + 37);
    test::expectRun(mmsc(twoSlides + u"--info"_s), 0, u"slides: 2\nsize: %1\n"_s.arg(size));
    test::expectRun(mmsc(u"--info"_s), 0, u"slides: 0\nsize: 0\n"_s);
    EXPECT_TRUE(homeEntries().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(target));
    // A large picture is re-encoded as a JPEG of its size, --fit shrinks the one its JPEG could not fit
    // keeping its shape, and the scratch copies are gone.
    media.write(u"large.bmp"_s, test::encoded(test::filled(300, 200, Qt::green), "BMP"));
    test::expectRun(mmsc(u"--slide --pic %1/large.bmp --save m"_s), 0);
    EXPECT_EQ(QImage::fromData(stored(u"m/pic1.jpg"_s), "JPEG").size(), QSize(300, 200));
    test::expectRun(mmsc(u"--fit --slide --pic %1/noise.bmp --save f"_s), 0);
    const QImage fitted = QImage::fromData(stored(u"f/pic1.jpg"_s), "JPEG");
    EXPECT_TRUE(stored(u"f/pic1.jpg"_s).size() < 102400 && fitted.width() == fitted.height());
    EXPECT_EQ(homeEntries(), QStringList(u"UserData"_s));
    // --raw takes any file as it is.
    test::expectRun(mmsc(u"--raw --slide --pic %1/text.jpg --sound %1/photo.gif --save r"_s), 0);
    EXPECT_EQ(stored(u"r/pic1.jpg"_s), QByteArray("not a picture"));
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
        test::expectRun(r, 2, {}, u"File too large"_s);
        EXPECT_TRUE(r.err.contains(u"sound1.amr"_s)) << r.err.toStdString();
    }
    test::expectRun(mmsc(u"--slide --sound %1/voice.amr --save m"_s), 0);
    test::expectRun(mmsc(u"m %2"_s, fullDisk, u"mms"_s), 1, {}, u"File too large"_s);
    EXPECT_FALSE(QFileInfo::exists(target));

    // Without the power to override permissions, in a home folder that cannot be written.
    test::TempDir readOnly;
    QFile::setPermissions(readOnly.path(), QFileDevice::Permissions(0x5555));
    QFile::setPermissions(media.path(), QFileDevice::Permissions(0x7755));
    const test::MmscRun denied =
        test::runMmsc({u"--home"_s, readOnly.path(), u"build"_s}, u"--slide --save m"_s, [] {
            if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(3);
        });
    test::expectRun(denied, 2, {}, u"Permission denied"_s);
}
