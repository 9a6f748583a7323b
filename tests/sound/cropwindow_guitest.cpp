#include "composer/composerfixture.h"
#include "support/controls.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/scriptedplayer.h"
#include "sound/widgets/frmmmscropmidi.h"

#include <QDir>
#include <QLabel>
#include <QSlider>

using namespace mms;
using namespace mms::test;
using namespace mms::test::midifile;
using namespace Qt::StringLiterals;

namespace {

class CropWindowTest : public ::testing::Test {
protected:
    CropWindowTest() {
        w->txtName->setText(tune);
        w->outfilename = dir.file(u"cut.mid"_s);
    }
    static Localisation numbered() {
        LanguageTexts t = numberedTexts();
        t.errors[28] += u" %1"_s;
        Localisation loc;
        loc.setTexts(t);
        return loc;
    }
    // Mark in at one position, Mark out at another, as a user does.
    void mark(frmMMSCropMIDI& window, qint64 inMs, qint64 outMs) {
        player.pos = inMs;
        ctl<QPushButton>(window, "Command2")->click();
        player.pos = outMs;
        ctl<QPushButton>(window, "Command3")->click();
    }
    TempDir dir;
    QString tune = dir.write(u"tune.mid"_s, cMajorScale(8));
    Localisation loc = numbered();
    FakePlatform fake;
    ScriptedPlayer player;
    std::unique_ptr<frmMMSCropMIDI> w = std::make_unique<frmMMSCropMIDI>(loc, fake.dialogs, player);
};

} // namespace

TEST_F(CropWindowTest, OpeningShowsTheLengthAndStatusUpdatesMoveTheSlider) {
    EXPECT_TRUE(ctl<QPushButton>(w, "Command2")->isEnabled()); // only Mark in, before a tune is open
    for (QWidget* off : std::initializer_list<QWidget*>{ctl<QPushButton>(w, "Command3"), ctl<QPushButton>(w, "Command1"), ctl<QPushButton>(w, "Command4"), ctl<QSlider>(w, "Slider1")})
        EXPECT_FALSE(off->isEnabled()) << off->objectName().toStdString();
    QStringList times;
    for (qint64 ms : {90000, 3599000, 3600499, 500})
        times << frmMMSCropMIDI::formatTime(ms);
    EXPECT_EQ(times.join(QLatin1Char(' ')), u"01:30 59:59 00:00 00:01"_s);
    w->MnuOpen_Click();
    EXPECT_EQ(player.log, QStringList{u"Open tune.mid"_s});
    EXPECT_TRUE(ctl<QSlider>(w, "Slider1")->isEnabled());
    EXPECT_TRUE(ctl<QAction>(w, "MnuClose")->isEnabled());
    EXPECT_EQ(ctl<QLabel>(w, "lblStatus")->text(), u"I53 00:00 / 01:30"_s);
    player.playing = true;
    player.reportAt(45400);
    EXPECT_EQ(ctl<QLabel>(w, "lblStatus")->text(), u"I53 00:45 / 01:30"_s);
    EXPECT_EQ(ctl<QSlider>(w, "Slider1")->maximum(), 90);
    EXPECT_EQ(ctl<QSlider>(w, "Slider1")->value(), 45);
    EXPECT_EQ(ctl<QLabel>(w, "Label1")->text() + ctl<QLabel>(w, "Label2")->text() + ctl<QLabel>(w, "Label3")->text(), u"00:0000:4501:30"_s);
    EXPECT_TRUE(ctl<QToolButton>(w, "MMControl1Stop")->isEnabled() && !ctl<QToolButton>(w, "MMControl1Play")->isEnabled());
    player.reportAt(90000); // the end of the tune: back to the beginning
    EXPECT_EQ(player.log.last(), u"Prev"_s);
    EXPECT_EQ(ctl<QSlider>(w, "Slider1")->value(), 0);
    ctl<QSlider>(w, "Slider1")->setValue(30); // the user drags the slider
    emit ctl<QSlider>(w, "Slider1")->sliderReleased();
    EXPECT_EQ(player.log.last(), u"Seek 30000"_s);
    w->MnuClose_Click();
    EXPECT_EQ(player.log.last(), u"Close"_s);
    EXPECT_FALSE(ctl<QAction>(w, "MnuClose")->isEnabled());
    // A tune that cannot be opened is reported, and the slider stays off.
    frmMMSCropMIDI other(loc, fake.dialogs, player);
    player.openError = u"tune.mid: not a MIDI file"_s;
    other.MnuOpen_Click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E28 tune.mid: not a MIDI file"_s});
    EXPECT_FALSE(ctl<QSlider>(other, "Slider1")->isEnabled());
}

TEST_F(CropWindowTest, MarksHaveOneDecimalThePlayStopsAtTheEndMarkAndACropBeyondTheTuneIsRefused) {
    w->MnuOpen_Click();
    w->Command3_Click(); // no start yet: nothing happens
    EXPECT_TRUE(ctl<QLineEdit>(w, "txtCropEnd")->text().isEmpty());
    mark(*w, 3440, 3449); // both read 3.4 s
    EXPECT_EQ(ctl<QLineEdit>(w, "txtCropStart")->text(), u"3.4s"_s);
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E18"_s});
    EXPECT_TRUE(ctl<QLineEdit>(w, "txtCropEnd")->text().isEmpty());
    EXPECT_TRUE(ctl<QPushButton>(w, "Command3")->isEnabled());
    EXPECT_FALSE(ctl<QPushButton>(w, "Command1")->isEnabled() || ctl<QPushButton>(w, "Command4")->isEnabled());
    mark(*w, 7000, 12460);
    EXPECT_EQ(ctl<QLineEdit>(w, "txtCropStart")->text() + ctl<QLineEdit>(w, "txtCropEnd")->text(), u"7.0s12.5s"_s);
    EXPECT_TRUE(ctl<QPushButton>(w, "Command1")->isEnabled() && ctl<QPushButton>(w, "Command4")->isEnabled());
    player.log.clear();
    player.reportAt(12500); // before the stretch is played, the end mark is nothing special
    EXPECT_TRUE(player.log.isEmpty());
    ctl<QPushButton>(w, "Command1")->click();
    EXPECT_EQ(player.log, (QStringList{u"Stop"_s, u"Play 7000-12500"_s}));
    player.reportAt(12400);
    EXPECT_EQ(ctl<QSlider>(w, "Slider1")->value(), 12);
    player.reportAt(12500);
    EXPECT_EQ(player.log.last(), u"Prev"_s);
    EXPECT_EQ(ctl<QSlider>(w, "Slider1")->value(), 0);
    player.pos = 20000; // a start moved past the end: refused without playing
    ctl<QPushButton>(w, "Command2")->click();
    player.log.clear();
    ctl<QPushButton>(w, "Command1")->click();
    EXPECT_EQ(fake.dialogs.texts().size(), 2);
    EXPECT_TRUE(player.log.isEmpty());
    // A crop beyond the tune is refused, writes nothing, and closes the window and the tune.
    mark(*w, 1000, 4100); // the tune is 4 s long
    ctl<QPushButton>(w, "Command4")->click();
    EXPECT_EQ(fake.dialogs.texts().mid(2), (QStringList{u"E20"_s, u"E19"_s}));
    EXPECT_FALSE(w->validflag);
    EXPECT_EQ(w->result(), QDialog::Rejected);
    EXPECT_FALSE(QFile::exists(w->outfilename));
    EXPECT_FALSE(player.isOpen()) << "closing the window closes the tune";
}

TEST_F(CropWindowTest, TheCropCommandGivesNothingWhenClosedOrTooLarge) {
    QDir().mkpath(dir.file(u"Temp/tmpMID"_s));
    fake.random.draws = {0.0, 0.99999};
    fake.dialogs.modalHooks.push_back([](QDialog& d) { d.reject(); });
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = static_cast<frmMMSCropMIDI&>(d);
        EXPECT_TRUE(crop.outfilename.endsWith(u"/99999.mid"_s));
        dir.write(u"Temp/tmpMID/99999.mid"_s, QByteArray(102400, 'x'));
        crop.validflag = true;
    });
    for (const char* why : {"closed by the user", "102400 bytes"})
        EXPECT_EQ(runCropWindow(fake.platform, loc, dir.path(), tune, nullptr, &player), QString()) << why;
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E1"_s});
}

TEST_F(CropWindowTest, OneDecoderServesTheRunSoATuneWithoutTempoKeepsTheLastOne) {
    QDir().mkpath(dir.file(u"Temp/tmpMID"_s));
    Track slow, plain; // one quarter each: a 4/4 bar lasts 4 s at 60 beats a minute, 2 s at 120
    slow.tempo(1000000).note(0, 96, 0, 60).end();
    plain.note(0, 96, 0, 60).end();
    const QString slowTune = dir.write(u"slow.mid"_s, midiFile(96, {slow}));
    const QString plainTune = dir.write(u"plain.mid"_s, midiFile(96, {plain}));
    fake.random.draws = {0.1, 0.2};
    for (int i = 0; i < 2; ++i) {
        fake.dialogs.modalHooks.push_back([this](QDialog& d) {
            mark(static_cast<frmMMSCropMIDI&>(d), 0, 4000);
            ctl<QPushButton>(d, "Command4")->click();
        });
    }
    MidiDecoder decoder;
    for (const QString& tune : {slowTune, plainTune})
        EXPECT_FALSE(
            runCropWindow(fake.platform, loc, dir.path(), tune, nullptr, &player, &decoder).isEmpty());
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();
}
