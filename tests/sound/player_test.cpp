#include "sound/fakeengine.h"
#include "sound/midiplayer.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

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
