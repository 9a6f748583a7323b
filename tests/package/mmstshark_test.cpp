#include "image/picturefiles.h"
#include "package/messageexport.h"
#include "sound/midi_testfile.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDataStream>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

// A capture of one HTTP POST of the request, on a user link type that the command line hands to the
// HTTP dissector, which passes the body to the MMSE dissector by its media type.
QByteArray capture(const QByteArray& request) {
    const QByteArray post =
        "POST /mms HTTP/1.1\r\nHost: mmsc\r\nContent-Type: application/vnd.wap.mms-message\r\n"
        "Content-Length: " +
        QByteArray::number(request.size()) + "\r\n\r\n" + request;
    QByteArray pcap;
    QDataStream s(&pcap, QIODevice::WriteOnly);
    s.setByteOrder(QDataStream::LittleEndian);
    s << quint32(0xA1B2C3D4) << quint16(2) << quint16(4) << quint64(0) << quint32(65535)
      << quint32(147) // DLT_USER0
      << quint64(0) << quint32(post.size()) << quint32(post.size());
    return pcap + post;
}

} // namespace

TEST(MmsWithTshark, ARequestWithRecipientsDecodesCleanly) {
    const QString tshark = QStandardPaths::findExecutable(u"tshark"_s);
    if (tshark.isEmpty()) GTEST_SKIP() << "tshark is not installed";
    test::TempDir dir;
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(u"3"_s), dir.write(u"a.gif"_s, test::tinyGif()), u"Grüße"_s,
                        dir.write(u"s.amr"_s, "#!AMR\n\x3c\x01\x02"));
    slides.InsertAtBack(SlideDur::fromNumber(5),
                        dir.write(u"b.png"_s, test::encoded(test::filled(8, 8, Qt::red), "PNG")), {},
                        dir.write(u"t.mid"_s, test::midifile::cMajorScale(2)));
    slides.InsertAtBack(SlideDur::fromText(u"3"_s),
                        dir.write(u"c.jpeg"_s, test::encoded(test::filled(8, 8, Qt::blue), "JPEG")), {}, {});
    MmsRecipients recipients;
    recipients.to = QStringList{u"+4412345678/TYPE=PLMN"_s, u"bob@example.com"_s};
    recipients.cc = QStringList{u"carol@example.com"_s};
    recipients.from = u"5551234/TYPE=PLMN"_s;
    const QString out = dir.file(u"m.mms"_s);
    ASSERT_TRUE(writeMmsFile(slides, dir.path(), u"Hello"_s, out, recipients).isOk());
    dir.write(u"m.pcap"_s, capture(test::TempDir::read(out)));

    QProcess p;
    p.start(tshark, {u"-r"_s, dir.file(u"m.pcap"_s), u"-o"_s,
                     u"uat:user_dlts:\"User 0 (DLT=147)\",\"http\",\"0\",\"\",\"0\",\"\""_s, u"-V"_s});
    ASSERT_TRUE(p.waitForFinished(60000));
    const QString decoded = QString::fromUtf8(p.readAllStandardOutput());
    ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    for (const QString& line :
         {u"Type: m-send-req"_s, u"From: 5551234/TYPE=PLMN"_s, u"To: +4412345678/TYPE=PLMN"_s,
          u"To: bob@example.com"_s, u"Cc: carol@example.com"_s, u"Part: 7, content-type: image/jpeg"_s,
          u"content-type: image/png"_s, u"content-type: audio/midi"_s})
        EXPECT_TRUE(decoded.contains(line)) << line.toStdString() << "\n" << decoded.toStdString();
    EXPECT_FALSE(decoded.contains(u"Malformed"_s) || decoded.contains(u"Expert Info (Error"_s) ||
                 decoded.contains(u"Expert Info (Warning"_s))
        << decoded.toStdString();
}
