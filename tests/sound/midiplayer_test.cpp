#include "sound/fluidsynthdevice.h"
#include "sound/fluidsynthengine.h"
#include "sound/midi_testfile.h"
#include "sound/midiplayer.h"
#include "sound/tempomap.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;
using namespace Qt::StringLiterals;

namespace {

// A scripted engine: the test keeps the script while the player owns the engine.
struct EngineScript {
    QString unavailable;        // non-empty: the engine cannot be heard
    bool acceptTunes = true;    // false: load() refuses
    std::optional<qint64> tick; // what currentTick() reports
    std::vector<qint64> plays;  // ticks passed to play()
    int loads = 0, unloads = 0;
    bool loaded = false;
};

class FakeEngine final : public SynthEngine {
public:
    explicit FakeEngine(EngineScript& script) : s_(script) {}
    QString unavailableReason() const override { return s_.unavailable; }
    bool load(const QByteArray&) override {
        ++s_.loads;
        return s_.loaded = s_.acceptTunes;
    }
    bool play(qint64 fromTick) override {
        s_.plays.push_back(fromTick);
        return s_.loaded;
    }
    void stop() override {}
    std::optional<qint64> currentTick() override { return s_.loaded ? s_.tick : std::nullopt; }
    void unload() override {
        ++s_.unloads;
        s_.loaded = false;
    }

private:
    EngineScript& s_;
};

class FakeClock final : public ElapsedClock {
public:
    explicit FakeClock(qint64& ms) : ms_(ms) {}
    qint64 msecs() const override { return ms_; }

private:
    qint64& ms_;
};

// 96 ticks per quarter; the tempo track changes tempo twice: 120 bpm for two beats (1 s), 240 bpm
// for two beats (0.5 s), 60 bpm for four beats (4 s). Eight quarter notes: 768 ticks, 5.5 s.
QByteArray threeTempoTune() {
    Track tempos, notes;
    tempos.tempo(500000).tempo(250000, 192).tempo(1000000, 192).end();
    for (int i = 0; i < 8; ++i)
        notes.note(0, 96, 0, 60 + i);
    notes.end();
    return midiFile(96, {tempos, notes});
}

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

using Notify = MultimediaDevice::Notify;
using Result = MultimediaDevice::Result;

class DeviceTest : public ::testing::Test {
protected:
    DeviceTest() {
        QObject::connect(&device, &MultimediaDevice::playbackEnded, &device,
                         [this](Notify n) { notes.push_back(n); });
    }
    // Runs the event loop until every timer the device could have running has fired: timers fire in
    // the order they fall due, and this one falls due well after the player's 50 ms status timer.
    static void letTheDevicesTimersFire() {
        QTimer last;
        last.setSingleShot(true);
        QSignalSpy fired(&last, &QTimer::timeout);
        last.start(150);
        ASSERT_TRUE(fired.wait(10000));
    }
    EngineScript engine;
    qint64 now = 0;
    FluidSynthDevice device{std::make_unique<FakeEngine>(engine), std::make_unique<FakeClock>(now)};
    TempDir dir;
    // Any file name reaches the synthesizer: quotes, spaces, non-ASCII letters.
    QString tune = dir.write(u"say \"hi\" d’été n° 2 — ♪.MID"_s, threeTempoTune());
    std::vector<Notify> notes;
};

class PlayerTest : public ::testing::Test {
protected:
    PlayerTest() {
        QObject::connect(&player, &PlayerControl::statusUpdate, &player,
                         [this] { seen.push_back(player.position()); });
        QObject::connect(&player, &PlayerControl::finished, &player, [this] { ++finished; });
    }
    void advance(qint64 ms, std::optional<qint64> tick = std::nullopt) {
        now += ms;
        if (tick) engine.tick = tick;
        player.poll();
    }
    EngineScript engine;
    qint64 now = 1000;
    MidiPlayer player{std::make_unique<FakeEngine>(engine), std::make_unique<FakeClock>(now)};
    TempDir dir;
    QString tune = dir.write(u"tune.mid"_s, threeTempoTune());
    std::vector<qint64> seen; // the position each status update saw
    int finished = 0;
};

} // namespace

TEST(FluidSynthEngine, SoundfontComesFromTheArgumentThenTheEnvironmentThenDebian) {
    const QByteArray saved = qgetenv("MMS_SOUNDFONT");
    auto restore =
        qScopeGuard([&] { saved.isNull() ? qunsetenv("MMS_SOUNDFONT") : qputenv("MMS_SOUNDFONT", saved); });
    qunsetenv("MMS_SOUNDFONT");
    EXPECT_EQ(soundfontPath(), u"/usr/share/sounds/sf2/FluidR3_GM.sf2"_s);
    qputenv("MMS_SOUNDFONT", "/tmp/other.sf2");
    EXPECT_EQ(soundfontPath(), u"/tmp/other.sf2"_s);
    EXPECT_EQ(soundfontPath(u"/x.sf2"_s), u"/x.sf2"_s);
    TempDir dir;
    FluidSynthEngine missing(dir.file(u"none.sf2"_s), FluidSynthEngine::Output::Offline);
    EXPECT_TRUE(missing.unavailableReason().contains(u"none.sf2"_s));
    EXPECT_FALSE(missing.load(threeTempoTune()));
    FluidSynthEngine broken(dir.write(u"broken.sf2"_s, "no soundfont"), FluidSynthEngine::Output::Offline);
    EXPECT_TRUE(broken.unavailableReason().contains(u"could not be loaded"_s));
}

// The real synthesizer and soundfont, rendered offline: it makes sound, and the ticks it reports
// follow the tempo map the player converts with.
TEST(FluidSynthEngine, RendersTheTuneAndItsTicksFollowTheTempoMap) {
    if (!QFileInfo::exists(soundfontPath()))
        GTEST_SKIP() << "no soundfont at " << soundfontPath().toStdString() << " (fluid-soundfont-gm)";
    const QByteArray tune = threeTempoTune();
    TempoMap map;
    ASSERT_TRUE(TempoMap::parse(tune, map).isOk());
    FluidSynthEngine engine(QString(), FluidSynthEngine::Output::Offline);
    ASSERT_EQ(engine.unavailableReason(), QString());
    ASSERT_TRUE(engine.load(tune));
    float peak = 0;
    auto render = [&](int ms) { // 44100 frames a second, in FluidSynth's 64-frame blocks
        float left[64] = {}, right[64] = {};
        for (int frames = 441 * ms / 10; frames > 0; frames -= 64) {
            ASSERT_TRUE(engine.render(left, right, std::min(frames, 64)));
            for (float v : left)
                peak = std::max(peak, std::abs(v));
        }
    };
    auto expectAt = [&](int ms) { // ticks advance once per block: allow a few
        ASSERT_TRUE(engine.currentTick().has_value());
        EXPECT_NEAR(double(*engine.currentTick()), double(map.tickAt(ms)), 4.0) << ms << " ms";
    };
    ASSERT_TRUE(engine.play(0));
    int at = 0;
    for (int step : {500, 750, 500, 1000}) {
        render(step);
        expectAt(at += step);
    }
    EXPECT_GT(peak, 0.01f);
    // A restart at 1.5 s reports the new tick at once, then runs on from there.
    engine.stop();
    ASSERT_TRUE(engine.play(map.tickAt(1500)));
    expectAt(1500);
    render(1000);
    expectAt(2500);
    engine.unload();
    EXPECT_FALSE(engine.currentTick().has_value());
}

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

TEST_F(DeviceTest, HoldsOneTuneAndControlsOnlyAnOpenOne) {
    // Nothing open yet, a missing file, no file at all, then open, the device taken, play.
    EXPECT_EQ(device.play(), Result::NotOpen);
    EXPECT_EQ(device.open(dir.file(u"gone.mid"_s)), Result::CannotOpen);
    EXPECT_EQ(device.open(QString()), Result::CannotOpen);
    EXPECT_FALSE(device.isOpen());
    ASSERT_EQ(device.open(tune), Result::Ok);
    EXPECT_EQ(device.open(tune), Result::AlreadyOpen);
    EXPECT_EQ(device.play(), Result::Ok);
    // One second in a pause and a resume, then stop and close; after that nothing is left to control.
    engine.tick = 192;
    device.pause();
    device.resume();
    EXPECT_EQ(engine.plays, (std::vector<qint64>{0, 192})) << "resumed where it was paused";
    device.stop();
    device.close();
    EXPECT_FALSE(device.isOpen());
    device.stop();
    device.close();
    device.resume();
    EXPECT_EQ(device.play(), Result::NotOpen);
    EXPECT_EQ(engine.unloads, 1);
    EXPECT_EQ(engine.plays.size(), 2u);
    EXPECT_EQ(notes, std::vector<Notify>{Notify::Aborted});
}

// The position follows the tune and is 0 once it is closed.
TEST_F(DeviceTest, EveryPlayEndsWithOneNotificationAndThePositionFollowsTheTune) {
    // A second play supersedes the first; a second stop has nothing left to abort.
    EXPECT_EQ(device.position(), 0);
    ASSERT_EQ(device.open(tune), Result::Ok);
    EXPECT_EQ(device.play(), Result::Ok);
    EXPECT_EQ(device.position(), 0);
    engine.tick = 192; // 1 s at 120 bpm
    EXPECT_EQ(device.position(), 1000);
    EXPECT_EQ(device.play(), Result::Ok);
    device.stop();
    device.stop();
    EXPECT_EQ(device.play(), Result::Ok);
    EXPECT_EQ(notes, (std::vector<Notify>{Notify::Superseded, Notify::Aborted}));
    engine.tick = 768; // the end of the tune
    ASSERT_TRUE(QTest::qWaitFor([&] { return notes.size() == 3; }, 5000));
    EXPECT_EQ(notes.back(), Notify::Successful);
    EXPECT_EQ(device.position(), 5500);
    device.stop(); // the composer's answer notifies nothing more
    device.play();
    device.close();
    EXPECT_EQ(notes.size(), 4u);
    EXPECT_EQ(notes.back(), Notify::Aborted);
    EXPECT_EQ(device.position(), 0);
    now += 10000;
    letTheDevicesTimersFire();
    EXPECT_EQ(notes.size(), 4u) << "no late success";
}

TEST_F(DeviceTest, WithoutSoundNothingOpensOrPlaysAndTheReasonIsSaidOnce) {
    engine.unavailable = u"no synthesizer output"_s; // said once a process: a reason no other test gives
    testing::internal::CaptureStderr();
    const Result opened = device.open(tune), played = device.play();
    device.stop();
    device.close();
    const Result reopened = device.open(tune), replayed = device.play();
    const QString said = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_EQ((std::vector<Result>{opened, played, reopened, replayed}),
              (std::vector<Result>{Result::NoSound, Result::NotOpen, Result::NoSound, Result::NotOpen}));
    EXPECT_EQ(said.count(engine.unavailable), 1);
    // A tune the engine refuses is not played on the clock either: no success is ever sent.
    engine.unavailable.clear();
    engine.acceptTunes = false;
    EXPECT_EQ(device.open(tune), Result::NoSound);
    EXPECT_EQ(device.play(), Result::NotOpen);
    EXPECT_FALSE(device.isOpen());
    now += 10000;
    letTheDevicesTimersFire();
    EXPECT_TRUE(notes.empty());
}

TEST_F(PlayerTest, ConvertsWithTheTempoMapAndStopsExactlyAtTo) {
    ASSERT_TRUE(player.open(tune).isOk());
    EXPECT_EQ(player.length(), 5500);
    EXPECT_TRUE(player.isStatusTimerActive());
    player.setFrom(1250);
    player.setTo(3000);
    ASSERT_TRUE(player.play().isOk());
    EXPECT_EQ(engine.plays, std::vector<qint64>{288}); // 1 s at 120 bpm + 0.25 s at 240 bpm
    advance(50, 0); // the engine still reports where it stood before: never earlier than From
    advance(50, 384);
    advance(50, 480);
    EXPECT_EQ(seen, (std::vector<qint64>{1250, 1500, 2500}));
    advance(50, 560); // overshoots between two updates: stopped and reported at To exactly, finished once
    advance(50, 700);
    EXPECT_EQ(seen.back(), 3000);
    EXPECT_EQ(finished, 1);
    EXPECT_FALSE(player.isPlaying());
    // From and To were for that one play: the next continues from 3000 ms to the end.
    ASSERT_TRUE(player.play().isOk());
    EXPECT_EQ(engine.plays.back(), 528);
    advance(50, 800);
    EXPECT_EQ(seen.back(), 5500);
    EXPECT_EQ(finished, 2);
    player.close();
    EXPECT_FALSE(player.isStatusTimerActive());
    EXPECT_EQ(player.length(), 0);
    EXPECT_EQ(engine.unloads, 1);
}

TEST_F(PlayerTest, WithoutSoundThePositionFollowsTheClock) {
    engine.unavailable = u"no audio output could be opened"_s;
    ASSERT_TRUE(player.open(tune).isOk());
    EXPECT_FALSE(player.isAudible());
    EXPECT_EQ(engine.loads, 0);
    ASSERT_TRUE(player.play().isOk());
    advance(1234);
    player.stop();
    advance(500);
    EXPECT_EQ(player.position(), 1234);
    ASSERT_TRUE(player.play().isOk()); // resumes where it stopped
    advance(4000);
    EXPECT_EQ(player.position(), 5234);
    advance(4000);
    EXPECT_EQ(seen.back(), 5500);
    EXPECT_EQ(finished, 1);
    EXPECT_TRUE(engine.plays.empty());
    player.seek(9999);
    EXPECT_EQ(player.position(), 5500);
    player.prev();
    EXPECT_EQ(player.position(), 0);
    // A tune the engine refuses runs on the clock as well.
    engine.unavailable.clear();
    engine.acceptTunes = false;
    ASSERT_TRUE(player.open(tune).isOk());
    EXPECT_FALSE(player.isAudible());
    player.setTo(2000);
    ASSERT_TRUE(player.play().isOk());
    advance(2500);
    EXPECT_EQ(seen.back(), 2000);
}

TEST_F(PlayerTest, BadRequestsFailWithAMessageAndChangeNothing) {
    EXPECT_FALSE(player.play().isOk());
    const Status missing = player.open(dir.file(u"gone.mid"_s));
    EXPECT_TRUE(missing.message().contains(u"gone.mid"_s));
    const Status bad = player.open(dir.write(u"notes.mid"_s, "just text"));
    EXPECT_TRUE(bad.message().contains(u"notes.mid: This is not a Standard MIDI File"_s));
    EXPECT_FALSE(player.isOpen());
    EXPECT_EQ(engine.loads, 0);
    ASSERT_TRUE(player.open(tune).isOk());
    player.setFrom(3000);
    player.setTo(2000);
    EXPECT_FALSE(player.play().isOk());
    EXPECT_TRUE(engine.plays.empty());
    player.setFrom(5000);
    player.setTo(9000); // beyond the end: ends at the end
    ASSERT_TRUE(player.play().isOk());
    advance(600);
    EXPECT_EQ(seen.back(), 5500);
}
