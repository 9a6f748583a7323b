#include "package/archivereader.h"
#include "package/packagewriter.h"
#include "package/tararchive.h"
#include "package/utf8.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;
using test::ArchivedMember;

namespace {

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

// Two slides: a GIF and "Hi", then an AMR sound.
class PackageWriterTest : public ::testing::Test {
protected:
    void SetUp() override {
        gif = media.write(u"lib/photo.GIF"_s, kGif);
        amr = media.write(u"lib/voice.amr"_s, kAmr);
        slides.InsertAtBack(SlideDur::fromText(u"3"_s), gif, u"Hi"_s, {});
        slides.InsertAtBack(SlideDur::fromText(u"5"_s), {}, {}, amr);
    }
    QString stored(const QString& file) const { return home.path() + u"/UserData/MMS/"_s + file; }
    QStringList entries(const QString& folder) const {
        return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    void exportMode() {
        slides.setfolderpath(QString());
        slides.setfilename(home.path() + u"/upload"_s);
    }

    test::TempDir home;
    test::TempDir media;
    QString gif, amr;
    CSlide slides;
    const QString subject = u"Grüße"_s;
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
    slides.setfolderpath(u"msg"_s);
    slides.setfilename(u"msg"_s);
    ASSERT_TRUE(generateSMIL(slides, home.path(), subject));
    const std::pair<const char*, QByteArray> files[] = {
        {"msg/main.smil", smil},
        {"msg/pic1.gif", kGif},
        {"msg/sound2.amr", kAmr},
        {"msg/text1.txt", "Hi"},
        {"msg/texts.xml", texts},
        {"msg.mmt", "Gr\xC3\xBC\xC3\x9F"
                    "e\r\n\"3\",\"I\",\"T\",\"N\"\r\n\"5\",\"N\",\"N\",\"S\"\r\n"}};
    QStringList names;
    for (const auto& [file, bytes] : files) {
        EXPECT_EQ(test::TempDir::read(stored(QString::fromLatin1(file))), bytes) << file;
        if (QByteArray(file).startsWith("msg/")) names << QString::fromLatin1(file + 4);
    }
    EXPECT_EQ(entries(stored(u"msg"_s)), names);
}

TEST_F(PackageWriterTest, ExportModeArchivesTheMembersInOrderAndLeavesOnlyTheArchive) {
    exportMode();
    ASSERT_TRUE(generateSMIL(slides, home.path(), subject));
    EXPECT_EQ(test::readTar(home.file(u"upload.tpl"_s)),
              (std::vector<ArchivedMember>{{u"main.smil"_s, smil},
                                           {u"texts.xml"_s, texts},
                                           {u"pic1.gif"_s, kGif},
                                           {u"sound2.amr"_s, kAmr}}));
    const QByteArray magic = test::TempDir::read(home.file(u"upload.tpl"_s)).mid(257, 6);
    EXPECT_EQ(magic, QByteArray("ustar", 6)); // POSIX ustar, its NUL included: not GNU tar
    EXPECT_EQ(entries(home.path()), QStringList{u"upload.tpl"_s});

    // An empty message still exports its presentation and manifest, and replaces the old archive.
    slides.Destory();
    exportMode();
    ASSERT_TRUE(generateSMIL(slides, home.path(), QString()));
    EXPECT_EQ(
        test::readTar(home.file(u"upload.tpl"_s)),
        (std::vector<ArchivedMember>{{u"main.smil"_s, kSmilHead + kSmilEnd},
                                     {u"texts.xml"_s, kTextsHead + "</title></message></mms-text-files>"}}));
}

TEST_F(PackageWriterTest, NamesEveryKindOfMediaAndCopiesEmptyFiles) {
    slides.Destory();
    const SlideDur one = SlideDur::fromNumber(1);
    slides.InsertAtBack(one, media.write(u"a.PNG"_s, "png"), {}, media.write(u"s.MID"_s, "M"));
    slides.InsertAtBack(one, media.write(u"c.3GP"_s, "3gp"), {}, media.write(u"s.wav"_s, "RIFF"));
    slides.InsertAtBack(one, media.write(u"d.x/noext"_s, {}), u"only text"_s, {});
    exportMode();
    ASSERT_TRUE(generateSMIL(slides, home.path(), QString()));
    const auto members = test::readTar(home.file(u"upload.tpl"_s));
    // In export mode the slide text travels only inside texts.xml.
    ASSERT_EQ(test::tarNames(home.file(u"upload.tpl"_s)),
              u"main.smil texts.xml pic1.png sound1.mid vdo2.3gp sound2.amr pic3.bin"_s);
    EXPECT_EQ(members[5].bytes, QByteArray("RIFF"));
    EXPECT_TRUE(members[6].bytes.isEmpty());
    for (const char* line :
         {"<video src=\"vdo2.3gp\" region=\"Image\"/>\r\n", "<img src=\"pic3.bin\" region=\"Image\"/>\r\n",
          "<text src=\"text3.txt\" region=\"Text\"/>\r\n"})
        EXPECT_TRUE(members[0].bytes.contains(QByteArray("             ") + line)) << line;
}

TEST_F(PackageWriterTest, FailuresNameTheFileAndLeaveNothingHalfWritten) {
    const auto fails = [&](const QString& named) {
        const Status s = generateSMIL(slides, home.path(), subject);
        EXPECT_FALSE(s);
        EXPECT_TRUE(s.message().contains(named)) << s.message().toStdString();
    };
    QFile::remove(amr);
    slides.setfolderpath(u"msg"_s);
    fails(amr);
    EXPECT_EQ(entries(home.path() + u"/UserData/MMS"_s), QStringList());

    // An old archive survives a failed export whole, and no loose file is left behind.
    home.write(u"upload.tpl"_s, "previous archive");
    exportMode();
    fails(amr);
    EXPECT_EQ(test::TempDir::read(home.file(u"upload.tpl"_s)), QByteArray("previous archive"));
    EXPECT_EQ(entries(home.path()), (QStringList{u"UserData"_s, u"upload.tpl"_s}));

    // An existing message folder is refused and left as it was.
    media.write(u"lib/voice.amr"_s, kAmr);
    const QString keep = home.write(u"UserData/MMS/msg/keep.txt"_s, "mine");
    slides.setfolderpath(u"msg"_s);
    fails(stored(u"msg"_s));
    EXPECT_EQ(test::TempDir::read(keep), QByteArray("mine"));
    EXPECT_FALSE(QFileInfo::exists(stored(u"msg.mmt"_s)));

    // A subject over two lines would break the index.
    slides.setfolderpath(u"other"_s);
    EXPECT_FALSE(generateSMIL(slides, home.path(), u"a\nb"_s));
    EXPECT_FALSE(QFileInfo::exists(stored(u"other"_s)));

    // Unwritable archive targets.
    slides.setfolderpath(QString());
    slides.setfilename(home.file(u"no/such/dir/upload"_s));
    fails(u"no/such/dir/upload.tpl"_s);
    QFile full(u"/dev/full"_s); // refuses every write, as a full disk would
    ASSERT_TRUE(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const Status s = writeTarArchive(full, {gif});
    EXPECT_TRUE(s.message().contains(u"No space left on device"_s)) << s.message().toStdString();
}

TEST(Utf8Text, NeitherAddsNorDropsAMarkAndReplacesWhatItCannotCarry) {
    EXPECT_TRUE(toUtf8Bytes(QString()).isEmpty());
    EXPECT_TRUE(fromUtf8Bytes(QByteArray()).isEmpty());
    EXPECT_EQ(fromUtf8Bytes(QByteArray("\xEF\xBB\xBFok")), QString(QChar(0xFEFF)) + QStringLiteral("ok"));
    // What UTF-8 cannot carry becomes U+FFFD either way.
    EXPECT_EQ(fromUtf8Bytes(QByteArray("a\xFF")), QStringLiteral("a\uFFFD"));
    EXPECT_EQ(toUtf8Bytes(QStringLiteral("a") + QChar(0xD800)), QByteArray("a\xEF\xBF\xBD"));
}
