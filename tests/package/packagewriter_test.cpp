#include "package/archivereader.h"
#include "package/packagewriter.h"
#include "package/tararchive.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <gtest/gtest.h>
#include <initializer_list>

using namespace mms;
using test::TarMember;

namespace {

::testing::AssertionResult succeeded(const Status& s) {
    if (s) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << s.message().toStdString();
}

// A device that refuses every write, as a full disk would.
class FailingDevice : public QIODevice {
protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64) override {
        setErrorString(QStringLiteral("No space left on device"));
        return -1;
    }
};

QByteArray crlf(std::initializer_list<const char*> lines) {
    QByteArray out;
    for (const char* l : lines)
        out += QByteArray(l) + "\r\n";
    return out;
}

const QByteArray kSmilHead =
    crlf({"<smil>", "     <head>", "     <layout>",
          "         <root-layout width=\"160\" height=\"140\" title=\"MMS by Morvane\"/>",
          "         <region id=\"Image\" height=\"110\" width=\"160\"/>",
          "         <region id=\"Text\" height=\"20\" width=\"160\" top=\"110\"/>", "     </layout>",
          "     </head>", " ", "     <body>"});
const QByteArray kSmilEnd = crlf({"     </body>", "</smil>"});
const QByteArray kTextsHead =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?><mms-text-files>    <message>        <title>";
const QByteArray kGif("GIF89a\x01\x00\x01\x00\x00\xff\x00,", 14);
const QByteArray kAmr("#!AMR\n\x3c\x00\x00", 9);

// The two-slide message of the writer's reference example: a GIF and "Hi", then an AMR sound.
class PackageWriterTest : public ::testing::Test {
protected:
    void SetUp() override {
        gif = media.write(QStringLiteral("lib/photo.GIF"), kGif);
        amr = media.write(QStringLiteral("lib/voice.amr"), kAmr);
        slides.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), gif, QStringLiteral("Hi"), {});
        slides.InsertAtBack(SlideDur::fromText(QStringLiteral("5")), {}, {}, amr);
    }
    QString stored(const QString& file) const {
        return home.path() + QStringLiteral("/UserData/MMS/") + file;
    }
    QStringList entries(const QString& folder) const {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    void exportMode() {
        slides.setfolderpath(QString());
        slides.setfilename(home.path() + QStringLiteral("/upload"));
    }

    test::TempDir home;
    test::TempDir media;
    QString gif, amr;
    CSlide slides;
    const QString subject = QStringLiteral("Grüße");
    const QByteArray smil =
        kSmilHead +
        crlf({"         <par dur=\"3s\">", "             <img src=\"pic1.gif\" region=\"Image\"/>",
              "             <text src=\"text1.txt\" region=\"Text\"/>", "         </par>",
              "         <par dur=\"5s\">", "             <audio src = \"sound2.amr\"/>", "         </par>"}) +
        kSmilEnd;
    const QByteArray texts = kTextsHead + "Gr\xC3\xBC\xC3\x9F"
                                          "e</title><file filename=\"text1.txt\">Hi</file>"
                                          "</message></mms-text-files>";
};

} // namespace

TEST_F(PackageWriterTest, StoreModeWritesTheReferencePackageByteForByte) {
    slides.setfolderpath(QStringLiteral("msg"));
    slides.setfilename(QStringLiteral("msg"));
    ASSERT_TRUE(succeeded(generateSMIL(slides, home.path(), subject)));

    EXPECT_EQ(
        entries(stored(QStringLiteral("msg"))),
        (QStringList{QStringLiteral("main.smil"), QStringLiteral("pic1.gif"), QStringLiteral("sound2.amr"),
                     QStringLiteral("text1.txt"), QStringLiteral("texts.xml")}));
    EXPECT_EQ(test::TempDir::read(stored(QStringLiteral("msg/main.smil"))), smil);
    EXPECT_EQ(test::TempDir::read(stored(QStringLiteral("msg/texts.xml"))), texts);
    EXPECT_EQ(test::TempDir::read(stored(QStringLiteral("msg/pic1.gif"))), kGif);
    EXPECT_EQ(test::TempDir::read(stored(QStringLiteral("msg/sound2.amr"))), kAmr);
    EXPECT_EQ(test::TempDir::read(stored(QStringLiteral("msg/text1.txt"))), QByteArray("Hi"));
    EXPECT_EQ(test::TempDir::read(stored(QStringLiteral("msg.mmt"))),
              QByteArray("Gr\xC3\xBC\xC3\x9F"
                         "e\r\n\"3\",\"I\",\"T\",\"N\"\r\n\"5\",\"N\",\"N\",\"S\"\r\n"));
}

TEST_F(PackageWriterTest, ExportModeArchivesTheMembersInOrderAndLeavesOnlyTheArchive) {
    exportMode();
    ASSERT_TRUE(succeeded(generateSMIL(slides, home.path(), subject)));
    QString format;
    const auto members = test::readTar(home.file(QStringLiteral("upload.tpl")), &format);
    EXPECT_EQ(members, (std::vector<TarMember>{{QStringLiteral("main.smil"), smil},
                                               {QStringLiteral("texts.xml"), texts},
                                               {QStringLiteral("pic1.gif"), kGif},
                                               {QStringLiteral("sound2.amr"), kAmr}}));
    EXPECT_TRUE(format.contains(QStringLiteral("ustar"))) << format.toStdString();
    EXPECT_EQ(entries(home.path()), QStringList{QStringLiteral("upload.tpl")});

    // An empty message still exports its presentation and manifest, and replaces the old archive.
    slides.Destory();
    exportMode();
    ASSERT_TRUE(succeeded(generateSMIL(slides, home.path(), QString())));
    EXPECT_EQ(test::readTar(home.file(QStringLiteral("upload.tpl"))),
              (std::vector<TarMember>{
                  {QStringLiteral("main.smil"), kSmilHead + kSmilEnd},
                  {QStringLiteral("texts.xml"), kTextsHead + "</title></message></mms-text-files>"}}));
}

TEST_F(PackageWriterTest, NamesEveryKindOfMediaAndCopiesEmptyFiles) {
    slides.Destory();
    const SlideDur one = SlideDur::fromNumber(1);
    slides.InsertAtBack(one, media.write(QStringLiteral("a.PNG"), "png"), {},
                        media.write(QStringLiteral("s.MID"), "M"));
    slides.InsertAtBack(one, media.write(QStringLiteral("c.3GP"), "3gp"), {},
                        media.write(QStringLiteral("s.wav"), "RIFF"));
    slides.InsertAtBack(one, media.write(QStringLiteral("d.x/noext"), {}), QStringLiteral("only text"), {});
    exportMode();
    ASSERT_TRUE(succeeded(generateSMIL(slides, home.path(), QString())));

    const auto members = test::readTar(home.file(QStringLiteral("upload.tpl")));
    QStringList names;
    for (const auto& m : members)
        names << m.name;
    // In export mode the slide text travels only inside texts.xml.
    EXPECT_EQ(names.join(QLatin1Char(' ')), QStringLiteral("main.smil texts.xml pic1.png sound1.mid vdo2.3gp "
                                                           "sound2.amr pic3.bin"));
    ASSERT_EQ(members.size(), 7u);
    EXPECT_EQ(members[5].bytes, QByteArray("RIFF"));
    EXPECT_TRUE(members[6].bytes.isEmpty());
    const QByteArray& smil = members[0].bytes;
    EXPECT_TRUE(smil.contains("             <video src=\"vdo2.3gp\" region=\"Image\"/>\r\n"));
    EXPECT_TRUE(smil.contains("             <img src=\"pic3.bin\" region=\"Image\"/>\r\n"));
    EXPECT_TRUE(smil.contains("             <text src=\"text3.txt\" region=\"Text\"/>\r\n"));
}

TEST_F(PackageWriterTest, FailuresNameTheFileAndLeaveNothingHalfWritten) {
    QFile::remove(amr);
    slides.setfolderpath(QStringLiteral("msg"));
    Status s = generateSMIL(slides, home.path(), subject);
    ASSERT_FALSE(s);
    EXPECT_TRUE(s.message().contains(amr)) << s.message().toStdString();
    EXPECT_EQ(entries(home.path() + QStringLiteral("/UserData/MMS")), QStringList());

    // An old archive survives a failed export whole, and no loose file is left behind.
    const QByteArray old("previous archive");
    home.write(QStringLiteral("upload.tpl"), old);
    exportMode();
    s = generateSMIL(slides, home.path(), subject);
    ASSERT_FALSE(s);
    EXPECT_TRUE(s.message().contains(amr));
    EXPECT_EQ(test::TempDir::read(home.file(QStringLiteral("upload.tpl"))), old);
    EXPECT_EQ(entries(home.path()), (QStringList{QStringLiteral("UserData"), QStringLiteral("upload.tpl")}));

    // An existing message folder is refused and left as it was.
    media.write(QStringLiteral("lib/voice.amr"), kAmr);
    const QString keep = home.write(QStringLiteral("UserData/MMS/msg/keep.txt"), "mine");
    slides.setfolderpath(QStringLiteral("msg"));
    s = generateSMIL(slides, home.path(), subject);
    ASSERT_FALSE(s);
    EXPECT_TRUE(s.message().contains(stored(QStringLiteral("msg")))) << s.message().toStdString();
    EXPECT_EQ(test::TempDir::read(keep), QByteArray("mine"));
    EXPECT_FALSE(QFileInfo::exists(stored(QStringLiteral("msg.mmt"))));

    // A subject over two lines would break the index.
    slides.setfolderpath(QStringLiteral("other"));
    EXPECT_FALSE(generateSMIL(slides, home.path(), QStringLiteral("a\nb")));
    EXPECT_FALSE(QFileInfo::exists(stored(QStringLiteral("other"))));

    // Unwritable archive targets.
    slides.setfolderpath(QString());
    slides.setfilename(home.file(QStringLiteral("no/such/dir/upload")));
    s = generateSMIL(slides, home.path(), subject);
    ASSERT_FALSE(s);
    EXPECT_TRUE(s.message().contains(QStringLiteral("no/such/dir/upload.tpl"))) << s.message().toStdString();
    FailingDevice full;
    full.open(QIODevice::WriteOnly);
    s = writeTarArchive(full, {gif});
    EXPECT_TRUE(s.message().contains(QStringLiteral("No space left on device"))) << s.message().toStdString();
}
