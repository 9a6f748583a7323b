#include "package/archivereader.h"
#include "store/messagestore.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

using namespace mms;

namespace {

struct Outcome {
    int exitCode = -1;
    QByteArray out, err;
};

// Runs the built mmsc with --home set to the test's folder.
class MmscBuild : public ::testing::Test {
protected:
    Outcome mmsc(QStringList args) {
        QProcess p;
        args.prepend(home.path());
        args.prepend(QStringLiteral("--home"));
        args.insert(2, QStringLiteral("build"));
        p.start(QStringLiteral(MMS_BIN_DIR "/mmsc"), args);
        EXPECT_TRUE(p.waitForFinished(30000)) << "mmsc did not run; is it built?";
        return {p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
    }
    QStringList homeEntries() const {
        return QDir(home.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    QByteArray stored(const QString& file) const {
        return test::TempDir::read(home.path() + QStringLiteral("/UserData/MMS/") + file);
    }

    test::TempDir home;
    test::TempDir media;
    const QString pic = media.write(QStringLiteral("photo.gif"), QByteArray(1000, 'g'));
    const QString snd = media.write(QStringLiteral("voice.amr"), QByteArray(300, 'a'));
    const QStringList twoSlides{QStringLiteral("--subject"),
                                QStringLiteral("Hello"),
                                QStringLiteral("--slide"),
                                QStringLiteral("--pic"),
                                pic,
                                QStringLiteral("--text"),
                                QStringLiteral("Hi"),
                                QStringLiteral("--slide"),
                                QStringLiteral("--dur"),
                                QStringLiteral("5"),
                                QStringLiteral("--sound"),
                                snd};
};

} // namespace

TEST_F(MmscBuild, InfoPrintsTheCountAndTheSizeEstimate) {
    const Outcome r = mmsc(twoSlides + QStringList{QStringLiteral("--info")});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    const int size = 499 + 5 + 2 * 36 + (1000 + 41 + 27) + (2 + 2 + 42 + 28) + (300 + 30 + 37);
    EXPECT_EQ(r.out, QByteArray("slides: 2\nsize: ") + QByteArray::number(size) + "\n");
    EXPECT_EQ(mmsc({QStringLiteral("--info")}).out, QByteArray("slides: 0\nsize: 0\n"));
    EXPECT_TRUE(homeEntries().isEmpty());
}

TEST_F(MmscBuild, SaveStoresThePackageAndReplacesTheOldMessageWhole) {
    Outcome r = mmsc({QStringLiteral("--slide"), QStringLiteral("--slide"), QStringLiteral("--slide"),
                      QStringLiteral("--text"), QStringLiteral("x"), QStringLiteral("--save"),
                      QStringLiteral("msg")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_FALSE(stored(QStringLiteral("msg/text3.txt")).isEmpty());

    r = mmsc(twoSlides + QStringList{QStringLiteral("--save"), QStringLiteral("msg")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(
        QDir(home.path() + QStringLiteral("/UserData/MMS/msg")).entryList(QDir::Files, QDir::Name),
        (QStringList{QStringLiteral("main.smil"), QStringLiteral("pic1.gif"), QStringLiteral("sound2.amr"),
                     QStringLiteral("text1.txt"), QStringLiteral("texts.xml")}));
    // The edited duration is a number and goes into the index bare; the new slide's stays quoted.
    EXPECT_EQ(stored(QStringLiteral("msg.mmt")),
              QByteArray("Hello\r\n\"3\",\"I\",\"T\",\"N\"\r\n5,\"N\",\"N\",\"S\"\r\n"));
    EXPECT_TRUE(stored(QStringLiteral("msg/main.smil"))
                    .endsWith("         <par dur=\"5s\">\r\n             <audio src = \"sound2.amr\"/>\r\n   "
                              "      </par>\r\n"
                              "     </body>\r\n</smil>\r\n"));
    EXPECT_EQ(
        stored(QStringLiteral("msg/texts.xml")),
        QByteArray(
            "<?xml version=\"1.0\" encoding=\"utf-8\"?><mms-text-files>    <message>        <title>Hello"
            "</title><file filename=\"text1.txt\">Hi</file></message></mms-text-files>"));
    EXPECT_EQ(stored(QStringLiteral("msg/pic1.gif")), QByteArray(1000, 'g'));
    EXPECT_EQ(stored(QStringLiteral("msg/sound2.amr")), QByteArray(300, 'a'));
}

TEST_F(MmscBuild, ExportWritesTheArchiveToTheChosenFileOnly) {
    const QString target = media.write(QStringLiteral("out/message.tpl"), "old contents");
    const Outcome r = mmsc(twoSlides + QStringList{QStringLiteral("--export"), target});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QStringList names;
    for (const auto& m : test::readTar(target))
        names << m.name;
    EXPECT_EQ(names, (QStringList{QStringLiteral("main.smil"), QStringLiteral("texts.xml"),
                                  QStringLiteral("pic1.gif"), QStringLiteral("sound2.amr")}));
    EXPECT_TRUE(homeEntries().isEmpty());
}

TEST_F(MmscBuild, BadInputIsRefusedWithOneLineAndExitTwoWritingNothing) {
    const QString target = media.file(QStringLiteral("never.tpl"));
    const QString s = QStringLiteral("--slide");
    const QList<QStringList> refused{
        {s, QStringLiteral("--pic"), media.file(QStringLiteral("missing.gif")), QStringLiteral("--save"),
         QStringLiteral("m")},
        {s, QStringLiteral("--sound"), media.path(), QStringLiteral("--export"), target},
        {s, QStringLiteral("--dur"), QStringLiteral("32768"), QStringLiteral("--save"), QStringLiteral("m")},
        {s, QStringLiteral("--dur"), QStringLiteral("-1")},
        {s, QStringLiteral("--dur")},
        {QStringLiteral("--text"), QStringLiteral("before any slide"), QStringLiteral("--save"),
         QStringLiteral("m")},
        {s, QStringLiteral("--colour"), QStringLiteral("red")},
        {s, QStringLiteral("extra")},
        {s, QStringLiteral("--save"), QStringLiteral("temp")},
        {s, QStringLiteral("--save"), QStringLiteral("a/b")},
        {s, QStringLiteral("--save"), QStringLiteral("m"), QStringLiteral("--export"), target},
        {s, QStringLiteral("--export"), media.path()},
        {s, QStringLiteral("--export"), media.file(QStringLiteral("no/dir/x.tpl"))},
        {QStringLiteral("--subject"), QStringLiteral("two\nlines"), QStringLiteral("--save"),
         QStringLiteral("m")},
    };
    for (const QStringList& args : refused) {
        const Outcome r = mmsc(args);
        const QString shown = args.join(QLatin1Char(' '));
        EXPECT_EQ(r.exitCode, 2) << shown.toStdString();
        EXPECT_TRUE(r.err.startsWith("mmsc: ") && r.err.count('\n') == 1)
            << shown.toStdString() << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << shown.toStdString();
    }
    EXPECT_TRUE(homeEntries().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(target));
}

TEST(MessageName, IsOnePlainNameOtherThanTheWorkingCopy) {
    for (const char* good : {"msg", "My message", ".hidden", "a.b", "Grüße", "temp2"})
        EXPECT_TRUE(isValidMessageName(QString::fromUtf8(good))) << good;
    for (const char* bad : {"", ".", "..", "temp", "TEMP", "a/b", "a\\b", "tab\there", "nl\n"})
        EXPECT_FALSE(isValidMessageName(QString::fromUtf8(bad))) << bad;
}
