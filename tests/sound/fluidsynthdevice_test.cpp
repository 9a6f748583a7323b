#include "sound/fakeengine.h"
#include "sound/fluidsynthdevice.h"
#include "sound/midibuild.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTemporaryFile>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace mms;
using namespace mms::test;
using namespace mms::test::smf;

namespace {

using Notify = MultimediaDevice::Notify;

class DeviceTest : public ::testing::Test {
protected:
    DeviceTest()
        : device(std::make_unique<FakeEngine>(engine), std::make_unique<FakeClock>(now)),
          tune(dir.write(QStringLiteral("tune.mid"), threeTempoTune())),
          open(QStringLiteral("open \"%1\" Alias music").arg(tune)) {
        device.setNotifyHandler([this](Notify n) { notes.push_back(n); });
    }
    // Lets the device's status timer run until `done` holds (or a generous deadline passes).
    template <typename Done> bool spinUntil(Done done) {
        QDeadlineTimer deadline(5000);
        while (!done() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return done();
    }

    EngineScript engine;
    qint64 now = 0;
    FluidSynthDevice device;
    TempDir dir;
    QString tune;
    QString open;
    std::vector<Notify> notes;
};

const QString kPlay = QStringLiteral("play music from 0 notify");
const QString kStop = QStringLiteral("stop music");
const QString kClose = QStringLiteral("close music");

} // namespace

TEST_F(DeviceTest, AcceptsExactlyTheFourCommands) {
    for (const char* wrong :
         {"", "open", "Open \"x\" Alias music", "open \"\" Alias music", "open x Alias music", "play music",
          "play music from 0", "play music from 0 notify ", "stop", "close", "stop music now", "pause music",
          "seek music to start"})
        EXPECT_NE(device.sendString(QString::fromUtf8(wrong)), 0) << wrong;
    EXPECT_NE(device.sendString(open.toUpper()), 0);
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
    EXPECT_EQ(engine.unloads, 1);
}

TEST_F(DeviceTest, ATuneThatPlaysToItsEndNotifiesSuccessOnceOnTheGuiThread) {
    ASSERT_EQ(device.sendString(open), 0);
    ASSERT_EQ(device.sendString(kPlay), 0);
    engine.tick = 300;
    QCoreApplication::processEvents();
    EXPECT_TRUE(notes.empty());

    engine.tick = 768; // the end of the tune
    ASSERT_TRUE(spinUntil([&] { return !notes.empty(); }));
    EXPECT_EQ(notes, std::vector<Notify>{Notify::Successful});
    // The composer answers with stop and close; they notify nothing more.
    EXPECT_EQ(device.sendString(kStop), 0);
    EXPECT_EQ(device.sendString(kClose), 0);
    EXPECT_EQ(notes.size(), 1u);
}

TEST_F(DeviceTest, StopCloseAndReplayEndThePendingPlayWithoutSuccess) {
    ASSERT_EQ(device.sendString(open), 0);
    ASSERT_EQ(device.sendString(kPlay), 0);
    ASSERT_EQ(device.sendString(kPlay), 0);
    EXPECT_EQ(notes, std::vector<Notify>{Notify::Superseded});
    ASSERT_EQ(device.sendString(kStop), 0);
    EXPECT_EQ(notes.back(), Notify::Aborted);
    ASSERT_EQ(device.sendString(kStop), 0);
    EXPECT_EQ(notes.size(), 2u) << "a second stop has nothing to abort";

    ASSERT_EQ(device.sendString(kPlay), 0);
    ASSERT_EQ(device.sendString(kClose), 0);
    EXPECT_EQ(notes.back(), Notify::Aborted);
    EXPECT_EQ(notes.size(), 3u);

    // Time passing after the stop brings no late success.
    engine.tick = 5000;
    now += 10000;
    QDeadlineTimer wait(200);
    while (!wait.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_EQ(notes.size(), 3u);
}

TEST_F(DeviceTest, WithoutSoundEveryCommandFailsAndNothingIsEverNotified) {
    engine.unavailable =
        QStringLiteral("no audio output could be opened (test %1)").arg(QCoreApplication::applicationPid());

    // Capture stderr to check the reason is said once.
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

    for (int r : results)
        EXPECT_NE(r, 0);
    now += 10000;
    QCoreApplication::processEvents();
    EXPECT_TRUE(notes.empty());
    const QString said = QString::fromUtf8(TempDir::read(capture.fileName()));
    EXPECT_EQ(said.count(engine.unavailable), 1) << said.toStdString();
}

TEST_F(DeviceTest, ATuneTheEngineRefusesIsNotPlayedOnTheClock) {
    engine.acceptTunes = false;
    EXPECT_NE(device.sendString(open), 0);
    EXPECT_NE(device.sendString(kPlay), 0);
    now += 10000;
    QCoreApplication::processEvents();
    EXPECT_TRUE(notes.empty());
}
