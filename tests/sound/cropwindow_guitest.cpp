#include "composer/localisation.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/playercontrol.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "support/fakeplatform.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QDir>
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

// 120 bpm in 4/4: a C major scale of quarter notes on channel 0 (program 19), 4 seconds.
QByteArray fourSecondTune() {
    Track meta, notes;
    meta.tempo(500000).timeSig(4, 2).end();
    notes.program(0, 19);
    for (int key : {60, 62, 64, 65, 67, 69, 71, 72})
        notes.note(0, 96, 0, key);
    notes.end();
    return midiFile(96, {meta, notes});
}

class CropWindowTest : public ::testing::Test {
protected:
    CropWindowTest() {
        w->txtName->setText(tune);
        w->outfilename = dir.file(QStringLiteral("cut.mid"));
    }
    static Localisation numbered() { // texts that name themselves: "I23", "E18"
        LanguageTexts t;
        for (int i = 0; i < 70; ++i) {
            t.errors << QStringLiteral("E%1").arg(i);
            t.interface << QStringLiteral("I%1").arg(i);
        }
        t.errors[28] = QStringLiteral("E28 %1");
        Localisation loc;
        loc.setTexts(t);
        return loc;
    }
    // Marks a stretch the way a user does: Mark in at one position, Mark out at a later one.
    void mark(frmMMSCropMIDI& window, qint64 inMs, qint64 outMs) {
        player.pos = inMs;
        window.Command2->click();
        player.pos = outMs;
        window.Command3->click();
    }

    TempDir dir;
    QString tune = dir.write(QStringLiteral("tune.mid"), fourSecondTune());
    Localisation loc = numbered();
    FakePlatform fake;
    ScriptedPlayer player;
    std::unique_ptr<frmMMSCropMIDI> w = std::make_unique<frmMMSCropMIDI>(loc, fake.dialogs, player);
};

} // namespace

TEST_F(CropWindowTest, CaptionsComeFromTheLanguageAndOnlyMarkInStartsEnabled) {
    const std::vector<std::pair<QString, int>> captions = {
        {w->windowTitle(), 23},    {w->Command1->text(), 48}, {w->Command2->text(), 49},
        {w->Command3->text(), 50}, {w->Command4->text(), 51}, {w->Label5->text(), 52},
        {w->Label4->text(), 54},   {w->Frame1->title(), 55},  {w->Frame2->title(), 56},
        {w->Label7->text(), 57},   {w->Label6->text(), 58}};
    for (const auto& [caption, index] : captions)
        EXPECT_EQ(caption, QStringLiteral("I%1").arg(index));
    EXPECT_TRUE(w->Command2->isEnabled());
    for (QWidget* off : std::initializer_list<QWidget*>{w->Command3, w->Command1, w->Command4, w->Slider1})
        EXPECT_FALSE(off->isEnabled()) << off->objectName().toStdString();

    EXPECT_EQ(frmMMSCropMIDI::formatTime(90000), QStringLiteral("01:30"));
    EXPECT_EQ(frmMMSCropMIDI::formatTime(3599000), QStringLiteral("59:59"));
    EXPECT_EQ(frmMMSCropMIDI::formatTime(3600499), QStringLiteral("00:00"));
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
    EXPECT_EQ(w->Label1->text() + w->Label2->text() + w->Label3->text(), QStringLiteral("00:0000:4501:30"));
    EXPECT_TRUE(w->MMControl1Stop->isEnabled() && !w->MMControl1Play->isEnabled());

    player.reportAt(90000); // the end of the tune: back to the beginning
    EXPECT_EQ(player.log.last(), QStringLiteral("Prev"));
    EXPECT_EQ(w->Slider1->value(), 0);
    w->Slider1->setValue(30); // the user drags the slider
    emit w->Slider1->sliderReleased();
    EXPECT_EQ(player.log.last(), QStringLiteral("Seek 30000"));
    w->MnuClose_Click();
    EXPECT_EQ(player.log.last(), QStringLiteral("Close"));
    EXPECT_FALSE(w->MnuClose->isEnabled());

    // A tune that cannot be opened is reported, and the slider stays off.
    frmMMSCropMIDI other(loc, fake.dialogs, player);
    player.openError = QStringLiteral("tune.mid: not a MIDI file");
    other.MnuOpen_Click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E28 tune.mid: not a MIDI file")});
    EXPECT_FALSE(other.Slider1->isEnabled());
}

TEST_F(CropWindowTest, MarksHaveOneDecimalAndTheStretchStopsAndRewindsExactlyAtTheEndMark) {
    w->MnuOpen_Click();
    w->Command3_Click(); // no start yet: nothing happens
    EXPECT_TRUE(w->txtCropEnd->text().isEmpty());
    mark(*w, 3440, 3449); // both read 3.4 s
    EXPECT_EQ(w->txtCropStart->text(), QStringLiteral("3.4s"));
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E18")});
    EXPECT_TRUE(w->txtCropEnd->text().isEmpty());
    EXPECT_TRUE(w->Command3->isEnabled());
    EXPECT_FALSE(w->Command1->isEnabled() || w->Command4->isEnabled());

    mark(*w, 7000, 12460);
    EXPECT_EQ(w->txtCropStart->text() + w->txtCropEnd->text(), QStringLiteral("7.0s12.5s"));
    EXPECT_TRUE(w->Command1->isEnabled() && w->Command4->isEnabled());
    player.log.clear();
    player.reportAt(12500); // before the stretch is played, the end mark is nothing special
    EXPECT_TRUE(player.log.isEmpty());

    w->Command1->click();
    EXPECT_EQ(player.log, (QStringList{QStringLiteral("Stop"), QStringLiteral("Play 7000-12500")}));
    player.reportAt(12400);
    EXPECT_EQ(w->Slider1->value(), 12);
    player.reportAt(12500);
    EXPECT_EQ(player.log.last(), QStringLiteral("Prev"));
    EXPECT_EQ(w->Slider1->value(), 0);

    player.pos = 20000; // a start moved past the end: refused without playing
    w->Command2->click();
    player.log.clear();
    w->Command1->click();
    EXPECT_EQ(fake.dialogs.texts().size(), 2);
    EXPECT_TRUE(player.log.isEmpty());
}

TEST_F(CropWindowTest, ACropBeyondTheTuneIsRefusedAndWritesNothing) {
    w->MnuOpen_Click();
    mark(*w, 1000, 4100); // the tune is 4 s long
    w->Command4->click();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("E20"), QStringLiteral("E19")}));
    EXPECT_FALSE(w->validflag);
    EXPECT_EQ(w->result(), QDialog::Rejected);
    EXPECT_FALSE(QFile::exists(w->outfilename));
    EXPECT_FALSE(player.isOpen()) << "closing the window closes the tune";
}

TEST_F(CropWindowTest, TheCropCommandWritesTheStretchUnderARandomNameAndChecksItsSize) {
    QDir().mkpath(dir.file(QStringLiteral("Temp/tmpMID")));
    auto run = [&](double draw, FakeDialogs::ModalHook hook) {
        fake.random.draws = {draw};
        fake.dialogs.modalHooks.push_back(std::move(hook));
        return runCropWindow(fake.platform, loc, dir.path(), tune, nullptr, &player);
    };
    const QString expected = dir.path() + QStringLiteral("/Temp/tmpMID/55000.mid");
    const QString cropped = run(0.5, [&](QDialog& d) {
        auto& crop = static_cast<frmMMSCropMIDI&>(d);
        EXPECT_EQ(crop.txtName->text(), tune);
        EXPECT_EQ(player.log, QStringList{QStringLiteral("Open tune.mid")});
        mark(crop, 1000, 2000);
        crop.Command4->click();
        EXPECT_TRUE(crop.validflag);
        EXPECT_EQ(crop.result(), QDialog::Accepted);
    });
    EXPECT_EQ(cropped, expected);
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(QLatin1Char('|')).toStdString();
    MidiDecoder back;
    back.resetMidiTables();
    back.decodeMidiFile(cropped);
    ASSERT_TRUE(back.midiDecoded());
    EXPECT_EQ(back.noteTable(0, 0), QStringLiteral("4E5 4F5"));
    EXPECT_EQ(back.channelProgram(0), 19);
    EXPECT_EQ(TempDir::read(tune), fourSecondTune()) << "the library tune is untouched";

    EXPECT_EQ(run(0.0, [](QDialog& d) { d.reject(); }), QString()) << "closed by the user";
    const QString large = run(0.99999, [&](QDialog& d) {
        auto& crop = static_cast<frmMMSCropMIDI&>(d);
        EXPECT_TRUE(crop.outfilename.endsWith(QStringLiteral("/99999.mid")));
        dir.write(QStringLiteral("Temp/tmpMID/99999.mid"), QByteArray(102400, 'x'));
        crop.validflag = true;
    });
    EXPECT_EQ(large, QString());
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E1")});
}
