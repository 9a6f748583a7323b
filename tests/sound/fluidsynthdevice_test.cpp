#include "sound/fakeengine.h"
#include "sound/fluidsynthdevice.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

using Notify = MultimediaDevice::Notify;
const QString kPlay = u"play music from 0 notify"_s;
const QString kStop = u"stop music"_s;
const QString kClose = u"close music"_s;

class DeviceTest : public ::testing::Test {
protected:
    DeviceTest() {
        device.setNotifyHandler([this](Notify n) { notes.push_back(n); });
    }
    // '1' for each command the device accepts, '0' for each it refuses.
    std::string outcomes(std::initializer_list<QString> commands) {
        std::string out;
        for (const QString& c : commands)
            out += device.sendString(c) == 0 ? '1' : '0';
        return out;
    }
    EngineScript engine;
    qint64 now = 0;
    FluidSynthDevice device{std::make_unique<FakeEngine>(engine), std::make_unique<FakeClock>(now)};
    TempDir dir;
    QString open = u"open \"%1\" Alias music"_s.arg(dir.write(u"a.mid"_s, threeTempoTune()));
    std::vector<Notify> notes;
};

} // namespace

TEST_F(DeviceTest, AcceptsExactlyItsSixCommands) {
    for (const char* wrong :
         {"", "Open \"x\" Alias music", "open \"\" Alias music", "open x Alias music", "play music",
          "play music from 0 notify ", "stop", "pause", "seek music to start"})
        EXPECT_NE(device.sendString(QString::fromUtf8(wrong)), 0) << wrong;
    const QString gone = u"open \"%1\" Alias music"_s.arg(dir.file(u"gone.mid"_s));
    // Nothing open yet, a missing file, then open, the alias taken, play; one second in a pause and
    // a resume, then stop, close, and nothing left.
    EXPECT_EQ(outcomes({kPlay, gone, open, open, kPlay}), "00101");
    engine.tick = 192;
    EXPECT_EQ(outcomes({u"pause music"_s, u"resume music"_s, kStop, kClose, kStop, kClose}), "111100");
    EXPECT_EQ(engine.plays, (std::vector<qint64>{0, 192})) << "resumed where it was paused";
}

TEST_F(DeviceTest, EveryPlayEndsWithOneNotification) {
    // A second play supersedes the first; a second stop has nothing left to abort.
    EXPECT_EQ(outcomes({open, kPlay, kPlay, kStop, kStop, kPlay}), "111111");
    EXPECT_EQ(notes, (std::vector<Notify>{Notify::Superseded, Notify::Aborted}));
    engine.tick = 768; // the end of the tune
    ASSERT_TRUE(QTest::qWaitFor([&] { return notes.size() == 3; }, 5000));
    EXPECT_EQ(notes.back(), Notify::Successful);
    outcomes({kStop, kPlay, kClose}); // the composer's answer notifies nothing more
    EXPECT_EQ(notes.size(), 4u);
    EXPECT_EQ(notes.back(), Notify::Aborted);
    now += 10000;
    EXPECT_FALSE(QTest::qWaitFor([&] { return notes.size() > 4; }, 200)) << "no late success";
}

TEST_F(DeviceTest, WithoutSoundEveryCommandFailsAndTheReasonIsSaidOnce) {
    engine.unavailable = u"no audio output"_s;
    testing::internal::CaptureStderr();
    const std::string results = outcomes({open, kPlay, kStop, kClose, open, kPlay});
    const QString said = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_EQ(results, "000000");
    EXPECT_EQ(said.count(engine.unavailable), 1);
    // A tune the engine refuses is not played on the clock either: no success is ever sent.
    engine.unavailable.clear();
    engine.acceptTunes = false;
    EXPECT_EQ(outcomes({open, kPlay}), "00");
    now += 10000;
    EXPECT_FALSE(QTest::qWaitFor([&] { return !notes.empty(); }, 100));
}
