#include "sound/mididecoder.h"
#include "sound/midiwriter.h"
#include "support/qtprint.h"

#include <QBuffer>
#include <gtest/gtest.h>

using namespace mms;
using namespace Qt::StringLiterals;

namespace {

QByteArray exported(MidiWriter& w, int bpm, int signature) {
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    EXPECT_TRUE(w.ExportMidi(out, bpm, signature).isOk());
    return out.data();
}

} // namespace

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
    QStringList tokens;
    for (int bar = 0; bar < MidiDecoder::kBars && !decoder.noteTable(9, bar).isEmpty(); ++bar)
        tokens << decoder.noteTable(9, bar).split(QLatin1Char(' '));
    EXPECT_EQ(tokens.join(QLatin1Char(',')), melody);
    EXPECT_EQ(decoder.noteTable(3, 0), u"16C0 1G10"_s);
}
