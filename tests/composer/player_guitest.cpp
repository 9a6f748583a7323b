// The slide show window, the Play command that opens it, and the sound preview on the slide panel.
#include "common/playbacktexts.h"
#include "composer/widgets/frmmmsplayer.h"
#include "composerfixture.h"
#include "sound/amr_testfile.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QThread>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

const QString kPlay = u"play"_s;
const QStringList kStopClose = {u"stop"_s, u"close"_s};

QString openCall(const QString& sound) {
    return u"open "_s + sound;
}
QStringList starts(const QString& sound) {
    return {openCall(sound), kPlay};
}

// The player on scripted seams: the test moves the clock and reads what the device was asked.
class PlayerTest : public ::testing::Test {
protected:
    PlayerTest() {
        LanguageTexts texts = numberedTexts();
        texts.errors[playbacktext::kSoundsSkipped] = u"skipped:%1"_s;
        loc.setTexts(texts);
    }
    void play(std::vector<std::pair<int, QString>> slides, int start = 0) {
        std::vector<ShowSlide> show;
        for (const auto& [seconds, sound] : slides)
            show.push_back({{}, sound, seconds});
        player = std::make_unique<frmMMSPlayer>(fake.platform, loc, show, start);
    }
    void after(int ms) {
        fake.clock.time = fake.clock.time.addMSecs(ms);
        player->tick();
    }
    void key(int k) { pressKey(player.get(), k); }
    QString shown(const char* label) const { return ctl<QLabel>(player, label)->text(); }
    // What the device was asked since the last call.
    QStringList sent() { return std::exchange(fake.device.calls, {}); }

    FakePlatform fake;
    Localisation loc;
    std::unique_ptr<frmMMSPlayer> player;
};

TEST_F(PlayerTest, EachSlideStaysForItsDurationWithItsSoundOnlyWhileItIsShown) {
    play({{3, u"a.mid"_s}, {0, u"b.amr"_s}, {2, {}}, {4, u"c.amr"_s}});
    EXPECT_EQ(sent(), starts(u"a.mid"_s));
    EXPECT_EQ(shown("lblPosition") + u' ' + shown("lblTimeLeft"), u"1 / 4 0:03"_s);
    auto* screen = player->findChild<QLabel*>(u"picScreen"_s);
    EXPECT_EQ(screen->size(), QSize(320, 280));
    player->findChild<QComboBox*>(u"cboZoom"_s)->setCurrentIndex(2);
    EXPECT_EQ(screen->size(), QSize(480, 420));
    after(2999);
    EXPECT_EQ(shown("lblTimeLeft"), u"0:01"_s);
    EXPECT_TRUE(sent().isEmpty());
    after(1); // slide 2 lasts no time, and its sound is never started
    EXPECT_EQ(sent(), kStopClose);
    EXPECT_EQ(shown("lblPosition") + u' ' + shown("lblTimeLeft"), u"3 / 4 0:02"_s);
    after(2000);
    EXPECT_EQ(sent(), starts(u"c.amr"_s));
    after(4000);
    EXPECT_EQ(sent(), kStopClose);
    EXPECT_TRUE(player->slideShow().isFinished());
    EXPECT_EQ(shown("lblStatus"), u"I73"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PlayerTest, SpaceHoldsTheSlideAndItsSoundAndTheArrowsAndHomeStep) {
    play({{3, u"a.mid"_s}, {5, u"b.amr"_s}, {2, {}}});
    after(1000);
    sent();
    key(Qt::Key_Space);
    after(60000);
    EXPECT_EQ(shown("lblPosition") + u' ' + shown("lblTimeLeft") + u' ' + shown("lblStatus"),
              u"1 / 3 0:02 I72"_s);
    key(Qt::Key_Space);
    after(2000);
    EXPECT_EQ(sent(), QStringList({u"pause"_s, u"resume"_s}) + kStopClose + starts(u"b.amr"_s));
    const std::pair<int, QStringList> steps[] = {
        {Qt::Key_Right, kStopClose},                      // to slide 3, no sound
        {Qt::Key_Right, {}},                              // past the last: the end
        {Qt::Key_Left, starts(u"b.amr"_s)},               // slide 2 again
        {Qt::Key_Home, kStopClose + starts(u"a.mid"_s)},  // slide 1
        {Qt::Key_Left, kStopClose + starts(u"a.mid"_s)}}; // slide 1 from its start
    QStringList positions;
    for (const auto& [k, commands] : steps) {
        key(k);
        EXPECT_EQ(sent(), commands) << k;
        positions << shown("lblPosition") + (player->slideShow().isFinished() ? u" end"_s : QString());
    }
    EXPECT_EQ(positions, (QStringList{u"3 / 3"_s, u"3 / 3 end"_s, u"2 / 3"_s, u"1 / 3"_s, u"1 / 3"_s}));
}

TEST_F(PlayerTest, SoundsThatCannotBePlayedAreSkippedAndListedInOneMessageAfterThePlayback) {
    fake.device.resultFor[openCall(u"a.mid"_s)] = MultimediaDevice::Result::NoSound;
    fake.device.resultFor[openCall(u"b.amr"_s)] = MultimediaDevice::Result::CannotOpen;
    fake.device.resultFor[openCall(u"/x/c.amr"_s)] = MultimediaDevice::Result::CannotOpen;
    play({{1, u"a.mid"_s}, {1, u"b.amr"_s}, {1, u"/x/c.amr"_s}, {1, u"b.amr"_s}});
    EXPECT_EQ(shown("lblStatus"), u"I74"_s) << "said at once when nothing can be heard";
    for (int slide = 1; slide <= 4; ++slide) {
        EXPECT_TRUE(fake.dialogs.shown.empty()) << "not during the playback";
        after(1000);
    }
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"skipped:b.amr\nc.amr"_s});
    EXPECT_EQ(shown("lblStatus"), u"I73\nI74"_s);
    EXPECT_FALSE(fake.device.calls.contains(kPlay)) << "nothing was played";
}

TEST_F(PlayerTest, ClosingMidSlideStopsTheSoundAtOnceAndReportsWhatWasSkipped) {
    fake.device.resultFor[openCall(u"b.amr"_s)] = MultimediaDevice::Result::CannotOpen;
    play({{2, u"b.amr"_s}, {5, u"a.mid"_s}});
    after(3000);
    sent();
    key(Qt::Key_Escape);
    EXPECT_EQ(player->result(), QDialog::Rejected);
    EXPECT_EQ(sent(), kStopClose);
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"skipped:b.amr"_s});
    after(10000);
    EXPECT_TRUE(sent().isEmpty());
}

using PlayCommandTest = ComposerTest;

TEST_F(PlayCommandTest, PlaysTheMessageFromTheSelectedSlideOrSaysThereIsNone) {
    EXPECT_EQ(ctl<QAction>(w, "mnu_play")->shortcut(), QKeySequence(Qt::Key_F5));
    ctl<QAction>(w, "mnu_play")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E33"_s});
    EXPECT_EQ(fake.dialogs.modalRuns, 0);

    compose(); // slide 2 of 3 is selected
    QString position;
    fake.dialogs.modalHooks.push_back([&](QDialog& dialog) {
        position = ctl<QLabel>(dialog, "lblPosition")->text();
        dialog.reject();
    });
    ctl<QToolButton>(w, "playCmd")->click();
    EXPECT_EQ(position, u"2 / 3"_s);
}

// The shared message; its sound on the shown slide B is playing in the preview.
class PreviewTest : public ComposerTest {
protected:
    void SetUp() override {
        ComposerTest::SetUp();
        compose();
        fake.device.calls.clear();
        play = ctl<QToolButton>(w, "soundPlayCmd");
        play->click();
    }
    QStringList sent() { return std::exchange(fake.device.calls, {}); }
    void expectStopped() {
        EXPECT_FALSE(w->isPlaying());
        EXPECT_EQ(play->toolTip(), u"I28"_s);
    }
    QToolButton* play = nullptr;
};

TEST_F(PreviewTest, OnlyTheEndOfThePlayOrTheStopButtonReturnsTheButtonToPlay) {
    EXPECT_TRUE(w->isPlaying());
    EXPECT_EQ(play->toolTip(), u"I27"_s);
    EXPECT_EQ(sent(), starts(tune));
    fake.device.emitPlaybackEnded(MultimediaDevice::Notify::Superseded);
    fake.device.emitPlaybackEnded(MultimediaDevice::Notify::Failure);
    EXPECT_TRUE(w->isPlaying());
    // The successful end is reported on the player's thread and handled on the window's.
    std::unique_ptr<QThread> player(
        QThread::create([this] { fake.device.emitPlaybackEnded(MultimediaDevice::Notify::Successful); }));
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
        fake.device.emitPlaybackEnded(late);
        expectStopped();
    }
    EXPECT_EQ(sent(), kStopClose);
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PreviewTest, ShowingAnotherSlideOrClosingStopsThePreviewAndOnlyAnAmrSoundThatDecodesIsPlayed) {
    sent();
    pick(3);
    expectStopped();
    EXPECT_EQ(sent(), kStopClose + kStopClose);
    const QString voice = home.write(u"UserData/Sound/voice.AMR"_s, amrTone(5));
    for (const QString& sound : {home.write(u"UserData/Sound/fake.amr"_s, "#!AMR\n"), voice}) {
        w->updateCurrentSlide(u"soundPath"_s, sound);
        w->lstSlide_ItemClick();
        sent();
        play->click();
    }
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E7"_s}) << "the fake only";
    EXPECT_EQ(sent(), starts(voice));
    EXPECT_TRUE(w->isPlaying());

    // Closing the window stops the preview and unhooks the device.
    fake.dialogs.answers = {Answer::No}; // the message was changed: do not save
    ASSERT_TRUE(w->close());
    EXPECT_EQ(sent().mid(0, 2), kStopClose);
    w.reset();
    fake.device.emitPlaybackEnded(MultimediaDevice::Notify::Successful); // nobody listens any more
}

} // namespace
