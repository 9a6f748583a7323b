#include "common/filesize.h"
#include "common/workspace.h"
#include "composer/composerfixture.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/playercontrol.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "sound/widgets/soundpanel.h"
#include "support/controls.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QSlider>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

// A player whose position the test sets; it records every command it is given.
class ScriptedPlayer final : public PlayerControl {
public:
    Status open(const QString& path) override {
        log << QStringLiteral("Open ") + QFileInfo(path).fileName();
        opened = openError.isEmpty();
        return opened ? Status::ok() : Status::failure(openError);
    }
    void close() override {
        record(QStringLiteral("Close"));
        opened = false;
    }
    Status play() override {
        log << QStringLiteral("Play %1-%2").arg(from).arg(to);
        from = to = -1;
        playing = true;
        return Status::ok();
    }
    void stop() override { record(QStringLiteral("Stop")); }
    void prev() override { seek(0); }
    void seek(qint64 ms) override {
        record(ms ? QStringLiteral("Seek %1").arg(ms) : QStringLiteral("Prev"));
        pos = ms;
    }
    void setFrom(qint64 ms) override { from = ms; }
    void setTo(qint64 ms) override { to = ms; }
    bool isOpen() const override { return opened; }
    bool isPlaying() const override { return playing; }
    qint64 position() const override { return pos; }
    qint64 length() const override { return opened ? 90000 : 0; }

    void reportAt(qint64 ms) {
        pos = ms;
        emit statusUpdate();
    }

    QStringList log;
    QString openError;
    bool opened = false, playing = false;
    qint64 pos = 0, from = -1, to = -1;

private:
    void record(const QString& command) { // every command but Play leaves the player stopped
        log << command;
        playing = false;
    }
};

// In a crop window: Mark in at one position, Mark out at another, as a user does.
void mark(QWidget& crop, ScriptedPlayer& player, qint64 inMs, qint64 outMs) {
    player.pos = inMs;
    ctl<QPushButton>(crop, "Command2")->click();
    player.pos = outMs;
    ctl<QPushButton>(crop, "Command3")->click();
}

class CropWindowTest : public ::testing::Test {
protected:
    CropWindowTest() {
        w->txtName->setText(tune);
        w->outfilename = dir.file(u"cut.mid"_s);
    }
    QString text(const char* name) const { return ctl<QLineEdit>(w, name)->text(); }
    QSlider* slider() const { return ctl<QSlider>(w, "Slider1"); }
    TempDir dir;
    QString tune = dir.write(u"tune.mid"_s, midifile::cMajorScale(8));
    Localisation loc = [] {
        LanguageTexts t = numberedTexts();
        t.errors[28] += u" %1"_s;
        Localisation l;
        l.setTexts(t);
        return l;
    }();
    FakePlatform fake;
    ScriptedPlayer player;
    std::unique_ptr<frmMMSCropMIDI> w = std::make_unique<frmMMSCropMIDI>(loc, fake.dialogs, player);
};

TEST_F(CropWindowTest, OpeningShowsTheLengthAndStatusUpdatesMoveTheSlider) {
    // Before a tune is open only Mark in works; a tune that cannot be opened is reported and leaves it so.
    player.openError = u"tune.mid: not a MIDI file"_s;
    w->MnuOpen_Click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E28 tune.mid: not a MIDI file"_s});
    EXPECT_EQ(enabled(*w, {"Command2", "Command3", "Command1", "Command4", "Slider1"}), u"10000"_s);
    player.openError.clear();
    QStringList times;
    for (qint64 ms : {90000, 3599000, 3600499, 500})
        times << frmMMSCropMIDI::formatTime(ms);
    EXPECT_EQ(times.join(u' '), u"01:30 59:59 00:00 00:01"_s);
    w->MnuOpen_Click();
    EXPECT_EQ(player.log.last(), u"Open tune.mid"_s);
    EXPECT_EQ(enabled(*w, {"Slider1", "MnuClose"}), u"11"_s);
    EXPECT_EQ(ctl<QLabel>(w, "lblStatus")->text(), u"I53 00:00 / 01:30"_s);
    player.playing = true;
    player.reportAt(45400);
    EXPECT_EQ(ctl<QLabel>(w, "lblStatus")->text(), u"I53 00:45 / 01:30"_s);
    EXPECT_EQ(u"%1/%2"_s.arg(slider()->value()).arg(slider()->maximum()), u"45/90"_s);
    EXPECT_EQ(ctl<QLabel>(w, "Label1")->text() + ctl<QLabel>(w, "Label2")->text() +
                  ctl<QLabel>(w, "Label3")->text(),
              u"00:0000:4501:30"_s);
    EXPECT_EQ(enabled(*w, {"MMControl1Stop", "MMControl1Play"}), u"10"_s);
    player.reportAt(90000); // the end of the tune: back to the beginning
    EXPECT_EQ(player.log.last(), u"Prev"_s);
    EXPECT_EQ(slider()->value(), 0);
    slider()->setValue(30); // the user drags the slider
    emit slider()->sliderReleased();
    EXPECT_EQ(player.log.last(), u"Seek 30000"_s);
    w->MnuClose_Click();
    EXPECT_EQ(player.log.last(), u"Close"_s);
    EXPECT_EQ(enabled(*w, {"MnuClose"}), u"0"_s);
}

TEST_F(CropWindowTest, MarksHaveOneDecimalThePlayStopsAtTheEndMarkAndACropBeyondTheTuneIsRefused) {
    w->MnuOpen_Click();
    w->Command3_Click(); // no start yet: nothing happens
    EXPECT_TRUE(text("txtCropEnd").isEmpty());
    mark(*w, player, 3440, 3449); // both read 3.4 s
    EXPECT_EQ(text("txtCropStart") + u'|' + text("txtCropEnd"), u"3.4s|"_s);
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E18"_s});
    EXPECT_EQ(enabled(*w, {"Command3", "Command1", "Command4"}), u"100"_s);
    mark(*w, player, 7000, 12460);
    EXPECT_EQ(text("txtCropStart") + u'|' + text("txtCropEnd"), u"7.0s|12.5s"_s);
    EXPECT_EQ(enabled(*w, {"Command1", "Command4"}), u"11"_s);
    player.log.clear();
    player.reportAt(12500); // before the stretch is played, the end mark is nothing special
    EXPECT_TRUE(player.log.isEmpty());
    ctl<QPushButton>(w, "Command1")->click();
    EXPECT_EQ(player.log, (QStringList{u"Stop"_s, u"Play 7000-12500"_s}));
    player.reportAt(12400); // short of the end mark: played on
    EXPECT_EQ(slider()->value(), 12);
    player.reportAt(12500);
    EXPECT_EQ(player.log.last(), u"Prev"_s);
    player.pos = 20000; // a start moved past the end: refused without playing
    ctl<QPushButton>(w, "Command2")->click();
    player.log.clear();
    ctl<QPushButton>(w, "Command1")->click();
    EXPECT_EQ(fake.dialogs.texts().size(), 2);
    EXPECT_TRUE(player.log.isEmpty());
    // A crop beyond the tune is refused, writes nothing, and closes the window and the tune.
    mark(*w, player, 1000, 4100); // the tune is 4 s long
    ctl<QPushButton>(w, "Command4")->click();
    EXPECT_EQ(fake.dialogs.texts().mid(2), (QStringList{u"E20"_s, u"E19"_s}));
    EXPECT_FALSE(w->validflag || w->result() == QDialog::Accepted || QFile::exists(w->outfilename));
    EXPECT_FALSE(player.isOpen()) << "closing the window closes the tune";
}

TEST_F(CropWindowTest, TheCropCommandGivesACropBelowTheLimitReadWithTheDecoderItIsGiven) {
    QDir().mkpath(dir.file(u"Temp/tmpMID"_s));
    fake.random.draws = {0.0, 0.99999, 0.5};
    fake.dialogs.modalHooks.push_back([](QDialog& d) { d.reject(); });
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = static_cast<frmMMSCropMIDI&>(d);
        EXPECT_TRUE(crop.outfilename.endsWith(u"/99999.mid"_s));
        dir.write(u"Temp/tmpMID/99999.mid"_s, QByteArray(102400, 'x'));
        crop.validflag = true;
    });
    fake.dialogs.modalHooks.push_back([this](QDialog& d) {
        mark(d, player, 0, 1000);
        ctl<QPushButton>(d, "Command4")->click();
    });
    MidiDecoder decoder; // one per run: a tune without tempo keeps the last one read (see MidiCropTest)
    const auto run = [&] {
        return runCropWindow(fake.platform, loc, dir.path(), tune, nullptr, &player, &decoder);
    };
    for (const char* why : {"closed by the user", "102400 bytes"})
        EXPECT_EQ(run(), QString()) << why;
    EXPECT_TRUE(run().endsWith(u"/55000.mid"_s));
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E1"_s});
    EXPECT_EQ(decoder.tempoBpm(), 120);
}

const QStringList kStopClose = {u"stop"_s, u"close"_s};

class SoundPanelTest : public ComposerTest {
protected:
    void SetUp() override {
        ComposerTest::SetUp();
        p = ctl<SoundPanel>(w, "soundPanel");
        files = ctl<QListWidget>(p, "fileBoxSound");
        tune = home.write(u"UserData/Sound/TUNE.MID"_s, midifile::cMajorScale(5));
        home.write(u"UserData/Sound/tune.amr"_s, QByteArray(102399, 'a'));
        home.write(u"UserData/Sound/big.amr"_s, QByteArray(102400, 'a'));
        home.write(u"UserData/Sound/notes.txt"_s, "x");
        ctl<QPushButton>(p, "refresh2Cmd")->click();
        p->setCropPlayer(&player);
    }
    QString listed() const {
        QStringList names;
        for (int i = 0; i < files->count(); ++i)
            names << files->item(i)->text();
        return names.join(u' ');
    }
    // The user clicks a file of the list; whether attaching and cropping are then possible ("11").
    QString choose(const QString& name) {
        const auto items = files->findItems(name, Qt::MatchExactly);
        EXPECT_EQ(items.size(), 1) << name.toStdString();
        if (!items.isEmpty()) files->setCurrentItem(items.front());
        return commands();
    }
    QString commands() const { return enabled({"chgSoundCmd", "cropCmd"}); }
    void attach(const QString& name) {
        choose(name);
        ctl<QPushButton>(p, "chgSoundCmd")->click();
    }
    QString soundOf(int position) const { return w->message().nodeAt(qint16(position))->DataSoundPath; }
    QString library() const { return home.file(u"UserData/Sound"_s); }
    SoundPanel* p = nullptr;
    QListWidget* files = nullptr;
    ScriptedPlayer player;
    QString tune;
};

TEST_F(SoundPanelTest, TheCommandsFollowTheSelectionTheTypeAndTheFolder) {
    EXPECT_EQ(listed(), u"big.amr tune.amr TUNE.MID"_s);
    // Sizes in the tooltips; a file at the limit is marked as too large.
    const QString size = u"I%1"_s.arg(sizetext::kKilobytes);
    EXPECT_EQ(files->item(0)->toolTip(), u"big.amr\n"_s + size + u"\nI%1"_s.arg(sizetext::kTooLargeToUse));
    EXPECT_EQ(files->item(1)->toolTip(), u"tune.amr\n"_s + size);
    EXPECT_EQ(choose(u"TUNE.MID"_s), u"11"_s);
    EXPECT_EQ(choose(u"tune.amr"_s), u"10"_s);
    files->clearSelection();
    EXPECT_EQ(commands(), u"00"_s);
    choose(u"TUNE.MID"_s); // a refresh keeps a file that is still there, and the commands
    ctl<QPushButton>(p, "refresh2Cmd")->click();
    EXPECT_EQ(p->selectedFileName() + commands(), u"TUNE.MID11"_s);
    // A slide reset disables the commands; clicking the selected file brings them back.
    w->refreshSlidePanel();
    EXPECT_EQ(commands(), u"00"_s);
    emit files->itemClicked(files->currentItem());
    EXPECT_EQ(commands(), u"11"_s);
    ctl<QComboBox>(p, "soundTypeCombo")->setCurrentIndex(1);
    EXPECT_EQ(listed() + commands(), u"big.amr tune.amr00"_s);
    ctl<QComboBox>(p, "soundTypeCombo")->setCurrentIndex(2);
    EXPECT_EQ(listed() + commands(), u"TUNE.MID00"_s);

    // Every folder choice reads the folder again, even the same one, and disables the commands.
    ctl<QToolButton>(p, "SoundChgDirBrowse")->click(); // cancelled
    EXPECT_EQ(fake.dialogs.folderRequests, QStringList{u"I62|"_s + library()});
    const QString other = home.file(u"other"_s);
    home.write(u"other/a.mid"_s, "MThd");
    fake.dialogs.folderAnswers = {other, other};
    ctl<QToolButton>(p, "SoundChgDirBrowse")->click();
    EXPECT_EQ(ctl<QLineEdit>(p, "soundDirPath")->text(), QDir::toNativeSeparators(other));
    choose(u"a.mid"_s);
    home.write(u"other/b.mid"_s, "MThd");
    ctl<QToolButton>(p, "SoundChgDirBrowse")->click();
    EXPECT_EQ(listed() + commands(), u"a.mid b.mid00"_s);
    // A typed text that names no folder empties the list without a word, as do refresh and type.
    choose(u"a.mid"_s);
    ctl<QLineEdit>(p, "soundDirPath")->setText(home.file(u"missing"_s));
    EXPECT_EQ(listed() + commands() + p->fileListFolder(), u"00"_s);
    ctl<QPushButton>(p, "refresh2Cmd")->click();
    ctl<QComboBox>(p, "soundTypeCombo")->setCurrentIndex(0);
    EXPECT_EQ(listed(), QString());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

// Attaching to an empty message is the composer's, checked with the drops in HistoryTest; the
// preview's stop is checked below.
TEST_F(SoundPanelTest, AttachingPutsTheLibraryPathOnTheSelectedSlideBelowTheSizeLimit) {
    addSlides(u"AB"_s);
    pick(1);
    attach(u"tune.amr"_s);
    EXPECT_EQ(soundOf(1), library() + u"/tune.amr"_s);
    EXPECT_EQ(w->selectedSlide(), 1);
    // 102400 bytes or a file that has gone: the slide keeps its sound and nothing is sent.
    fake.device.calls.clear();
    attach(u"big.amr"_s);
    choose(u"TUNE.MID"_s);
    QFile::remove(tune);
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"E1"_s, u"E28"_s}));
    EXPECT_EQ(soundOf(1), library() + u"/tune.amr"_s);
    EXPECT_TRUE(fake.device.calls.isEmpty());
}

TEST_F(SoundPanelTest, ACroppedTuneIsAttachedToTheSelectedSlide) {
    choose(u"TUNE.MID"_s);
    ctl<QPushButton>(p, "cropCmd")->click(); // closed at once: nothing changes
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_TRUE(w->message().IsEmpty() && fake.device.calls.isEmpty());
    addSlides(u"AB"_s);
    pick(1);
    const QString cropped = workspace::tmpMid(home.path()) + u"/55000.mid"_s;
    fake.random.draws = {0.5};
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = dynamic_cast<frmMMSCropMIDI&>(d);
        EXPECT_EQ(crop.txtName->text(), tune);
        EXPECT_EQ(crop.outfilename, cropped);
        EXPECT_TRUE(player.isOpen()) << "the tune is opened before the window shows";
        mark(crop, player, 520, 1480);
        ctl<QPushButton>(crop, "Command4")->click();
    });
    fake.device.calls.clear();
    ctl<QPushButton>(p, "cropCmd")->click();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();
    EXPECT_EQ(soundOf(1), cropped);
    EXPECT_EQ(w->selectedSlide(), 1);
    EXPECT_TRUE(!TempDir::read(cropped).isEmpty() && TempDir::read(tune) == midifile::cMajorScale(5));
    EXPECT_EQ(fake.device.calls, kStopClose);
}

} // namespace
