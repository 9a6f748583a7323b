#include "sound/midibuild.h"
#include "sound/tempomap.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>
#include <random>

using namespace mms;
using namespace mms::test;
using namespace mms::test::smf;

namespace {

TempoMap parsed(const QByteArray& bytes) {
    TempoMap map;
    const Status s = TempoMap::parse(bytes, map);
    EXPECT_TRUE(s.isOk()) << s.message().toStdString();
    return map;
}

QString failure(const QByteArray& bytes) {
    TempoMap map;
    const Status s = TempoMap::parse(bytes, map);
    return s.isOk() ? QStringLiteral("(parsed)") : s.message();
}

} // namespace

TEST(TempoMap, EveryTempoChangeOfASeparateTempoTrackCounts) {
    const TempoMap map = parsed(threeTempoTune());
    EXPECT_EQ(map.trackCount(), 2);
    EXPECT_EQ(map.segmentCount(), 3);
    EXPECT_EQ(map.endTick(), 768);
    EXPECT_DOUBLE_EQ(map.lengthMs(), 5500.0);
    // 120 bpm, then 240 bpm from tick 192, then 60 bpm from tick 384.
    EXPECT_DOUBLE_EQ(map.msAt(96), 500.0);
    EXPECT_DOUBLE_EQ(map.msAt(192), 1000.0);
    EXPECT_DOUBLE_EQ(map.msAt(288), 1250.0);
    EXPECT_DOUBLE_EQ(map.msAt(384), 1500.0);
    EXPECT_DOUBLE_EQ(map.msAt(480), 2500.0);
    EXPECT_EQ(map.tickAt(1250.0), 288);
    EXPECT_EQ(map.tickAt(3000.0), 528);
    EXPECT_EQ(map.tickAt(5500.0), 768);
    EXPECT_EQ(map.tickAt(-5.0), 0);
    for (qint64 tick = 0; tick <= 900; tick += 7)
        EXPECT_EQ(map.tickAt(map.msAt(tick)), tick) << tick;
}

TEST(TempoMap, TempoChangesOfAllTracksAreMergedInTimeOrder) {
    // Format 0: tempo events amid notes, running status, a text event and a system-exclusive message.
    Track single;
    single.raw(0, QByteArray("\xFF\x01\x02hi", 5))
        .noteOn(0, 0, 60)
        .raw(48, QByteArray("\x40\x00", 2)) // running status: note on, velocity 0
        .tempo(0, 250000)
        .raw(48, QByteArray("\xF0\x03\x7E\x7F\xF7", 5))
        .raw(48, QByteArray("\x90\x3C\x40", 3))
        .tempo(0, 1000000)
        .noteOff(96, 0, 60)
        .end();
    TempoMap zero = parsed(midiFile(0, 96, {single}));
    EXPECT_EQ(zero.endTick(), 240);
    EXPECT_DOUBLE_EQ(zero.msAt(48), 250.0);
    EXPECT_DOUBLE_EQ(zero.lengthMs(), 250.0 + 250.0 + 1000.0);

    // Format 1: the tempo changes sit in two different tracks, interleaved in time; the longest
    // track decides the length.
    Track a, b, c;
    a.tempo(96, 250000).end(96);                     // 240 bpm at tick 96
    b.tempo(48, 1000000).tempo(96, 500000).end(200); // 60 bpm at 48, 120 bpm at 144, ends at 344
    c.noteOn(0, 1, 40).noteOff(10, 1, 40).end();
    TempoMap merged = parsed(midiFile(1, 96, {a, b, c}));
    EXPECT_EQ(merged.trackCount(), 3);
    EXPECT_EQ(merged.endTick(), 344);
    EXPECT_DOUBLE_EQ(merged.msAt(48), 250.0);
    EXPECT_DOUBLE_EQ(merged.msAt(96), 250.0 + 500.0);
    EXPECT_DOUBLE_EQ(merged.msAt(144), 750.0 + 125.0);
    EXPECT_DOUBLE_EQ(merged.lengthMs(), 875.0 + 200 * 500.0 / 96);

    // Two changes at one tick: the later track's wins, as the sequencer applies it last.
    Track first, second;
    first.tempo(0, 1000000).end(96);
    second.tempo(0, 250000).end();
    EXPECT_DOUBLE_EQ(parsed(midiFile(1, 96, {first, second})).lengthMs(), 250.0);
}

TEST(TempoMap, SmpteTimingIsAbsoluteAndIgnoresTempoEvents) {
    Track t;
    t.tempo(0, 1000000).noteOn(0, 0, 60).noteOff(1500, 0, 60).end();
    const quint16 division = quint16((0x100 - 25) << 8 | 40); // 25 frames of 40 ticks: 1 ms a tick
    const TempoMap map = parsed(midiFile(1, division, {t}));
    EXPECT_EQ(map.ticksPerQuarter(), 0);
    EXPECT_DOUBLE_EQ(map.lengthMs(), 1500.0);
    EXPECT_EQ(map.tickAt(700.0), 700);
}

TEST(TempoMap, MalformedFilesFailWithAClearMessage) {
    const QByteArray good = threeTempoTune();
    Track t;
    t.noteOn(0, 0, 60).end();

    EXPECT_TRUE(failure(QByteArray()).contains(QStringLiteral("not a Standard MIDI File")));
    EXPECT_TRUE(failure("RIFF" + good.mid(4)).contains(QStringLiteral("not a Standard MIDI File")));
    EXPECT_TRUE(failure(good.left(4) + be32(2) + good.mid(8)).contains(QStringLiteral("header")));
    EXPECT_TRUE(failure(good.left(4) + be32(0x7FFFFFF0) + good.mid(8)).contains(QStringLiteral("header")));
    EXPECT_TRUE(failure(midiFile(1, 0, {t})).contains(QStringLiteral("division of 0")));
    EXPECT_TRUE(failure(midiFile(7, 96, {t})).contains(QStringLiteral("unknown format")));
    EXPECT_TRUE(failure(midiFile(1, 96, {})).contains(QStringLiteral("no tracks")));
    EXPECT_TRUE(failure(good.left(good.size() - 3)).contains(QStringLiteral("track 2 is cut short")));

    auto oneTrack = [](const QByteArray& body) {
        return chunk("MThd", QByteArray("\0\0\0\1\0\x60", 6)) + chunk("MTrk", body);
    };
    EXPECT_TRUE(
        failure(oneTrack(QByteArray("\x00\x3C\x40", 3))).contains(QStringLiteral("before its first status")));
    EXPECT_TRUE(
        failure(oneTrack(QByteArray("\x00\x90\x3C", 3))).contains(QStringLiteral("ends inside an event")));
    EXPECT_TRUE(
        failure(oneTrack(QByteArray("\x00\x90\x3C\x90", 4))).contains(QStringLiteral("status byte where")));
    EXPECT_TRUE(failure(oneTrack(QByteArray("\x81\x82\x83\x84\x05\x90\x3C\x40", 8)))
                    .contains(QStringLiteral("four bytes")));
    EXPECT_TRUE(failure(oneTrack(QByteArray("\x00\xFF\x01\x7F"
                                            "abc",
                                            7)))
                    .contains(QStringLiteral("longer than the track")));
    EXPECT_TRUE(failure(oneTrack(QByteArray("\x00\xF0\x8F\x7F", 4)))
                    .contains(QStringLiteral("longer than the track")));
    EXPECT_TRUE(failure(oneTrack(QByteArray("\x00\x90\x3C\x40\x10", 5)))
                    .contains(QStringLiteral("ends inside an event")));

    // Unknown chunks are skipped, bytes after the end of track and a short tail are ignored, a
    // tempo of zero does not stop time.
    Track zeroTempo;
    zeroTempo.tempo(0, 0).noteOn(96, 0, 60).end();
    const QByteArray tolerated = chunk("MThd", QByteArray("\0\1\0\2\0\x60", 6)) + chunk("XFIH", "junk") +
                                 chunk("MTrk", zeroTempo.bytes() + "\x90\x3C") + "\0\0";
    EXPECT_DOUBLE_EQ(parsed(tolerated).lengthMs(), 500.0);
}

TEST(TempoMap, CutOrScrambledFilesNeverReadOutOfBounds) {
    // Run under the sanitizers: every prefix and many random corruptions either parse or fail.
    const QByteArray good = threeTempoTune();
    for (int n = 0; n < good.size(); ++n) {
        TempoMap map;
        (void)TempoMap::parse(good.left(n), map);
    }
    std::mt19937 random(8);
    for (int round = 0; round < 3000; ++round) {
        QByteArray bytes = good;
        const int flips = 1 + int(random() % 4);
        for (int i = 0; i < flips; ++i)
            bytes[int(random() % bytes.size())] = char(random());
        TempoMap map;
        if (TempoMap::parse(bytes, map)) {
            EXPECT_GE(map.lengthMs(), 0.0);
            EXPECT_GE(map.tickAt(map.lengthMs()), 0);
        }
    }
}
