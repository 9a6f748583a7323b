#include "composer/composerfixture.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/scriptedplayer.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "support/controls.h"

#include <QDir>
#include <QLabel>
#include <QSlider>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

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

} // namespace

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
