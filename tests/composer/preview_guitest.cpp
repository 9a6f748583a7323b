#include "composerfixture.h"
#include "support/controls.h"
#include "sound/amr_testfile.h"

#include <QLabel>
#include <QThread>

using namespace mms;
using namespace mms::test;

namespace {

const QStringList kStopClose = {QStringLiteral("stop music"), QStringLiteral("close music")};

class PreviewTest : public ComposerTest {
protected:
    // Two slides; the first has a MIDI sound and is shown.
    void SetUp() override {
        ComposerTest::SetUp();
        addSlides(QStringLiteral("AB"));
        pick(1);
        tune = home.write(QStringLiteral("UserData/Sound/Tune.MID"), "MThd");
        w->updateCurrentSlide(QStringLiteral("soundPath"), tune);
        w->lstSlide_ItemClick();
        fake.device.sent.clear();
    }
    void play() {
        ctl<QToolButton>(w, "soundPlayCmd")->click();
        fake.device.sent.clear();
    }
    void expectStopped() {
        EXPECT_FALSE(w->isPlaying());
        EXPECT_EQ(ctl<QToolButton>(w, "soundPlayCmd")->toolTip(), QStringLiteral("I28"));
    }
    QString tune;
};

TEST_F(PreviewTest, PlayThenStopSendsTheFourCommandsAndLateReportsChangeNothing) {
    ctl<QToolButton>(w, "soundPlayCmd")->click();
    EXPECT_TRUE(w->isPlaying());
    EXPECT_EQ(ctl<QToolButton>(w, "soundPlayCmd")->toolTip(), QStringLiteral("I27"));
    EXPECT_EQ(fake.device.sent, (QStringList{QStringLiteral("open \"%1\" Alias music").arg(tune),
                                             QStringLiteral("play music from 0 notify")}));
    fake.device.sent.clear();
    ctl<QToolButton>(w, "soundPlayCmd")->click();
    // The stop makes the device report an aborted playback, and a late end report may follow.
    for (auto late : {MultimediaDevice::Notify::Aborted, MultimediaDevice::Notify::Successful}) {
        fake.device.emitNotify(late);
        expectStopped();
        EXPECT_EQ(fake.device.sent, kStopClose);
    }
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PreviewTest, OnlyASuccessfulEndReportedOnTheWindowThreadReturnsTheButtonToPlay) {
    play();
    fake.device.emitNotify(MultimediaDevice::Notify::Superseded);
    fake.device.emitNotify(MultimediaDevice::Notify::Failure);
    EXPECT_TRUE(w->isPlaying());
    EXPECT_TRUE(fake.device.sent.isEmpty());
    QThread* player =
        QThread::create([this] { fake.device.emitNotify(MultimediaDevice::Notify::Successful); });
    player->start();
    player->wait();
    delete player;
    EXPECT_TRUE(w->isPlaying()); // not yet: the report waits for the window's event loop
    QCoreApplication::processEvents();
    expectStopped();
    EXPECT_EQ(fake.device.sent, kStopClose);
}

TEST_F(PreviewTest, ShowingAnotherSlideStopsThePreviewAndOnlyAnAmrSoundThatDecodesIsPlayed) {
    play();
    pick(2);
    expectStopped();
    EXPECT_EQ(fake.device.sent, kStopClose + kStopClose);
    EXPECT_FALSE(ctl<QToolButton>(w, "soundPlayCmd")->isEnabled());

    const QString voice = home.write(QStringLiteral("UserData/Sound/voice.AMR"), amrTone(5));
    for (const QString& sound : {home.write(QStringLiteral("UserData/Sound/fake.amr"), "#!AMR\n"), voice}) {
        w->updateCurrentSlide(QStringLiteral("soundPath"), sound);
        w->lstSlide_ItemClick();
        fake.device.sent.clear();
        ctl<QToolButton>(w, "soundPlayCmd")->click();
    }
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E7")}) << "the fake only";
    EXPECT_EQ(fake.device.sent, (QStringList{QStringLiteral("open \"%1\" Alias music").arg(voice),
                                             QStringLiteral("play music from 0 notify")}));
    EXPECT_TRUE(w->isPlaying());
}

TEST_F(PreviewTest, ClosingTheWindowStopsThePreviewAndUnhooksTheDevice) {
    play();
    fake.dialogs.answers = {Answer::No}; // the message was changed: do not save
    ASSERT_TRUE(w->close());
    EXPECT_EQ(fake.device.sent.mid(0, 2), kStopClose);
    w.reset();
    fake.device.emitNotify(MultimediaDevice::Notify::Successful); // nobody listens any more
}

} // namespace
