#include "package/mmsencoder.h"
#include "sound/midi_testfile.h"
#include "store/messagestore.h"
#include "store/workspace.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QBuffer>
#include <QProcess>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test::midifile;

namespace {

struct MmscRun {
    int exitCode = -1;
    QString out;
    QString err;
};

// The mmsc commands of the file formats, run as scripts run them.
class MmscFormatsTest : public ::testing::Test {
protected:
    MmscRun mmsc(const QStringList& args) {
        QProcess p;
        p.start(QStringLiteral(MMS_BIN_DIR "/mmsc"),
                QStringList{QStringLiteral("--home"), dir.path()} + args);
        p.waitForFinished(60000);
        return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
                QString::fromUtf8(p.readAllStandardError())};
    }
    test::TempDir dir;
};

} // namespace

TEST_F(MmscFormatsTest, ProbeMidiAndCropPrintExactLines) {
    const QString gif = dir.write(QStringLiteral("a.gif"), QByteArray::fromHex("474946383961 2c01 c800 f7"));
    MmscRun r = mmsc({QStringLiteral("probe"), gif, dir.file(QStringLiteral("none.png"))});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, QStringLiteral("1\t1\t300\t200\t8\t%1\n0\t0\t0\t0\t0\t%2\n")
                         .arg(gif, dir.file(QStringLiteral("none.png"))));
    EXPECT_TRUE(r.err.contains(QStringLiteral("none.png")));

    Track meta;
    meta.tempo(500000).timeSig(3, 2);
    Track notes;
    notes.program(1, 19).note(0, 480, 1, 60).note(0, 480, 1, 62).note(0, 480, 1, 64).note(0, 1920, 1, 65);
    const QString tune = dir.write(QStringLiteral("t.mid"), midiFile(480, {meta, notes}));
    r = mmsc({QStringLiteral("midi"), tune});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out,
              QStringLiteral("decoded: 1\nticks_per_quarter: 480\ntempo_bpm: 120\nsec_per_quarter: 0.500000\n"
                             "time_signature: 3/4\nbar_whole_notes: 0.750000\ntune_length: 3.000000\n"
                             "channel 1 program 19 bars 2: 4C5 4D5 4E5 | 1F5\n"));

    const QString out = dir.file(QStringLiteral("c.mid"));
    EXPECT_EQ(
        mmsc({QStringLiteral("crop"), tune, QStringLiteral("0.5"), QStringLiteral("1.0s"), out}).exitCode, 0);
    EXPECT_TRUE(mmsc({QStringLiteral("midi"), out}).out.endsWith(QStringLiteral("bars 1: 4D5\n")));
    r = mmsc({QStringLiteral("crop"), tune, QStringLiteral("0"), QStringLiteral("3.5"),
              dir.file(QStringLiteral("d.mid"))});
    EXPECT_NE(r.exitCode, 0);
    EXPECT_FALSE(r.err.isEmpty());
    EXPECT_FALSE(QFile::exists(dir.file(QStringLiteral("d.mid"))));
}

TEST_F(MmscFormatsTest, MmsWritesTheStoredMessageAsOneRequest) {
    const QString gif = dir.write(QStringLiteral("lib/p.gif"), "GIF89a");
    const QString mid = dir.write(QStringLiteral("lib/s.mid"), "MThd-tune");
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(QStringLiteral("3")), gif, QStringLiteral("Hi"), {});
    slides.InsertAtBack(SlideDur::fromNumber(5), {}, {}, mid);
    MessageStore store(dir.path());
    ASSERT_TRUE(store.save(slides, QStringLiteral("demo"), QStringLiteral("Subj")).isOk());

    const QString out = dir.file(QStringLiteral("demo.mms"));
    const MmscRun r = mmsc({QStringLiteral("mms"), QStringLiteral("demo"), out});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QBuffer expected;
    expected.open(QIODevice::ReadWrite);
    ASSERT_TRUE(writeSendRequest(slides, workspace::messageFolder(dir.path(), QStringLiteral("demo")),
                                 QStringLiteral("Subj"), expected)
                    .isOk());
    const QByteArray written = test::TempDir::read(out);
    EXPECT_EQ(written, expected.data());
    EXPECT_TRUE(written.contains(QByteArray("<AAAA>\0\x04", 8))); // SMIL, picture, text and sound
    EXPECT_TRUE(written.contains("MThd-tune"));

    EXPECT_EQ(mmsc({QStringLiteral("mms"), QStringLiteral("nothere"), out}).exitCode, 2);
    EXPECT_EQ(
        mmsc({QStringLiteral("mms"), QStringLiteral("demo"),
              workspace::messageFolder(dir.path(), QStringLiteral("demo")) + QStringLiteral("/pic1.gif")})
            .exitCode,
        2);
    EXPECT_EQ(test::TempDir::read(workspace::messageFolder(dir.path(), QStringLiteral("demo")) +
                                  QStringLiteral("/pic1.gif")),
              QByteArray("GIF89a"));
}
