#include "common/workspace.h"
#include "package/mmscrun.h"
#include "package/mmsencoder.h"
#include "sound/midi_testfile.h"
#include "store/messagestore.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QBuffer>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;
using namespace mms::test::midifile;

namespace {

// The mmsc commands of the file formats.
class MmscFormatsTest : public ::testing::Test {
protected:
    // %1 in `line` is the test's folder.
    test::MmscRun mmsc(const QString& line) {
        return test::runMmsc({u"--home"_s, dir.path()}, QString(line).replace(u"%1"_s, dir.path()));
    }
    test::TempDir dir;
};

} // namespace

TEST_F(MmscFormatsTest, ProbeMidiAndCropPrintExactLines) {
    const QString gif = dir.write(u"a.gif"_s, QByteArray::fromHex("474946383961 2c01 c800 f7"));
    test::MmscRun r = mmsc(u"probe %1/a.gif %1/none.png"_s);
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, u"1\t1\t300\t200\t8\t%1\n0\t0\t0\t0\t0\t%2\n"_s.arg(gif, dir.file(u"none.png"_s)));
    EXPECT_TRUE(r.err.contains(u"none.png"_s));

    Track meta;
    meta.tempo(500000).timeSig(3, 2);
    Track notes;
    notes.program(1, 19).note(0, 480, 1, 60).note(0, 480, 1, 62).note(0, 480, 1, 64).note(0, 1920, 1, 65);
    dir.write(u"t.mid"_s, midiFile(480, {meta, notes}));
    r = mmsc(u"midi %1/t.mid"_s);
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out,
              QStringLiteral("decoded: 1\nticks_per_quarter: 480\ntempo_bpm: 120\nsec_per_quarter: 0.500000\n"
                             "time_signature: 3/4\nbar_whole_notes: 0.750000\ntune_length: 3.000000\n"
                             "channel 1 program 19 bars 2: 4C5 4D5 4E5 | 1F5\n"));

    EXPECT_EQ(mmsc(u"crop %1/t.mid 0.5 1.0s %1/c.mid"_s).exitCode, 0);
    EXPECT_TRUE(mmsc(u"midi %1/c.mid"_s).out.endsWith(u"bars 1: 4D5\n"_s));
    r = mmsc(u"crop %1/t.mid 0 3.5 %1/d.mid"_s); // past the tune's end
    EXPECT_NE(r.exitCode, 0);
    EXPECT_FALSE(r.err.isEmpty());
    EXPECT_FALSE(QFile::exists(dir.file(u"d.mid"_s)));
}

TEST_F(MmscFormatsTest, MmsWritesTheStoredMessageAsOneRequest) {
    const QString gif = dir.write(u"lib/p.gif"_s, "GIF89a");
    const QString mid = dir.write(u"lib/s.mid"_s, "MThd-tune");
    CSlide slides;
    slides.InsertAtBack(SlideDur::fromText(u"3"_s), gif, u"Hi"_s, {});
    slides.InsertAtBack(SlideDur::fromNumber(5), {}, {}, mid);
    MessageStore store(dir.path());
    ASSERT_TRUE(store.save(slides, u"demo"_s, u"Subj"_s).isOk());

    const test::MmscRun r = mmsc(u"mms demo %1/demo.mms"_s);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QBuffer expected;
    expected.open(QIODevice::ReadWrite);
    ASSERT_TRUE(writeSendRequest(slides, workspace::messageFolder(dir.path(), u"demo"_s), u"Subj"_s, expected)
                    .isOk());
    const QByteArray written = test::TempDir::read(dir.file(u"demo.mms"_s));
    EXPECT_EQ(written, expected.data());
    EXPECT_TRUE(written.contains("MThd-tune"));

    // An unknown message, an address that is none, and a target inside the stored message, which must
    // survive.
    EXPECT_EQ(mmsc(u"mms nothere %1/demo.mms"_s).exitCode, 2);
    EXPECT_EQ(mmsc(u"mms demo %1/x.mms --to nobody"_s).exitCode, 2);
    const QString pic = workspace::messageFolder(dir.path(), u"demo"_s) + u"/pic1.gif"_s;
    EXPECT_EQ(mmsc(u"mms demo "_s + pic).exitCode, 2);
    EXPECT_EQ(test::TempDir::read(pic), QByteArray("GIF89a"));

    // A part gone from the stored message fails the request, naming it; nothing is written.
    QFile::remove(pic);
    const test::MmscRun lost = mmsc(u"mms demo %1/lost.mms --to 123"_s);
    EXPECT_EQ(lost.exitCode, 1);
    EXPECT_TRUE(lost.err.contains(u"pic1.*"_s)) << lost.err.toStdString();
    EXPECT_FALSE(QFile::exists(dir.file(u"lost.mms"_s)));
}
