#include "sound/midi_testfile.h"
#include "sound/midicrop.h"
#include "sound/mididecoder.h"
#include "sound/midiwriter.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"
#include "support/tempdir.h"

#include <QBuffer>
#include <QFile>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;
using namespace Qt::StringLiterals;

namespace {

// A channel's bars as the decoder tabulated them, up to the first empty one.
QStringList bars(const MidiDecoder& decoder, int channel) {
    QStringList out;
    for (int b = 0; b < MidiDecoder::kBars && !decoder.noteTable(channel, b).isEmpty(); ++b)
        out << decoder.noteTable(channel, b);
    return out;
}

class MidiDecoderTest : public ::testing::Test {
protected:
    MidiDecoderTest() : decoder(&sink) {}
    void decode(const QByteArray& bytes) {
        decoder.resetMidiTables();
        decoder.decodeMidiData(bytes);
    }
    // One track at 480 ticks per quarter, 120 bpm, with the given time signature and events.
    void decodeTrack(const Track& events, int numerator = 4, int power = 2) {
        decode(midiFile(480, {Track().tempo(500000).timeSig(numerator, power), events}));
    }
    QStringList bars(int channel) const { return ::bars(decoder, channel); }
    RecordingSink sink;
    MidiDecoder decoder;
};

QByteArray exported(MidiWriter& w, int bpm, int signature) {
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    EXPECT_TRUE(w.ExportMidi(out, bpm, signature).isOk());
    return out.data();
}

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

class MidiCropTest : public MidiDecoderTest {
protected:
    MidiCropTest() { in = dir.write(u"tune.mid"_s, tune()); }
    bool crop(const char* start, const char* end) {
        return cropMidi(decoder, in, out, QString::fromLatin1(start), QString::fromLatin1(end), kTexts, sink);
    }
    TempDir dir;
    QString in;
    QString out = dir.file(u"out.mid"_s);
};

} // namespace

TEST(MidiTables, NamesCodesAndLengths) {
    EXPECT_EQ(MidiDecoder::noteName(0) + MidiDecoder::noteName(61) + MidiDecoder::noteName(127),
              u"C0C#5G10"_s);
    EXPECT_FALSE(MidiDecoder::gmInstrumentName(128).has_value() ||
                 MidiDecoder::gmInstrumentName(-1).has_value());
    EXPECT_EQ(MidiDecoder::timeSignatureCode({6, 8}), 4);
    EXPECT_EQ(MidiDecoder::timeSignatureCode({5, 4}), 0); // not one of the five: as 2/4
    // Note lengths round to the nearest code; 3d/16 is still a thirty-second.
    const std::pair<int, const char*> notes[] = {{480, "4"}, {960, "2"}, {1920, "1"}, {240, "8"},
                                                 {90, "32"}, {91, "16"}, {721, "2"},  {1441, "1"}};
    for (const auto& [ticks, text] : notes)
        EXPECT_EQ(MidiDecoder::durationText(ticks, 480, true), QString::fromLatin1(text)) << ticks;
    EXPECT_EQ(MidiDecoder::durationText(1920 + 480 + 60 + 10, 480, false), u"1P 4P 32P "_s);
    EXPECT_EQ(MidiDecoder::durationText(0, 480, false), QString());
    // 3 and 4 times the division are 16-bit numbers.
    EXPECT_EQ(MidiDecoder::durationText(100, 10922, true), u"32"_s);
    EXPECT_THROW(MidiDecoder::durationText(100, 10923, true), std::overflow_error);
    EXPECT_THROW(MidiDecoder::durationText(100, 8192, false), std::overflow_error);
    EXPECT_THROW(MidiDecoder::durationText(100, 0, false), std::domain_error);
}

TEST_F(MidiDecoderTest, DecodesTempoSignatureProgramsBarsAndRunningStatus) {
    decodeTrack(Track()
                    .program(2, 40)
                    .note(0, 480, 2, 60)
                    .note(480, 480, 2, 62)
                    .note(0, 1440, 2, 64)
                    .note(0, 1920, 2, 61),
                3, 2);
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_TRUE(sink.shown.empty());
    EXPECT_DOUBLE_EQ(decoder.secPerQuarter(), 0.5);
    EXPECT_DOUBLE_EQ(decoder.barWholeNotes(), 0.75);
    EXPECT_EQ(decoder.timeSignatureCode(), 1);
    EXPECT_EQ(decoder.channelProgram(2), 40);
    // Bars of three quarters; the dotted half is a "2", and the whole note that crosses the bar line
    // stays whole in the bar it closes.
    EXPECT_EQ(bars(2), (QStringList{u"4C5 4P 4D5"_s, u"2E5 1C#5"_s}));
    EXPECT_DOUBLE_EQ(decoder.tuneLength(), 2 * 3 * 0.5);

    // C5 on, then by running status: E5 on (a chord note, passed over), C5 and E5 off by velocity 0.
    decodeTrack(Track()
                    .raw(0, bytes({0x90, 0x3C, 0x64, 0, 0x40, 0x64}))
                    .raw(960, bytes({0x3C, 0, 0, 0x40, 0}))
                    .note(480, 240, 0, 67));
    EXPECT_EQ(bars(0), QStringList{u"2C5 4P 8G5"_s});
}

TEST_F(MidiDecoderTest, BarsStopAtFortyAndAtThirtyThreeTokens) {
    Track t;
    for (int k = 0; k < 45; ++k)
        t.note(0, 1920, 0, 60 + k % 12);
    decodeTrack(t);
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(bars(0).size(), 40);
    EXPECT_EQ(bars(0).last(), u"1D#5"_s);
    EXPECT_DOUBLE_EQ(decoder.tuneLength(), 40 * 2.0);
    // A gap of 200 million ticks at one tick a quarter builds only the forty bars that are kept.
    decode(midiFile(1, {Track().note(200000000, 1, 0, 60)}));
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(bars(0).size(), 40);
    EXPECT_EQ(bars(0).first(), u"1P"_s);
    Track crowded; // 34 thirty-seconds in a bar of three whole notes
    for (int k = 0; k < 34; ++k)
        crowded.note(0, 60, 1, 60);
    decodeTrack(crowded, 3, 0);
    EXPECT_FALSE(decoder.midiDecoded());
}

TEST_F(MidiDecoderTest, SelectTimeSpanKeepsOverlappingTokensWhole) {
    decodeTrack(Track().note(0, 1920, 0, 60).note(0, 480, 0, 62).note(0, 480, 0, 64).note(960, 480, 3, 67));
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(decoder.selectTimeSpan(0, 2)[0], u" 1C5"_s);
    const auto span = decoder.selectTimeSpan(2.2, 2.6);
    EXPECT_EQ(span[0], u" 4D5 4E5"_s);
    EXPECT_TRUE(span[3].isEmpty());
    // Channel 3's first delta counts from the last note event of the track, E5's note-off.
    EXPECT_EQ(bars(3), QStringList{u"2P 4G5"_s});
    EXPECT_EQ(decoder.selectTimeSpan(0, 1)[3], u" 2P"_s);
}

TEST_F(MidiDecoderTest, WrongMetaLengthsAndDataBytesAboveSevenBitsStopTheDecode) {
    const auto meta = [](int type, int length) {
        return Track().meta(type, QByteArray(length, 0)).data().mid(1);
    };
    const std::pair<QByteArray, const char*> cases[] = {
        {meta(0x00, 1), "Sequence Number Error\n"},
        {meta(0x20, 2), "MIDI Channel : Error"},
        {meta(0x21, 0), "MIDI Port : Error"},
        {meta(0x2F, 1), "End of Track : Error"},
        {meta(0x51, 2), "Tempo : Error"},
        {meta(0x54, 4), "SMPTE offset : Error"},
        {meta(0x58, 3), "Time Signature: Error"},
        {meta(0x59, 1), "Key Signature: Error"},
        {meta(0x60, 0), "Meta Event Error 60\n"},
        {meta(0x0A, 0), "Meta Event Error A\n"},
        {bytes({0x90, 0x80, 0x10}), "Decode Error(Note)"},
        {bytes({0x90, 0x3C, 0x80}), "Velocity: Decode Error(Velocity)"},
        {bytes({0xA0, 0x80, 0x10}), "Decode Error(Note)"},
        {bytes({0xA0, 0x3C, 0x90}), "Pressure Value: Decode Error(Pressure Value)"},
        {bytes({0xB0, 0x80, 0x10}), "Decode Error(Control Number)"},
        {bytes({0xB0, 0x07, 0x80}), "New Value: Decode Error(New Value)"},
        {bytes({0xC0, 0x80, 0x00}), "Decode Error(New Program Number)"},
        {bytes({0xD0, 0x80, 0x00}), "Decode Error(Pressure Value)"}};
    for (const auto& [body, message] : cases) {
        sink.shown.clear();
        // Long and text meta events before it are passed over.
        decode(midiFile(480, {Track().meta(0x03, "a name").meta(0x7F, QByteArray(200, 'x')).raw(0, body)}));
        EXPECT_FALSE(decoder.midiDecoded()) << message;
        EXPECT_EQ(sink.texts(), QStringList{QString::fromLatin1(message)});
    }
}

TEST_F(MidiDecoderTest, DamagedFilesFailQuietlyExceptForAMissingTrackChunk) {
    QByteArray file = midiFile(480, {Track().note(0, 480, 0, 60).end()});
    decode(file + "MTrx" + bigEndian(0, 4));
    EXPECT_EQ(sink.texts(), QStringList{u"Decode Error: MTrk\n"_s});
    sink.shown.clear();
    QList<QByteArray> quiet = {
        QByteArray("RIFF....", 8),
        file.left(file.size() - 3),                                           // track longer than the file
        midiFile(480, {Track().raw(0, QByteArray("\x3C\x64", 2))}),           // running status with no status
        midiFile(480, {Track().on(0, 0, 60)}),                                // a note that never ends
        midiFile(480, {Track().raw(0, QByteArray("\xFF\x51\x03\0\0\0", 6))}), // tempo 0
        midiFile(480, {Track().timeSig(4, 15)}),                              // denominator beyond 16 bits
        midiFile(10923, {Track().note(0, 10, 0, 60)}),                        // 3 x division overflows
    };
    Track longWait; // nine maximal deltas pass the 32-bit tick count
    for (int k = 0; k < 9; ++k)
        longWait.raw(0x0FFFFFFF, QByteArray("\xFF\x01\x00", 3));
    quiet << midiFile(480, {longWait.note(0, 480, 0, 60)});
    for (const QByteArray& bytes : quiet) {
        decode(bytes);
        EXPECT_FALSE(decoder.midiDecoded());
    }
    EXPECT_TRUE(sink.shown.empty());
    decoder.decodeMidiFile(u"/nonexistent/tune.mid"_s);
    EXPECT_FALSE(decoder.midiDecoded());
}

TEST_F(MidiDecoderTest, TempoAndDivisionSurviveIntoTheNextDecode) {
    decode(midiFile(480, {Track().note(0, 1920, 0, 60)}));
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(decoder.tuneLength(), 0.0); // no tempo read yet in this run
    decodeTrack(Track().note(0, 480, 0, 60), 6, 3);
    EXPECT_EQ(decoder.timeSignatureCode(), 4);
    decode(midiFile(0x8000 | 0x1978, {Track().note(0, 1920, 0, 60)})); // frame-based division is not taken
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(decoder.ticksPerQuarter(), 480);
    EXPECT_EQ(decoder.tempoBpm(), 120);
    EXPECT_EQ(decoder.timeSig(), (std::array<qint16, 2>{4, 4})); // the signature is reset by every decode
    EXPECT_DOUBLE_EQ(decoder.tuneLength(), 2.0);
}

TEST(MidiWriter, AcceptsExactlyTheDecoderTokens) {
    MidiWriter w;
    w.Init();
    for (const char* text : {"_", "4C5", "1P,2P,4P,8P,16P,32P", "16F#4,32C#0,8G10,2A#3,4B9", "4C10"})
        EXPECT_TRUE(w.ImportTrackNote(0, 0, QString::fromLatin1(text)).isOk()) << text;
    for (const char* text :
         {"",     "4C5,", ",4C5",  "4C5 ,8D5", " 4C5", "3C5", "64C5", "4H5", "4E#5",    "4Cb5",
          "4C05", "4C11", "4G#10", "4c5",      "4P5",  "4",   "P",    "__",  "4C5;8D5", "4C-1"}) {
        const Status s = w.ImportTrackNote(0, 0, QString::fromLatin1(text));
        EXPECT_FALSE(s.isOk()) << text;
        EXPECT_FALSE(s.message().isEmpty());
    }
    EXPECT_FALSE(w.ImportTrackNote(16, 0, u"4C5"_s).isOk() || w.ImportTrackNote(0, 1, u"4C5"_s).isOk());
    EXPECT_FALSE(w.ImportTrackGM(0, 128).isOk() || w.ImportTrackGM(-1, 0).isOk());
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    EXPECT_FALSE(w.ExportMidi(out, 120, 5).isOk() || w.ExportMidi(out, 3, 2).isOk());
    EXPECT_TRUE(out.data().isEmpty());
}

TEST(MidiWriter, WritesATempoTrackAndOneTrackPerChannelWithNotesThatDecodeBack) {
    MidiWriter w;
    w.Init();
    ASSERT_TRUE(w.ImportTrackNote(1, 0, u"4P,8C5,2P"_s).isOk());
    ASSERT_TRUE(w.ImportTrackGM(1, 5).isOk());
    ASSERT_TRUE(w.ImportTrackNote(0, 0, u"_"_s).isOk());
    ASSERT_TRUE(w.ImportTrackGM(0, 7).isOk());
    const QByteArray expected =
        QByteArray::fromHex("4d546864 00000006 0001 0002 01e0"
                            "4d54726b 00000013 00ff5804 04021808 00ff5103 07a120 00ff2f00"
                            "4d54726b 00000012 00c105 8360 913c64 8170 813c00 8740 ff2f00");
    EXPECT_EQ(exported(w, 120, 2).toHex(' '), expected.toHex(' '));

    // Every length, accidental and octave survives a reading by the decoder.
    w.Init();
    const QString melody = u"2P,4C5,8D5,8E5,16F#5,16G5,32A5,32B5,1C6"_s;
    ASSERT_TRUE(w.ImportTrackNote(9, 0, melody).isOk());
    ASSERT_TRUE(w.ImportTrackGM(9, 127).isOk());
    ASSERT_TRUE(w.ImportTrackNote(3, 0, u"16C0,1G10"_s).isOk());
    MidiDecoder decoder;
    decoder.resetMidiTables();
    decoder.decodeMidiData(exported(w, 90, 4));
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(decoder.tempoBpm(), 90);
    EXPECT_EQ(decoder.timeSignatureCode(), 4);
    EXPECT_EQ(decoder.channelProgram(9), 127);
    EXPECT_EQ(bars(decoder, 9).join(u' ').replace(u' ', u','), melody);
    EXPECT_EQ(decoder.noteTable(3, 0), u"16C0 1G10"_s);
}

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
