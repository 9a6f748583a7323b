#include "package/mmsencoder.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"
#include "support/tempdir.h"

#include <QBuffer>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;

namespace {

QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

// A device that refuses every write.
class FailDevice : public QIODevice {
protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64) override { return -1; }
};

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
    EXPECT_EQ(MmsEncoder::uintvar(0), hex("00"));
    EXPECT_EQ(MmsEncoder::uintvar(300), hex("822c"));
    EXPECT_EQ(MmsEncoder::uintvar(0xFFFFFFFF), hex("8fffffff7f"));
    for (auto [size, expected] : {std::pair{127, "7f"}, {128, "8100"}, {16384, "818000"}}) {
        ASSERT_TRUE(encoder.calculateDataLen(dir.write(QStringLiteral("f"), QByteArray(size, 'x'))));
        EXPECT_EQ(encoder.lengthBuffer(), hex(expected));
    }
    EXPECT_FALSE(encoder.calculateDataLen(dir.file(QStringLiteral("missing"))));
    EXPECT_EQ(sink.texts(), QStringList{QStringLiteral("Error")});
}

TEST_F(MmsEncoderTest, HeaderBytesAndLongForms) {
    const qint16 parts = 3;
    const qint32 next = encoder.generateMMSHeader(out, 1, parts, QStringLiteral("Hi"));
    EXPECT_EQ(next, 1 + out.data().size());
    EXPECT_EQ(out.data(), QByteArray(hex("8c80 98") + "B1127540881" +
                                     hex("00 8d90 890181 9605ea7f486900 8a80 8f81 "
                                         "8681 9081 841bb389") +
                                     "application/smil" + hex("00 8a") + "<AAAA>" + hex("00 03")));

    // A subject of 40 bytes needs the length quote; 200 parts need a two-byte count.
    QBuffer longOut;
    longOut.open(QIODevice::ReadWrite);
    const QString subject(40, QLatin1Char('s'));
    const qint32 end = encoder.writeHeader(longOut, 200, subject);
    const QByteArray b = longOut.data();
    EXPECT_EQ(end, b.size() + 1);
    EXPECT_TRUE(b.contains(hex("961f2bea7f") + subject.toLatin1() + hex("00 8a80")));
    EXPECT_TRUE(b.endsWith(QByteArray("<AAAA>") + hex("00 8148")));

    FailDevice broken;
    broken.open(QIODevice::WriteOnly);
    EXPECT_EQ(encoder.generateMMSHeader(broken, 1, parts, QStringLiteral("Hi")), 0);
    EXPECT_EQ(sink.texts(), QStringList{QStringLiteral("Error")});
}

TEST_F(MmsEncoderTest, PartEntriesByteForByte) {
    const QString gif = dir.write(QStringLiteral("pic1.gif"), "GIF89a");
    out.write("123"); // entries start at any position
    EXPECT_EQ(encoder.generateMsgElement(out, gif, 4), 4 + 2 + 35 + 6);
    EXPECT_EQ(out.data().mid(3), hex("23 06 0b9d85") + "pic1.gif" + hex("00 c0223c") + "pic1.gif" +
                                     hex("3e00 8e") + "pic1.gif" + hex("00") + "GIF89a");

    out.buffer().clear();
    const QString smil = dir.write(QStringLiteral("main.smil"), "<smil/>");
    EXPECT_EQ(encoder.generateMsgElement(out, smil, 1), 1 + 2 + 41 + 7);
    EXPECT_EQ(out.data(), hex("29 07 1f1e") + "application/smil" + hex("0085") + "main.smil" +
                              hex("0081ea c0223c") + "AAAA" + hex("3e00") + "<smil/>");

    // A content type over 30 bytes takes the length quote; the headers length stays consistent.
    out.buffer().clear();
    const QString longName = dir.write(QStringLiteral("abcdefghijklmnopqrstu.JPG"), "j");
    EXPECT_EQ(encoder.generateMsgElement(out, longName, 1), 1 + 2 + 97 + 1);
    EXPECT_EQ(out.data().left(4), hex("61 01 1f26"));
    EXPECT_TRUE(sink.shown.empty());
}

TEST_F(MmsEncoderTest, RefusalsWriteNothing) {
    const QString huge = dir.write(QString(120, QLatin1Char('n')) + QStringLiteral(".mid"), "x");
    EXPECT_EQ(encoder.generateMsgElement(out, huge, 1), 0);
    EXPECT_EQ(encoder.generateMsgElement(out, dir.file(QStringLiteral("sound1.amr")), 1), 0);
    EXPECT_EQ(encoder.generateMsgElement(out, dir.write(QStringLiteral("x.png"), "p"), 1), 0);
    EXPECT_EQ(encoder.generateMsgElement(out, dir.write(QStringLiteral("ok.txt"), "p"), 0), 0);
    EXPECT_EQ(sink.texts(), (QStringList{QStringLiteral("ImgHeader: oversized"), QStringLiteral("Error"),
                                         QStringLiteral("sound1.amr: Error"), QStringLiteral("x.png: Error"),
                                         QStringLiteral("ok.txt: Error")}));
    EXPECT_TRUE(out.data().isEmpty());
}

TEST_F(MmsEncoderTest, TwoSlideMessageFieldByField) {
    const QString folder = dir.path() + QStringLiteral("/pkg");
    dir.write(QStringLiteral("pkg/main.smil"), "<smil></smil>");
    dir.write(QStringLiteral("pkg/pic1.gif"), "GIF89a-picture");
    dir.write(QStringLiteral("pkg/text1.txt"), "Hi \xC3\xA9");
    dir.write(QStringLiteral("pkg/vdo2.3gp"), QByteArray(300, 'v'));
    dir.write(QStringLiteral("pkg/sound2.amr"), "#!AMR\n");
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), QStringLiteral("/lib/a.GIF"),
                        QStringLiteral("Hi é"), {});
    slides.InsertAtBack(SlideDur::fromText(QStringLiteral("5")), QStringLiteral("/lib/clip.3gp"), {},
                        QStringLiteral("/lib/ring.amr"));

    ASSERT_TRUE(writeSendRequest(slides, folder, QStringLiteral("Grüße"), out, &sink).isOk());

    // Header with the subject's 7 UTF-8 bytes and five parts; each part: headers length, data
    // length, content type, Content-ID, Content-Location (not for the SMIL part), data.
    QByteArray expected = hex("8c80 98") + "B1127540881" + hex("00 8d90 890181 960aea7f") +
                          QStringLiteral("Grüße").toUtf8() + hex("00 8a80 8f81 8681 9081 841bb389") +
                          "application/smil" + hex("00 8a") + "<AAAA>" + hex("00 05");
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
    QFile::remove(folder + QStringLiteral("/sound2.amr"));
    const QString target = dir.file(QStringLiteral("out.mms"));
    const Status s = writeSendRequest(slides, folder, QStringLiteral("x"), target, &sink);
    EXPECT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(QStringLiteral("sound2.amr")));
    EXPECT_FALSE(QFile::exists(target));
}
