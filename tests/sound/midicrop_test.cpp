#include "sound/midi_testfile.h"
#include "sound/midicrop.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"
#include "support/tempdir.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;
using namespace Qt::StringLiterals;

namespace {

const CropTexts kTexts{u"err18"_s, u"err20"_s, u"err21"_s};

// 120 bpm in 3/4. Channel 2 (program 40): C5 D5 as quarters, E5 a half, F5 G5 quarters. Channel 5
// (program 12, own track): three seconds of rest, then C6.
QByteArray tune() {
    Track meta;
    meta.tempo(500000).timeSig(3, 2).end();
    Track lead;
    lead.program(2, 40).note(0, 480, 2, 60).note(0, 480, 2, 62).note(0, 960, 2, 64).note(0, 480, 2, 65);
    lead.note(0, 480, 2, 67).end();
    Track late;
    late.program(5, 12).note(2880, 480, 5, 72).end();
    return midiFile(480, {meta, lead, late});
}

class MidiCropTest : public ::testing::Test {
protected:
    MidiCropTest() : decoder(&sink) { in = dir.write(u"tune.mid"_s, tune()); }
    bool crop(const char* start, const char* end) {
        return cropMidi(decoder, in, out, QString::fromLatin1(start), QString::fromLatin1(end), kTexts, sink);
    }
    TempDir dir;
    RecordingSink sink;
    MidiDecoder decoder;
    QString in;
    QString out = dir.file(u"out.mid"_s);
};

} // namespace

TEST_F(MidiCropTest, RefusesBadStretchesWithTheirTexts) {
    for (const auto& [start, end] :
         {std::pair{"2.0s", "1.0s"}, {"1.0s", "1.0s"}, {"-1.0s", "1.0s"}, {"0.0s", "3.1s"}})
        EXPECT_FALSE(crop(start, end)) << start << end;
    EXPECT_EQ(sink.texts(), (QStringList{u"err18"_s, u"err18"_s, u"err21"_s, u"err20"_s}));
    sink.shown.clear();
    in = dir.write(u"bad.mid"_s, "MThd garbage");
    EXPECT_FALSE(crop("0.0s", "1.0s")); // a failed decode has nothing to add
    EXPECT_TRUE(sink.shown.empty());
    EXPECT_FALSE(QFile::exists(out));
}

TEST_F(MidiCropTest, OutputHoldsTheStretchWithItsProgramsTempoAndSignature) {
    ASSERT_TRUE(crop("1.0s", "2.5s")) << sink.texts().join(QLatin1Char('\n')).toStdString();
    MidiDecoder back;
    back.resetMidiTables();
    back.decodeMidiFile(out);
    ASSERT_TRUE(back.midiDecoded());
    EXPECT_EQ(back.tempoBpm(), 120);
    EXPECT_EQ(back.timeSig(), (std::array<qint16, 2>{3, 4}));
    EXPECT_EQ(back.noteTable(2, 0), u"2E5 4F5"_s);
    EXPECT_EQ(back.channelProgram(2), 40);
    EXPECT_EQ(back.channelProgram(5), 12); // its stretch holds only rests: no notes, but the program stays
    EXPECT_TRUE(back.noteTable(5, 0).isEmpty());
}

TEST_F(MidiCropTest, ATuneWithoutTempoIsTimedAtTheLastTempoReadOrMidisDefault) {
    Track plain; // one 4/4 bar of quarters, no tempo event
    for (int key : {60, 62, 64, 65})
        plain.note(0, 96, 0, key);
    const QString noTempo = dir.write(u"plain.mid"_s, midiFile(96, {plain.end()}));
    // A fresh run: MIDI's default of 120 beats a minute makes the bar two seconds long.
    in = noTempo;
    EXPECT_FALSE(crop("0.0s", "2.1s"));
    EXPECT_TRUE(crop("0.0s", "2.0s"));
    MidiDecoder written;
    written.decodeMidiFile(out);
    EXPECT_EQ(written.tempoBpm(), 120);

    // Once a tune with its own tempo (60 beats a minute) was read, the plain one keeps that tempo.
    Track slow;
    slow.tempo(1000000).note(0, 96, 0, 60).end();
    in = dir.write(u"slow.mid"_s, midiFile(96, {slow}));
    EXPECT_FALSE(crop("0.0s", "5.0s"));
    in = noTempo;
    EXPECT_TRUE(crop("0.0s", "4.0s"));
    EXPECT_EQ(sink.texts(), (QStringList{u"err20"_s, u"err20"_s}));
}
