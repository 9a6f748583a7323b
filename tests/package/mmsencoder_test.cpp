#include "image/picturefiles.h"
#include "package/messageexport.h"
#include "package/mmsencoder.h"
#include "sound/midi_testfile.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"
#include "support/tempdir.h"
#include "support/tsharkdecode.h"

#include <QBuffer>
#include <QDataStream>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;
using namespace mms::test;

namespace {

QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

class MmsEncoderTest : public ::testing::Test {
protected:
    MmsEncoderTest() : encoder(&sink) { out.open(QIODevice::ReadWrite); }
    RecordingSink sink;
    MmsEncoder encoder;
    QBuffer out;
    TempDir dir;
};

} // namespace

TEST_F(MmsEncoderTest, DataLengthsAreUintvars) {
    for (auto [value, expected] : {std::pair<quint64, const char*>{0, "00"},
                                   {127, "7f"},
                                   {128, "8100"},
                                   {300, "822c"},
                                   {16384, "818000"},
                                   {0xFFFFFFFF, "8fffffff7f"}})
        EXPECT_EQ(MmsEncoder::uintvar(value), hex(expected)) << value;
    ASSERT_TRUE(encoder.calculateDataLen(dir.write(u"f"_s, QByteArray(128, 'x'))));
    EXPECT_EQ(encoder.lengthBuffer(), hex("8100"));
    EXPECT_FALSE(encoder.calculateDataLen(dir.file(u"missing"_s)));
    EXPECT_EQ(sink.texts(), QStringList{u"Error"_s});
}

// The full short forms are checked in the message test below.
TEST_F(MmsEncoderTest, HeaderAndPartEntriesReturnTheNextOffsetAndUseLongForms) {
    // A subject of 40 bytes needs the length quote; 200 parts need a two-byte count.
    const QString subject(40, u's');
    const qint32 next = encoder.writeHeader(out, 200, subject);
    EXPECT_EQ(next, out.data().size() + 1);
    EXPECT_TRUE(out.data().contains(hex("961f2bea7f") + subject.toLatin1() + hex("00 8a80")));
    EXPECT_TRUE(out.data().endsWith(QByteArray("<AAAA>") + hex("00 8148")));

    out.buffer().clear();
    out.seek(0);
    out.write("123"); // entries start at any position
    EXPECT_EQ(encoder.generateMsgElement(out, dir.write(u"pic1.gif"_s, "GIF89a"), 4), 4 + 2 + 35 + 6);
    EXPECT_EQ(out.data().mid(3), hex("23 06 0b9d85") + "pic1.gif" + hex("00 c0223c") + "pic1.gif" +
                                     hex("3e00 8e") + "pic1.gif" + hex("00") + "GIF89a");
    // A content type over 30 bytes takes the length quote; the headers length stays consistent.
    out.buffer().clear();
    const QString longName = dir.write(u"abcdefghijklmnopqrstu.JPG"_s, "j");
    EXPECT_EQ(encoder.generateMsgElement(out, longName, 1), 1 + 2 + 97 + 1);
    EXPECT_EQ(out.data().left(4), hex("61 01 1f26"));
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(MmsEncoderTest, RefusalsWriteNothing) {
    const QString huge = dir.write(QString(120, QLatin1Char('n')) + u".mid"_s, "x");
    EXPECT_EQ(encoder.generateMsgElement(out, huge, 1), 0);
    EXPECT_EQ(encoder.generateMsgElement(out, dir.file(u"sound1.amr"_s), 1), 0);
    EXPECT_EQ(encoder.generateMsgElement(out, dir.write(u"ok.txt"_s, "p"), 0), 0);
    QBuffer broken; // refuses every write
    broken.open(QIODevice::ReadOnly);
    EXPECT_EQ(encoder.generateMMSHeader(broken, 1, 3, u"Hi"_s), 0);
    EXPECT_EQ(sink.texts(), (QStringList{u"ImgHeader: oversized"_s, u"Error"_s, u"sound1.amr: Error"_s,
                                         u"ok.txt: Error"_s, u"Error"_s}));
    EXPECT_TRUE(out.data().isEmpty());
}

TEST_F(MmsEncoderTest, TwoSlideMessageFieldByField) {
    const QString folder = dir.path() + u"/pkg"_s;
    dir.write(u"pkg/main.smil"_s, "<smil></smil>");
    dir.write(u"pkg/pic1.gif"_s, "GIF89a-picture");
    dir.write(u"pkg/text1.txt"_s, "Hi \xC3\xA9");
    dir.write(u"pkg/vdo2.3gp"_s, QByteArray(300, 'v'));
    dir.write(u"pkg/sound2.amr"_s, "#!AMR\n");
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(u"3"_s), u"/lib/a.GIF"_s, u"Hi é"_s, {});
    slides.InsertAtBack(SlideDur::fromText(u"5"_s), u"/lib/clip.3gp"_s, {}, u"/lib/ring.amr"_s);

    ASSERT_TRUE(writeSendRequest(slides, folder, u"Grüße"_s, out, &sink).isOk());

    // Header with the subject's 7 UTF-8 bytes and five parts; each part: headers length, data
    // length, content type, Content-ID, Content-Location (not for the SMIL part), data.
    QByteArray expected = hex("8c80 98") + "B1127540881" + hex("00 8d90 890181 960aea7f") +
                          u"Grüße"_s.toUtf8() + hex("00 8a80 8f81 8681 9081 841bb389") + "application/smil" +
                          hex("00 8a") + "<AAAA>" + hex("00 05");
    const struct {
        QByteArray contentType;
        QByteArray name;
        QByteArray data;
    } parts[] = {
        {hex("1f1e") + "application/smil" + hex("0085") + "main.smil" + hex("0081ea"), "AAAA",
         "<smil></smil>"},
        {hex("0b9d85") + "pic1.gif" + hex("00"), "pic1.gif", "GIF89a-picture"},
        {hex("0e8381ea85") + "text1.txt" + hex("00"), "text1.txt", "Hi \xC3\xA9"},
        {hex("15") + "video/3gpp" + hex("0085") + "vdo2.3gp" + hex("00"), "vdo2.3gp", QByteArray(300, 'v')},
        {hex("16") + "audio/amr" + hex("0085") + "sound2.amr" + hex("00"), "sound2.amr", "#!AMR\n"},
    };
    for (const auto& part : parts) {
        QByteArray headers = part.contentType + hex("c0223c") + part.name + hex("3e00");
        if (part.name != "AAAA") headers += hex("8e") + part.name + hex("00");
        expected += MmsEncoder::uintvar(quint64(headers.size())) +
                    MmsEncoder::uintvar(quint64(part.data.size())) + headers + part.data;
    }
    EXPECT_EQ(out.data().toHex(' '), expected.toHex(' '));
    EXPECT_TRUE(sink.shown.empty());

    // A missing part fails the whole request and names the file.
    QFile::remove(folder + u"/sound2.amr"_s);
    const QString target = dir.file(u"out.mms"_s);
    const Status s = writeSendRequest(slides, folder, u"x"_s, target, &sink);
    EXPECT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(u"sound2.amr"_s));
    EXPECT_FALSE(QFile::exists(target));
}

TEST_F(MmsEncoderTest, RecipientsFollowFromInTheHeaderAndAddressesAreChecked) {
    MmsRecipients to;
    to.to = QStringList{u"+4412345678/TYPE=PLMN"_s, u"bob@example.com"_s};
    to.cc = QStringList{u"jörg@example.de"_s};
    to.from = u"123/TYPE=PLMN"_s;
    ASSERT_GT(encoder.writeHeader(out, 1, u"Hi"_s, to), 0);
    EXPECT_TRUE(out.data().contains(
        hex("8d90 890f80") + "123/TYPE=PLMN" + hex("00 97") + "+4412345678/TYPE=PLMN" + hex("00 97") +
        "bob@example.com" + hex("00 8212ea") + u"jörg@example.de"_s.toUtf8() + hex("00 9605ea7f486900")));

    for (const auto& [typed, carried] :
         {std::pair<QString, QString>{u"+44 (0)1234-567.89"_s, u"+440123456789/TYPE=PLMN"_s},
          {u"5551234/type=plmn"_s, u"5551234/TYPE=PLMN"_s},
          {u" a.b+c@example.com "_s, u"a.b+c@example.com"_s}})
        EXPECT_EQ(mmsAddress(typed), carried);
    for (const char* refused : {"Bob Smith", "bob@", "a@b@c", "+", "12a3", "<a@b.c>", "a/b@c"})
        EXPECT_EQ(mmsAddress(QString::fromUtf8(refused)), std::nullopt) << refused;
    EXPECT_EQ(splitAddressList(u" 1, ;2;3 ,"_s), QStringList({u"1"_s, u"2"_s, u"3"_s}));
}

// Every picture the store can hold is found under the name the package writer gives it, and typed.
TEST_F(MmsEncoderTest, PicturesOfEveryStoredKindAreFoundAndTyped) {
    const struct {
        const char *path, *member;
        QByteArray bytes;
        const char* type;
    } pictures[] = {{"/lib/a.PNG", "pic1.png", "\x89PNG", "image/png"},
                    {"/lib/b.jpeg", "pic2.jpeg", "jpeg", "image/jpeg"},
                    {"/lib/c", "pic3.bin", "\xFF\xD8\xFF\xDB", "image/jpeg"},
                    {"/lib/d.x-y", "pic4.bin", "junk", "application/octet-stream"}};
    CSlide slides;
    for (const auto& p : pictures) {
        slides.InsertAtBack(SlideDur::fromText(u"3"_s), QString::fromLatin1(p.path), {}, {});
        dir.write(u"pkg/"_s + QLatin1String(p.member), p.bytes);
    }
    dir.write(u"pkg/main.smil"_s, "<smil/>");
    ASSERT_TRUE(writeSendRequest(slides, dir.file(u"pkg"_s), u"x"_s, out, &sink).isOk());
    for (const auto& p : pictures)
        EXPECT_TRUE(out.data().contains(p.type + hex("0085") + p.member + hex("00"))) << p.member;
}

TEST(MmsWithTshark, ARequestWithRecipientsDecodesCleanly) {
    const QString tshark = QStandardPaths::findExecutable(u"tshark"_s);
    if (tshark.isEmpty()) GTEST_SKIP() << "tshark is not installed";
    TempDir dir;
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(u"3"_s), dir.write(u"a.gif"_s, tinyGif()), u"Grüße"_s,
                        dir.write(u"s.amr"_s, "#!AMR\n\x3c\x01\x02"));
    slides.InsertAtBack(SlideDur::fromNumber(5), dir.write(u"b.png"_s, encoded(filled(8, 8, Qt::red), "PNG")),
                        {}, dir.write(u"t.mid"_s, midifile::cMajorScale(2)));
    slides.InsertAtBack(SlideDur::fromText(u"3"_s),
                        dir.write(u"c.jpeg"_s, encoded(filled(8, 8, Qt::blue), "JPEG")), {}, {});
    MmsRecipients recipients;
    recipients.to = QStringList{u"+4412345678/TYPE=PLMN"_s, u"bob@example.com"_s};
    recipients.cc = QStringList{u"carol@example.com"_s};
    recipients.from = u"5551234/TYPE=PLMN"_s;
    const QString out = dir.file(u"m.mms"_s);
    ASSERT_TRUE(writeMmsFile(slides, dir.path(), u"Hello"_s, out, recipients).isOk());
    const auto run = tsharkDecodeMms(TempDir::read(out), dir);
    ASSERT_TRUE(run && run->exitCode == 0) << (run ? run->err.toStdString() : std::string());
    const QString decoded = QString::fromUtf8(run->out);
    for (const QString& line :
         {u"Type: m-send-req"_s, u"From: 5551234/TYPE=PLMN"_s, u"To: +4412345678/TYPE=PLMN"_s,
          u"To: bob@example.com"_s, u"Cc: carol@example.com"_s, u"Part: 7, content-type: image/jpeg"_s,
          u"content-type: image/png"_s, u"content-type: audio/midi"_s})
        EXPECT_TRUE(decoded.contains(line)) << line.toStdString() << "\n" << decoded.toStdString();
    EXPECT_FALSE(decoded.contains(u"Malformed"_s) || decoded.contains(u"Expert Info (Error"_s) ||
                 decoded.contains(u"Expert Info (Warning"_s))
        << decoded.toStdString();
}
