#include "composer/localisation.h"
#include "composer/widgets/composerhost.h"
#include "model/cslide.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/playercontrol.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "support/fakeplatform.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;

namespace {

// A player whose position and length the test sets; it records every command it is given.
class ScriptedPlayer final : public PlayerControl {
public:
    Status open(const QString& path) override {
        log << QStringLiteral("Open ") + QFileInfo(path).fileName();
        if (!openError.isEmpty()) return Status::failure(openError);
        opened = true;
        return Status::ok();
    }
    void close() override {
        log << QStringLiteral("Close");
        opened = playing = false;
    }
    Status play() override {
        log << QStringLiteral("Play %1-%2").arg(from).arg(to);
        from = to = -1;
        playing = true;
        return Status::ok();
    }
    void stop() override {
        log << QStringLiteral("Stop");
        playing = false;
    }
    void prev() override {
        log << QStringLiteral("Prev");
        playing = false;
        pos = 0;
    }
    void seek(qint64 ms) override {
        log << QStringLiteral("Seek %1").arg(ms);
        playing = false;
        pos = ms;
    }
    void setFrom(qint64 ms) override { from = ms; }
    void setTo(qint64 ms) override { to = ms; }
    bool isOpen() const override { return opened; }
    bool isPlaying() const override { return playing; }
    qint64 position() const override { return pos; }
    qint64 length() const override { return opened ? len : 0; }

    void reportAt(qint64 ms) {
        pos = ms;
        emit statusUpdate();
    }

    QStringList log;
    QString openError;
    bool opened = false;
    bool playing = false;
    qint64 pos = 0;
    qint64 len = 90000;
    qint64 from = -1;
    qint64 to = -1;
};

LanguageTexts numbered() {
    LanguageTexts t;
    for (int i = 0; i < 32; ++i)
        t.errors << QStringLiteral("E%1").arg(i);
    t.errors[28] = QStringLiteral("E28 %1");
    for (int i = 0; i < 70; ++i)
        t.interface << QStringLiteral("I%1").arg(i);
    return t;
}

// 120 bpm in 4/4: a C major scale of quarter notes on channel 0, 4 seconds.
QByteArray fourSecondTune() {
    Track meta;
    meta.tempo(500000).timeSig(4, 2).end();
    Track notes;
    notes.program(0, 19);
    for (int key : {60, 62, 64, 65, 67, 69, 71, 72})
        notes.note(0, 96, 0, key);
    notes.end();
    return midiFile(96, {meta, notes});
}

class CropWindowTest : public ::testing::Test {
protected:
    CropWindowTest() {
        loc.setTexts(numbered());
        tune = dir.write(QStringLiteral("tune.mid"), fourSecondTune());
        w = std::make_unique<frmMMSCropMIDI>(loc, fake.dialogs, player);
        w->txtName->setText(tune);
        w->outfilename = dir.file(QStringLiteral("cut.mid"));
    }
    // Marks a stretch the way a user does: play, Mark in, play on, Mark out.
    void mark(qint64 inMs, qint64 outMs) {
        player.pos = inMs;
        w->Command2->click();
        player.pos = outMs;
        w->Command3->click();
    }

    TempDir dir;
    Localisation loc;
    FakePlatform fake;
    ScriptedPlayer player;
    QString tune;
    std::unique_ptr<frmMMSCropMIDI> w;
};

} // namespace

TEST_F(CropWindowTest, CaptionsComeFromTheLanguageAndOnlyMarkInStartsEnabled) {
    EXPECT_EQ(w->windowTitle(), QStringLiteral("I23"));
    EXPECT_EQ(w->Command1->text(), QStringLiteral("I48"));
    EXPECT_EQ(w->Command2->text(), QStringLiteral("I49"));
    EXPECT_EQ(w->Command3->text(), QStringLiteral("I50"));
    EXPECT_EQ(w->Command4->text(), QStringLiteral("I51"));
    EXPECT_EQ(w->Label5->text(), QStringLiteral("I52"));
    EXPECT_EQ(w->Label4->text(), QStringLiteral("I54"));
    EXPECT_EQ(w->Frame1->title(), QStringLiteral("I55"));
    EXPECT_EQ(w->Frame2->title(), QStringLiteral("I56"));
    EXPECT_EQ(w->Label7->text(), QStringLiteral("I57"));
    EXPECT_EQ(w->Label6->text(), QStringLiteral("I58"));
    EXPECT_TRUE(w->Command2->isEnabled());
    EXPECT_FALSE(w->Command3->isEnabled());
    EXPECT_FALSE(w->Command1->isEnabled());
    EXPECT_FALSE(w->Command4->isEnabled());
    EXPECT_FALSE(w->Slider1->isEnabled());
    EXPECT_FALSE(w->MnuClose->isEnabled());
    EXPECT_FALSE(w->validflag);

    EXPECT_EQ(frmMMSCropMIDI::formatTime(90000), QStringLiteral("01:30"));
    EXPECT_EQ(frmMMSCropMIDI::formatTime(3599000), QStringLiteral("59:59"));
    EXPECT_EQ(frmMMSCropMIDI::formatTime(3600000), QStringLiteral("00:00"));
    EXPECT_EQ(frmMMSCropMIDI::formatTime(499), QStringLiteral("00:00"));
    EXPECT_EQ(frmMMSCropMIDI::formatTime(500), QStringLiteral("00:01"));
}

TEST_F(CropWindowTest, OpeningShowsTheLengthAndStatusUpdatesMoveTheSlider) {
    w->MnuOpen_Click();
    EXPECT_EQ(player.log, QStringList{QStringLiteral("Open tune.mid")});
    EXPECT_TRUE(w->Slider1->isEnabled());
    EXPECT_TRUE(w->MnuClose->isEnabled());
    EXPECT_EQ(w->lblStatus->text(), QStringLiteral("I53 00:00 / 01:30"));

    player.playing = true;
    player.reportAt(45400);
    EXPECT_EQ(w->lblStatus->text(), QStringLiteral("I53 00:45 / 01:30"));
    EXPECT_EQ(w->Slider1->maximum(), 90);
    EXPECT_EQ(w->Slider1->value(), 45);
    EXPECT_EQ(w->Label1->text(), QStringLiteral("00:00"));
    EXPECT_EQ(w->Label2->text(), QStringLiteral("00:45"));
    EXPECT_EQ(w->Label3->text(), QStringLiteral("01:30"));
    EXPECT_TRUE(w->MMControl1Stop->isEnabled());
    EXPECT_FALSE(w->MMControl1Play->isEnabled());

    // At the end of the tune the player goes back to the beginning.
    player.reportAt(90000);
    EXPECT_EQ(player.log.last(), QStringLiteral("Prev"));
    EXPECT_EQ(w->Slider1->value(), 0);

    // Dragging the slider moves the position.
    w->Slider1->setValue(30);
    emit w->Slider1->sliderReleased();
    EXPECT_EQ(player.log.last(), QStringLiteral("Seek 30000"));

    w->MnuClose_Click();
    EXPECT_EQ(player.log.last(), QStringLiteral("Close"));
    EXPECT_FALSE(w->MnuClose->isEnabled());
}

TEST_F(CropWindowTest, ATuneThatCannotBeOpenedIsReportedAndLeavesTheSliderOff) {
    player.openError = QStringLiteral("tune.mid: not a MIDI file");
    w->MnuOpen_Click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E28 tune.mid: not a MIDI file")});
    EXPECT_FALSE(w->Slider1->isEnabled());
    EXPECT_FALSE(w->MnuClose->isEnabled());
}

TEST_F(CropWindowTest, MarksTakeThePositionWithOneDecimalAndRefuseAnEndNotAfterTheStart) {
    w->MnuOpen_Click();
    w->Command3_Click(); // no start yet: nothing happens
    EXPECT_TRUE(w->txtCropEnd->text().isEmpty());
    EXPECT_TRUE(fake.dialogs.shown.empty());

    player.pos = 3440;
    w->Command2->click();
    EXPECT_EQ(w->txtCropStart->text(), QStringLiteral("3.4s"));
    EXPECT_TRUE(w->Command3->isEnabled());
    EXPECT_FALSE(w->Command4->isEnabled());

    w->Command3->click(); // the same position
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E18")});
    EXPECT_TRUE(w->txtCropEnd->text().isEmpty());
    EXPECT_FALSE(w->Command1->isEnabled());
    player.pos = 3449; // still 3.4 s
    w->Command3->click();
    EXPECT_EQ(fake.dialogs.texts().size(), 2);

    player.pos = 12460;
    w->Command3->click();
    EXPECT_EQ(w->txtCropEnd->text(), QStringLiteral("12.5s"));
    EXPECT_TRUE(w->Command1->isEnabled());
    EXPECT_TRUE(w->Command4->isEnabled());
    player.pos = 7000;
    w->Command2->click();
    EXPECT_EQ(w->txtCropStart->text(), QStringLiteral("7.0s"));
}

TEST_F(CropWindowTest, PlayingTheStretchStopsAndRewindsExactlyAtTheEndMark) {
    w->MnuOpen_Click();
    mark(3440, 12460);
    player.log.clear();

    // Before the stretch is played, passing the end mark is nothing special.
    player.reportAt(12500);
    EXPECT_TRUE(player.log.isEmpty());

    w->Command1->click();
    EXPECT_EQ(player.log, (QStringList{QStringLiteral("Stop"), QStringLiteral("Play 3400-12500")}));
    player.reportAt(12400);
    EXPECT_EQ(player.log.size(), 2);
    EXPECT_EQ(w->Slider1->value(), 12);
    player.reportAt(12500);
    EXPECT_EQ(player.log.last(), QStringLiteral("Prev"));
    EXPECT_EQ(w->Slider1->value(), 0);

    // A start moved past the end is refused without playing.
    player.pos = 20000;
    w->Command2->click();
    player.log.clear();
    w->Command1->click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E18")});
    EXPECT_TRUE(player.log.isEmpty());
}

TEST_F(CropWindowTest, CropWritesTheStretchAndHandsItBack) {
    w->MnuOpen_Click();
    mark(1000, 2000);
    player.log.clear();
    w->Command4->click();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(w->validflag);
    EXPECT_EQ(w->result(), QDialog::Accepted);
    EXPECT_EQ(player.log.first(), QStringLiteral("Stop"));
    EXPECT_TRUE(player.log.contains(QStringLiteral("Close")));
    EXPECT_FALSE(player.isOpen());

    MidiDecoder back;
    back.resetMidiTables();
    back.decodeMidiFile(w->outfilename);
    ASSERT_TRUE(back.midiDecoded());
    EXPECT_EQ(back.noteTable(0, 0), QStringLiteral("4E5 4F5"));
    EXPECT_EQ(back.channelProgram(0), 19);
    EXPECT_EQ(TempDir::read(tune), fourSecondTune()) << "the library tune is untouched";
}

TEST_F(CropWindowTest, ACropBeyondTheTuneIsRefusedAndWritesNothing) {
    w->MnuOpen_Click();
    mark(1000, 4100); // the tune is 4 s long
    w->Command4->click();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("E20"), QStringLiteral("E19")}));
    EXPECT_FALSE(w->validflag);
    EXPECT_EQ(w->result(), QDialog::Rejected);
    EXPECT_FALSE(QFile::exists(w->outfilename));
    EXPECT_FALSE(player.isOpen()) << "closing the window closes the tune";
}

namespace {

// Just enough of the composer for the crop command.
class FakeHost final : public ComposerHost {
public:
    FakeHost(FakePlatform& fake, const Localisation& loc, QString folder)
        : fake_(fake), loc_(loc), folder_(std::move(folder)), message_(&fake.dialogs) {}
    const Localisation& localisation() const override { return loc_; }
    Platform& platform() override { return fake_.platform; }
    QWidget* hostWindow() override { return nullptr; }
    QString appFolder() const override { return folder_; }
    const CSlide& message() const override { return message_; }
    bool IsEmpty() const override { return true; }
    qint16 selectedSlide() const override { return 0; }
    void addCmd_Click() override {}
    void updateCurrentSlide(const QString&, const QString&) override {}
    void lstSlide_ItemClick() override {}
    void selectSlide(qint16) override {}
    void setModified(bool) override {}
    int sendPreviewCommand(const QString&) override { return 0; }

private:
    FakePlatform& fake_;
    const Localisation& loc_;
    QString folder_;
    CSlide message_;
};

} // namespace

TEST_F(CropWindowTest, TheCropCommandNamesTheOutputAndChecksItsSize) {
    QDir().mkpath(dir.file(QStringLiteral("Temp/tmpMID")));
    FakeHost host(fake, loc, dir.path());
    const QString expected = dir.path() + QStringLiteral("/Temp/tmpMID/55000.mid");

    // The user crops a stretch.
    fake.random.draws = {0.5};
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = static_cast<frmMMSCropMIDI&>(d);
        EXPECT_EQ(crop.txtName->text(), tune);
        EXPECT_EQ(crop.outfilename, expected);
        EXPECT_EQ(player.log, QStringList{QStringLiteral("Open tune.mid")});
        player.pos = 0;
        crop.Command2->click();
        player.pos = 1500;
        crop.Command3->click();
        crop.Command4->click();
    });
    EXPECT_EQ(runCropWindow(host, tune, &player), expected);
    EXPECT_TRUE(QFile::exists(expected));

    // The user closes the window: nothing to attach.
    fake.random.draws = {0.0};
    fake.dialogs.modalHooks.push_back([](QDialog& d) { d.reject(); });
    EXPECT_EQ(runCropWindow(host, tune, &player), QString());

    // A result of 102400 bytes is refused with error string 1.
    fake.random.draws = {0.99999};
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = static_cast<frmMMSCropMIDI&>(d);
        EXPECT_TRUE(crop.outfilename.endsWith(QStringLiteral("/99999.mid")));
        dir.write(QStringLiteral("Temp/tmpMID/99999.mid"), QByteArray(102400, 'x'));
        crop.validflag = true;
    });
    fake.dialogs.shown.clear();
    EXPECT_EQ(runCropWindow(host, tune, &player), QString());
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E1")});
}
