#include "sound/fakeengine.h"
#include "sound/tempomap.h"
#include "support/qtprint.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;
using namespace Qt::StringLiterals;

namespace {

TempoMap parsed(const QByteArray& bytes) {
    TempoMap map;
    const Status s = TempoMap::parse(bytes, map);
    EXPECT_TRUE(s.isOk()) << s.message().toStdString();
    return map;
}

QByteArray oneTrack(const QByteArray& body) {
    return "MThd" + bigEndian(6, 4) + bytes({0, 0, 0, 1, 0, 96}) + "MTrk" +
           bigEndian(quint32(body.size()), 4) + body;
}

} // namespace

TEST(TempoMap, EveryTempoChangeCountsInBothDirections) {
    const TempoMap map = parsed(threeTempoTune());
    EXPECT_EQ(map.endTick(), 768);
    EXPECT_DOUBLE_EQ(map.lengthMs(), 5500.0);
    EXPECT_DOUBLE_EQ(map.msAt(192), 1000.0);
    EXPECT_DOUBLE_EQ(map.msAt(288), 1250.0);
    EXPECT_DOUBLE_EQ(map.msAt(480), 2500.0);
    EXPECT_EQ(map.tickAt(3000.0), 528);
    EXPECT_EQ(map.tickAt(-5.0), 0);
    for (qint64 tick = 0; tick <= 900; tick += 7)
        EXPECT_EQ(map.tickAt(map.msAt(tick)), tick) << tick;
}

TEST(TempoMap, TracksAreMergedInTimeOrderWhateverTheFormat) {
    // Format 0: tempo events amid running status, a text event and a system-exclusive message.
    Track single;
    single.meta(0x01, "hi").on(0, 0, 60).raw(48, bytes({0x40, 0}));
    single.tempo(250000).raw(48, bytes({0xF0, 3, 0x7E, 0x7F, 0xF7})).on(48, 0, 60);
    single.tempo(1000000).off(96, 0, 60).end();
    QByteArray format0 = midiFile(96, {single});
    format0[9] = 0;
    EXPECT_DOUBLE_EQ(parsed(format0).lengthMs(), 250.0 + 250.0 + 1000.0);
    // Format 1 with the changes spread over two tracks; the longest track decides the length.
    // 240 bpm at tick 96 in one, 60 bpm at 48 and 120 at 144 in the other.
    const TempoMap merged = parsed(midiFile(
        96, {Track().tempo(250000, 96).end(), Track().tempo(1000000, 48).tempo(500000, 96).end(200)}));
    EXPECT_DOUBLE_EQ(merged.msAt(96), 250.0 + 500.0);
    EXPECT_DOUBLE_EQ(merged.lengthMs(), 750.0 + 125.0 + 200 * 500.0 / 96);
    // Two changes at one tick: the later track's wins, as the sequencer applies it last.
    EXPECT_DOUBLE_EQ(
        parsed(midiFile(96, {Track().tempo(1000000).end(96), Track().tempo(250000).end()})).lengthMs(),
        250.0);
    // SMPTE time (25 frames of 40 ticks: 1 ms a tick) is absolute: tempo events do not change it.
    const Track smpte = Track().tempo(1000000).note(0, 1500, 0, 60).end();
    EXPECT_DOUBLE_EQ(parsed(midiFile(quint16((0x100 - 25) << 8 | 40), {smpte})).lengthMs(), 1500.0);
}

TEST(TempoMap, MalformedFilesFailWithAClearMessage) {
    const QByteArray good = threeTempoTune();
    const Track note = Track().on(0, 0, 60).end();
    const std::vector<std::pair<QByteArray, const char*>> cases = {
        {QByteArray(), "not a Standard MIDI File"},
        {"RIFF" + good.mid(4), "not a Standard MIDI File"},
        {good.left(4) + bigEndian(2, 4) + good.mid(8), "header has a wrong length"},
        {good.left(4) + bigEndian(0x7FFFFFF0, 4) + good.mid(8), "header has a wrong length"},
        {midiFile(0, {note}), "division of 0"},
        {midiFile(96, {}), "no tracks"},
        {good.left(good.size() - 3), "track 2 is cut short"},
        {oneTrack(bytes({0, 0x3C, 0x40})), "before its first status"},
        {oneTrack(bytes({0, 0x90, 0x3C})), "ends inside an event"},
        {oneTrack(bytes({0, 0x90, 0x3C, 0x90})), "status byte where"},
        {oneTrack(bytes({0x81, 0x82, 0x83, 0x84, 5, 0x90, 0x3C, 0x40})), "four bytes"},
        {oneTrack(bytes({0, 0xFF, 1, 0x7F, 'a'})), "longer than the track"},
        {oneTrack(bytes({0, 0xF0, 0x8F, 0x7F})), "longer than the track"},
        {oneTrack(bytes({0, 0x90, 0x3C, 0x40, 0x10})), "ends inside an event"},
    };
    TempoMap map;
    for (const auto& [bytes, message] : cases)
        EXPECT_TRUE(TempoMap::parse(bytes, map).message().contains(QLatin1String(message))) << message;
    // Tolerated: unknown chunks, bytes after the end of track, a short tail, a tempo of zero.
    Track zeroTempo;
    zeroTempo.tempo(0).on(96, 0, 60).end().raw(0, bytes({0x90, 0x3C}));
    QByteArray tolerated = midiFile(96, {zeroTempo});
    tolerated.insert(14, QByteArray("XFIH") + bigEndian(4, 4) + "junk");
    EXPECT_DOUBLE_EQ(parsed(tolerated + QByteArray(2, 0)).lengthMs(), 500.0);
}
