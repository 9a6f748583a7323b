// Sending through the real mmsd-tng, on private buses with a fake modem and a loopback MMS centre.

#include "app/mmscrun.h"
#include "image/picturefiles.h"
#include "send/messagesender.h"
#include "send/mmsdharness.h"
#include "sound/midi_testfile.h"
#include "store/messagestore.h"
#include "support/outsidetool.h"
#include "support/qtprint.h"
#include "support/tempdir.h"
#include "support/tsharkdecode.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace mms::test {
namespace {

const QString kText = u"Grüße aus Köln – ☺"_s;

class MmsdTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (const QString missing = MmsdHarness::missingPackages(); !missing.isEmpty())
            GTEST_SKIP() << "needs the packages " << missing.toStdString();
    }
    // The harness with the daemon (unless `withDaemon` is false) and the stored message "hello": a
    // picture, a UTF-8 text and a MIDI sound on one slide.
    void start(bool withDaemon = true, qint64 sizeLimit = 1100000) {
        const QString problem = harness.start(withDaemon, sizeLimit);
        ASSERT_TRUE(problem.isEmpty()) << problem.toStdString();
        store(u"hello"_s, tinyGif());
    }
    void store(const QString& name, const QByteArray& picture) {
        CSlide slides;
        slides.InsertAtBack(SlideDur::fromText(u"4"_s), media.write(u"red.gif"_s, picture), kText,
                            media.write(u"scale.mid"_s, midifile::cMajorScale(3)));
        ASSERT_TRUE(MessageStore(work.path()).save(slides, name, u"Hallo Welt"_s).isOk());
    }

    // `mmsc --home <work> <line>`, the line split at spaces.
    MmscRun mmsc(const QString& line) {
        QProcess p;
        p.setProcessEnvironment(harness.environment());
        p.start(QStringLiteral(MMS_BIN_DIR "/mmsc"),
                QStringList{u"--home"_s, work.path()} + line.split(u' '));
        EXPECT_TRUE(p.waitForFinished(90000));
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    }
    // The snapshots the daemon reads from; none is left once a send has ended either way.
    QStringList snapshots() const {
        return QDir(work.path() + u"/Temp"_s).entryList({u"send-*"_s}, QDir::Dirs);
    }

    // A refused `mmsc send`: nothing reaches the daemon or the centre, nothing is left behind.
    void expectRefused(const QString& line, int status, const QString& reason) {
        const MmscRun r = mmsc(line);
        EXPECT_EQ(r.exitCode, status) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(reason)) << r.err.toStdString();
        EXPECT_EQ(harness.requests(), QStringList());
        EXPECT_FALSE(harness.daemonLog().contains(u"mms_message_register"_s))
            << "a message reached the daemon";
        EXPECT_EQ(snapshots(), QStringList());
    }

    MmsdHarness harness;
    TempDir work, media;
};

// The request in tshark's words.
QString tsharkDecode(const QString& request, const TempDir& dir) {
    const auto run = tsharkDecodeMms(TempDir::read(request), dir);
    return run ? QString::fromUtf8(run->out) : QString();
}

TEST_F(MmsdTest, AMessageWithEveryKindOfPartReachesTheMmsCentreAndIsLoggedSent) {
    start();
    const MmscRun r = mmsc(u"send hello --to +1(555)123-4567 --cc +4412345678"_s);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString() << harness.daemonLog().toStdString();
    ASSERT_TRUE(r.out.startsWith(u"sent\t/org/ofono/mms/modemmanager/"_s)) << r.out.toStdString();
    EXPECT_TRUE(mmsc(u"sent"_s).out.contains(u"\thello\t+15551234567,+4412345678\tsent\t"_s +
                                             r.out.section(u'\t', 1)));
    EXPECT_EQ(snapshots(), QStringList());

    const QStringList requests = harness.requests();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_TRUE(TempDir::read(requests[0]).contains(kText.toUtf8()));
    const QString decoded = tsharkDecode(requests[0], media);
    if (decoded.isEmpty()) GTEST_SKIP() << "tshark is not installed";
    for (const QString& line :
         {u"Type: m-send-req"_s, u"Subject: Hallo Welt"_s, u"To: +15551234567/TYPE=PLMN"_s,
          u"To: +4412345678/TYPE=PLMN"_s, u"content-type: application/smil"_s, u"content-type: image/gif"_s,
          u"content-type: text/plain"_s, u"content-type: audio/midi"_s, u"cid:pic1.gif"_s, u"cid:text1.txt"_s,
          u"cid:sound1.mid"_s})
        EXPECT_TRUE(decoded.contains(line)) << line.toStdString() << "\n" << decoded.toStdString();
    EXPECT_FALSE(decoded.contains(u"Malformed"_s)) << decoded.toStdString();
}

// The last step pins a daemon limit the documentation states: a refusal by the centre still reads "sent".
TEST_F(MmsdTest, AnMmsCentreThatIsGoneIsReportedAndLoggedAndSendingAgainWorksOnceItIsBack) {
    start();
    harness.stopMmsCentre();
    const MmscRun gone = mmsc(u"send hello --to +15551234567 --timeout 40"_s);
    EXPECT_EQ(gone.exitCode, 1);
    EXPECT_TRUE(gone.err.startsWith(u"mmsc: hello was not sent: "_s) && gone.err.contains(u"127.0.0.1"_s))
        << gone.err.toStdString();
    EXPECT_TRUE(mmsc(u"sent"_s).out.contains(u"\tfailed: mmsd-tng could not deliver it"_s));

    ASSERT_TRUE(harness.restartMmsCentre());
    for (const bool refusing : {false, true}) {
        if (refusing) harness.setRefusing();
        const auto before = harness.requests().size();
        const MmscRun again = mmsc(u"send hello --to +15551234567"_s);
        EXPECT_EQ(again.exitCode, 0) << again.err.toStdString();
        EXPECT_TRUE(again.out.startsWith(u"sent\t"_s));
        EXPECT_GT(harness.requests().size(), before);
    }
}

// What mmsc refuses before anything reaches the daemon, each with its own reason.
TEST_F(MmsdTest, RefusedRecipientsUnknownMessagesAndOversizedMessagesAreNotHandedOver) {
    start(true, 4000);
    store(u"big"_s, encoded(filled(64, 64, Qt::red), "BMP"));
    expectRefused(u"send hello --to bob@example.com"_s, 2, u"phone numbers only"_s);
    expectRefused(u"send hello --to +1555;Bob"_s, 2, u"'Bob' is not a phone number"_s);
    expectRefused(u"send nothing --to +15551234567"_s, 2, u"no stored message"_s);
    expectRefused(u"send big --to +15551234567"_s, 2, u"takes at most 4000 bytes"_s);
    EXPECT_EQ(mmsc(u"sent"_s).out, QString());
}

TEST_F(MmsdTest, WithoutTheDaemonSendSaysWhereTheServiceComesFrom) {
    start(false);
    expectRefused(u"send hello --to +15551234567"_s, 3, u"systemctl --user start mmsd-tng"_s);
}

// The daemon's own answers to what checkRequest refuses, so the checks stay needed and complete.
TEST_F(MmsdTest, TheDaemonRefusesWhatTheChecksCatchWithoutSayingWhy) {
    start(true, 4000);
    MmsdClient client(harness.session());
    QSignalSpy ready(&client, &MmsdClient::serviceReady);
    client.findService();
    ASSERT_TRUE(ready.wait(10000));
    const ServiceLimits limits = ready.at(0).at(0).value<ServiceLimits>();
    EXPECT_EQ(limits.totalMaxAttachmentSize, 4000);
    EXPECT_EQ(limits.maxAttachments, 25);

    auto request = [](const QString& to, const QString& type, const QString& path) {
        return SendRequest{{to}, u"s"_s, false, u"<smil/>"_s, {{u"text1.txt"_s, type, path}}};
    };
    const QString to = u"+15551234567"_s, text = media.write(u"text1.txt"_s, "hi");
    EXPECT_TRUE(checkRequest(request(to, u"text/plain"_s, text), limits).isOk());
    const struct {
        QString to, type, path, reason; // no reason: checkRequest takes it, phoneNumbers does not
    } rows[] = {
        {to, u"text/plain;charset=utf-8"_s, text, u"has parameters"_s},
        {to, u"text/plain"_s, media.file(u"gone.txt"_s), u"cannot be read"_s},
        {to, u"text/plain"_s, media.write(u"big.txt"_s, QByteArray(5000, 'x')),
         u"takes at most 4000 bytes"_s},
        {u"bob@example.com"_s, u"text/plain"_s, text, {}},
    };
    for (const auto& row : rows) {
        const SendRequest r = request(row.to, row.type, row.path);
        if (!row.reason.isEmpty()) {
            EXPECT_TRUE(checkRequest(r, limits).message().contains(row.reason)) << row.reason.toStdString();
        }
        QSignalSpy refused(&client, &MmsdClient::refused);
        client.send(r);
        ASSERT_TRUE(refused.wait(10000)) << row.reason.toStdString();
        EXPECT_TRUE(refused.at(0).at(0).toString().contains(u"Invalid Arguments"_s));
    }
    EXPECT_EQ(harness.requests(), QStringList());
}

} // namespace
} // namespace mms::test
