#include "sound/fakeengine.h"
#include "sound/fluidsynthdevice.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTemporaryFile>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace mms;
using namespace mms::test;

namespace {

using Notify = MultimediaDevice::Notify;
const QString kPlay = QStringLiteral("play music from 0 notify");
const QString kStop = QStringLiteral("stop music");
const QString kClose = QStringLiteral("close music");

class DeviceTest : public ::testing::Test {
protected:
    DeviceTest() {
        device.setNotifyHandler([this](Notify n) { notes.push_back(n); });
    }
    // Runs the event loop (the device's status timer) until `done` holds or `ms` have passed.
    template <typename Done> void spin(int ms, Done done) {
        for (QDeadlineTimer deadline(ms); !done() && !deadline.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    EngineScript engine;
    qint64 now = 0;
    FluidSynthDevice device{std::make_unique<FakeEngine>(engine), std::make_unique<FakeClock>(now)};
    TempDir dir;
    QString open =
        QStringLiteral("open \"%1\" Alias music").arg(dir.write(QStringLiteral("a.mid"), threeTempoTune()));
    std::vector<Notify> notes;
};

} // namespace

TEST_F(DeviceTest, AcceptsExactlyTheFourCommands) {
    for (const char* wrong :
         {"", "Open \"x\" Alias music", "open \"\" Alias music", "open x Alias music", "play music",
          "play music from 0 notify ", "stop", "pause music", "seek music to start"})
        EXPECT_NE(device.sendString(QString::fromUtf8(wrong)), 0) << wrong;
    EXPECT_NE(device.sendString(kPlay), 0) << "nothing is open";
    EXPECT_NE(device.sendString(
                  QStringLiteral("open \"%1\" Alias music").arg(dir.file(QStringLiteral("gone.mid")))),
              0);

    EXPECT_EQ(device.sendString(open), 0);
    EXPECT_NE(device.sendString(open), 0) << "the alias is taken";
    EXPECT_EQ(device.sendString(kPlay), 0);
    EXPECT_EQ(engine.plays, std::vector<qint64>{0});
    EXPECT_EQ(device.sendString(kStop), 0);
    EXPECT_EQ(device.sendString(kClose), 0);
    EXPECT_NE(device.sendString(kStop), 0);
    EXPECT_NE(device.sendString(kClose), 0);
}

TEST_F(DeviceTest, ATuneThatPlaysToItsEndNotifiesSuccessOnce) {
    ASSERT_EQ(device.sendString(open), 0);
    ASSERT_EQ(device.sendString(kPlay), 0);
    engine.tick = 300;
    QCoreApplication::processEvents();
    EXPECT_TRUE(notes.empty());
    engine.tick = 768; // the end of the tune
    spin(5000, [&] { return !notes.empty(); });
    EXPECT_EQ(notes, std::vector<Notify>{Notify::Successful});
    EXPECT_EQ(device.sendString(kStop), 0); // the composer's answer notifies nothing more
    EXPECT_EQ(device.sendString(kClose), 0);
    EXPECT_EQ(notes.size(), 1u);
}

TEST_F(DeviceTest, StopCloseAndReplayEndThePendingPlayWithoutSuccess) {
    ASSERT_EQ(device.sendString(open), 0);
    device.sendString(kPlay);
    device.sendString(kPlay);
    device.sendString(kStop);
    device.sendString(kStop); // nothing left to abort
    device.sendString(kPlay);
    device.sendString(kClose);
    EXPECT_EQ(notes, (std::vector<Notify>{Notify::Superseded, Notify::Aborted, Notify::Aborted}));
    engine.tick = 5000;
    now += 10000;
    spin(200, [] { return false; });
    EXPECT_EQ(notes.size(), 3u) << "no late success";
}

TEST_F(DeviceTest, WithoutSoundEveryCommandFailsAndTheReasonIsSaidOnce) {
    engine.unavailable = QStringLiteral("no audio output (test %1)").arg(QCoreApplication::applicationPid());
    QTemporaryFile capture;
    ASSERT_TRUE(capture.open());
    std::fflush(stderr);
    const int saved = ::dup(2);
    ::dup2(capture.handle(), 2);
    std::vector<int> results;
    for (const QString& c : {open, kPlay, kStop, kClose, open, kPlay})
        results.push_back(device.sendString(c));
    std::fflush(stderr);
    ::dup2(saved, 2);
    ::close(saved);

    EXPECT_EQ(std::count(results.begin(), results.end(), 0), 0);
    EXPECT_EQ(QString::fromUtf8(TempDir::read(capture.fileName())).count(engine.unavailable), 1);

    // A tune the engine refuses is not played on the clock either: no success is ever sent.
    engine.unavailable.clear();
    engine.acceptTunes = false;
    EXPECT_NE(device.sendString(open), 0);
    EXPECT_NE(device.sendString(kPlay), 0);
    now += 10000;
    spin(100, [] { return false; });
    EXPECT_TRUE(notes.empty());
}
