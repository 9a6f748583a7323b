#include "sound/fakeengine.h"
#include "sound/midibuild.h"
#include "sound/midiplayer.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace mms::test::smf;

namespace {

class PlayerTest : public ::testing::Test {
protected:
    PlayerTest()
        : player(std::make_unique<FakeEngine>(engine), std::make_unique<FakeClock>(now)),
          tune(dir.write(QStringLiteral("tune.mid"), threeTempoTune())) {
        QObject::connect(&player, &PlayerControl::statusUpdate, &player,
                         [this] { updates.push_back(player.position()); });
        QObject::connect(&player, &PlayerControl::finished, &player, [this] { ++finished; });
    }
    void advance(qint64 ms) {
        now += ms;
        player.poll();
    }

    EngineScript engine;
    qint64 now = 1000;
    MidiPlayer player;
    TempDir dir;
    QString tune;
    std::vector<qint64> updates; // the position each status update saw
    int finished = 0;
};

} // namespace

TEST_F(PlayerTest, OpenReportsTheLengthFromTheTempoMapAndUpdatesEvery50Ms) {
    EXPECT_FALSE(player.isStatusTimerActive());
    ASSERT_TRUE(player.open(tune).isOk());
    EXPECT_EQ(player.length(), 5500);
    EXPECT_EQ(player.position(), 0);
    EXPECT_EQ(player.updateInterval(), 50);
    EXPECT_TRUE(player.isStatusTimerActive());
    EXPECT_TRUE(player.isAudible());
    player.close();
    EXPECT_FALSE(player.isOpen());
    EXPECT_FALSE(player.isStatusTimerActive());
    EXPECT_EQ(player.length(), 0);
    EXPECT_EQ(engine.unloads, 1);
}

TEST_F(PlayerTest, PlayConvertsMillisecondsToTicksAndStopsExactlyAtTo) {
    ASSERT_TRUE(player.open(tune).isOk());
    player.setFrom(1250);
    player.setTo(3000);
    ASSERT_TRUE(player.play().isOk());
    ASSERT_EQ(engine.plays, std::vector<qint64>{288}); // 1 s at 120 bpm + 0.25 s at 240 bpm

    // The engine still reports the tick it stood at before the seek: the position is not earlier than From.
    engine.tick = 0;
    advance(50);
    EXPECT_EQ(updates.back(), 1250);
    engine.tick = 384;
    advance(50);
    EXPECT_EQ(updates.back(), 1500);
    engine.tick = 480;
    advance(50);
    EXPECT_EQ(updates.back(), 2500);
    EXPECT_EQ(finished, 0);

    // The engine overshoots between two updates: the player stops and reports To exactly, once.
    engine.tick = 560;
    advance(50);
    EXPECT_EQ(updates.back(), 3000);
    EXPECT_EQ(finished, 1);
    EXPECT_FALSE(player.isPlaying());
    EXPECT_EQ(engine.stops, 1);
    engine.tick = 700;
    advance(50);
    EXPECT_EQ(player.position(), 3000);
    EXPECT_EQ(finished, 1);

    // From and To were for that one play: the next one continues from 3000 ms to the end.
    ASSERT_TRUE(player.play().isOk());
    EXPECT_EQ(engine.plays.back(), 528);
    engine.tick = 800;
    advance(50);
    EXPECT_EQ(player.position(), 5500);
    EXPECT_EQ(finished, 2);
}

TEST_F(PlayerTest, WithoutSoundThePositionFollowsTheClock) {
    engine.unavailable = QStringLiteral("no audio output could be opened");
    ASSERT_TRUE(player.open(tune).isOk());
    EXPECT_FALSE(player.isAudible());
    EXPECT_EQ(engine.loads, 0);
    EXPECT_EQ(player.length(), 5500);

    ASSERT_TRUE(player.play().isOk());
    EXPECT_TRUE(engine.plays.empty());
    advance(1234);
    EXPECT_EQ(player.position(), 1234);
    player.stop();
    advance(500);
    EXPECT_EQ(player.position(), 1234);
    ASSERT_TRUE(player.play().isOk()); // resumes where it stopped
    advance(4000);
    EXPECT_EQ(player.position(), 5234);
    advance(4000);
    EXPECT_EQ(updates.back(), 5500);
    EXPECT_EQ(finished, 1);

    player.prev();
    EXPECT_EQ(player.position(), 0);
    EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, ATuneTheEngineRefusesStillRunsOnTheClock) {
    engine.acceptTunes = false;
    ASSERT_TRUE(player.open(tune).isOk());
    EXPECT_FALSE(player.isAudible());
    player.setTo(2000);
    ASSERT_TRUE(player.play().isOk());
    advance(2500);
    EXPECT_EQ(updates.back(), 2000);
    EXPECT_EQ(finished, 1);
}

TEST_F(PlayerTest, BadRequestsFailWithAMessageAndChangeNothing) {
    EXPECT_FALSE(player.play().isOk());
    const Status missing = player.open(dir.file(QStringLiteral("gone.mid")));
    ASSERT_FALSE(missing.isOk());
    EXPECT_TRUE(missing.message().contains(QStringLiteral("gone.mid")));

    const QString text = dir.write(QStringLiteral("notes.mid"), "just text, not a tune");
    const Status bad = player.open(text);
    ASSERT_FALSE(bad.isOk());
    EXPECT_TRUE(bad.message().contains(QStringLiteral("notes.mid")));
    EXPECT_TRUE(bad.message().contains(QStringLiteral("not a Standard MIDI File")));
    EXPECT_FALSE(player.isOpen());
    EXPECT_EQ(engine.loads, 0);

    ASSERT_TRUE(player.open(tune).isOk());
    player.setFrom(3000);
    player.setTo(2000);
    EXPECT_FALSE(player.play().isOk());
    EXPECT_FALSE(player.isPlaying());
    EXPECT_TRUE(engine.plays.empty());
    // A To beyond the end ends at the end.
    player.setFrom(5000);
    player.setTo(9000);
    ASSERT_TRUE(player.play().isOk());
    advance(600);
    EXPECT_EQ(updates.back(), 5500);
}
