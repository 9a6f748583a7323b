#include "composerfixture.h"
#include "sound/amr_testfile.h"
#include "support/controls.h"

#include <QThread>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

const QStringList kStopClose = {u"stop music"_s, u"close music"_s};

// Two slides; the first has a MIDI sound, is shown and its preview is playing.
class PreviewTest : public ComposerTest {
protected:
    void SetUp() override {
        ComposerTest::SetUp();
        addSlides(u"AB"_s);
        pick(1);
        w->updateCurrentSlide(u"soundPath"_s, tune);
        w->lstSlide_ItemClick();
        fake.device.sent.clear();
        play = ctl<QToolButton>(w, "soundPlayCmd");
        play->click();
    }
    // The commands sent since the last call.
    QStringList sent() { return std::exchange(fake.device.sent, {}); }
    void expectStopped() {
        EXPECT_FALSE(w->isPlaying());
        EXPECT_EQ(play->toolTip(), u"I28"_s);
    }
    QString tune = home.write(u"UserData/Sound/Tune.MID"_s, "MThd");
    QToolButton* play = nullptr;
};

TEST_F(PreviewTest, OnlyTheEndOfThePlayOrTheStopButtonReturnsTheButtonToPlay) {
    EXPECT_TRUE(w->isPlaying());
    EXPECT_EQ(play->toolTip(), u"I27"_s);
    EXPECT_EQ(sent(), (QStringList{u"open \"%1\" Alias music"_s.arg(tune), u"play music from 0 notify"_s}));
    fake.device.emitNotify(MultimediaDevice::Notify::Superseded);
    fake.device.emitNotify(MultimediaDevice::Notify::Failure);
    EXPECT_TRUE(w->isPlaying());
    // The successful end is reported on the player's thread and handled on the window's.
    std::unique_ptr<QThread> player(
        QThread::create([this] { fake.device.emitNotify(MultimediaDevice::Notify::Successful); }));
    player->start();
    player->wait();
    EXPECT_TRUE(w->isPlaying());
    QCoreApplication::processEvents();
    expectStopped();
    EXPECT_EQ(sent(), kStopClose);

    play->click();
    sent();
    play->click();
    // The stop makes the device report an aborted playback, and a late end report may follow.
    for (auto late : {MultimediaDevice::Notify::Aborted, MultimediaDevice::Notify::Successful}) {
        fake.device.emitNotify(late);
        expectStopped();
    }
    EXPECT_EQ(sent(), kStopClose);
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PreviewTest, ShowingAnotherSlideStopsThePreviewAndOnlyAnAmrSoundThatDecodesIsPlayed) {
    sent();
    pick(2);
    expectStopped();
    EXPECT_EQ(sent(), kStopClose + kStopClose);
    EXPECT_FALSE(play->isEnabled());
    const QString voice = home.write(u"UserData/Sound/voice.AMR"_s, amrTone(5));
    for (const QString& sound : {home.write(u"UserData/Sound/fake.amr"_s, "#!AMR\n"), voice}) {
        w->updateCurrentSlide(u"soundPath"_s, sound);
        w->lstSlide_ItemClick();
        sent();
        play->click();
    }
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E7"_s}) << "the fake only";
    EXPECT_EQ(sent(), (QStringList{u"open \"%1\" Alias music"_s.arg(voice), u"play music from 0 notify"_s}));
    EXPECT_TRUE(w->isPlaying());
}

TEST_F(PreviewTest, ClosingTheWindowStopsThePreviewAndUnhooksTheDevice) {
    sent();
    fake.dialogs.answers = {Answer::No}; // the message was changed: do not save
    ASSERT_TRUE(w->close());
    EXPECT_EQ(sent().mid(0, 2), kStopClose);
    w.reset();
    fake.device.emitNotify(MultimediaDevice::Notify::Successful); // nobody listens any more
}

} // namespace
