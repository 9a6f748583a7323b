#include "sound/mididecoder.h"
#include "sound/midiwriter.h"
#include "support/qtprint.h"

#include <QBuffer>
#include <gtest/gtest.h>

using namespace mms;

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
    EXPECT_FALSE(w.ImportTrackNote(16, 0, QStringLiteral("4C5")).isOk());
    EXPECT_FALSE(w.ImportTrackNote(0, 1, QStringLiteral("4C5")).isOk());
    EXPECT_FALSE(w.ImportTrackGM(0, 128).isOk());
    EXPECT_FALSE(w.ImportTrackGM(-1, 0).isOk());
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    EXPECT_FALSE(w.ExportMidi(out, 120, 5).isOk());
    EXPECT_FALSE(w.ExportMidi(out, 3, 2).isOk());
    EXPECT_TRUE(out.data().isEmpty());
}

TEST(MidiWriter, WritesATempoTrackAndOneTrackPerChannelWithNotes) {
    MidiWriter w;
    w.Init();
    ASSERT_TRUE(w.ImportTrackNote(1, 0, QStringLiteral("4P,8C5,2P")).isOk());
    ASSERT_TRUE(w.ImportTrackGM(1, 5).isOk());
    ASSERT_TRUE(w.ImportTrackNote(0, 0, QStringLiteral("_")).isOk());
    ASSERT_TRUE(w.ImportTrackGM(0, 7).isOk());
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    ASSERT_TRUE(w.ExportMidi(out, 120, 2).isOk());
    const QByteArray expected =
        QByteArray::fromHex("4d546864 00000006 0001 0002 01e0"
                            "4d54726b 00000013 00ff5804 04021808 00ff5103 07a120 00ff2f00"
                            "4d54726b 00000012 00c105 8360 913c64 8170 813c00 8740 ff2f00");
    EXPECT_EQ(out.data().toHex(' '), expected.toHex(' '));
}

TEST(MidiWriter, DecoderReadsBackTheNotesProgramsTempoAndSignature) {
    MidiWriter w;
    w.Init();
    const QString melody = QStringLiteral("2P,4C5,8D5,8E5,16F#5,16G5,32A5,32B5,1C6");
    ASSERT_TRUE(w.ImportTrackNote(9, 0, melody).isOk());
    ASSERT_TRUE(w.ImportTrackGM(9, 127).isOk());
    ASSERT_TRUE(w.ImportTrackNote(3, 0, QStringLiteral("16C0,1G10")).isOk());
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    ASSERT_TRUE(w.ExportMidi(out, 90, 4).isOk());

    MidiDecoder decoder;
    decoder.resetMidiTables();
    decoder.decodeMidiData(out.data());
    ASSERT_TRUE(decoder.midiDecoded());
    EXPECT_EQ(decoder.tempoBpm(), 90);
    EXPECT_EQ(decoder.timeSignatureCode(), 4);
    EXPECT_EQ(decoder.channelProgram(9), 127);
    QStringList tokens;
    for (int bar = 0; bar < MidiDecoder::kBars && !decoder.noteTable(9, bar).isEmpty(); ++bar)
        tokens << decoder.noteTable(9, bar).split(QLatin1Char(' '));
    EXPECT_EQ(tokens.join(QLatin1Char(',')), melody);
    EXPECT_EQ(decoder.noteTable(3, 0), QStringLiteral("16C0 1G10"));
}
