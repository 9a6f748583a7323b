#include "common/filesize.h"
#include "common/workspace.h"
#include "composer/composerfixture.h"
#include "sound/midi_testfile.h"
#include "sound/scriptedplayer.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "sound/widgets/soundpanel.h"
#include "support/controls.h"

#include <QComboBox>
#include <QListWidget>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

const QStringList kStopClose = {u"stop music"_s, u"close music"_s};

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

// Attaching to an empty message and the preview's stop are the composer's, checked in
// DropTest.DroppedFilesFollowThePanelsAttachRulesAndOthersAreRefused and below.
TEST_F(SoundPanelTest, AttachingPutsTheLibraryPathOnTheSelectedSlideBelowTheSizeLimit) {
    addSlides(u"AB"_s);
    pick(1);
    attach(u"tune.amr"_s);
    EXPECT_EQ(soundOf(1), library() + u"/tune.amr"_s);
    EXPECT_EQ(w->selectedSlide(), 1);
    // 102400 bytes or a file that has gone: the slide keeps its sound and nothing is sent.
    fake.device.sent.clear();
    attach(u"big.amr"_s);
    choose(u"TUNE.MID"_s);
    QFile::remove(tune);
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"E1"_s, u"E28"_s}));
    EXPECT_EQ(soundOf(1), library() + u"/tune.amr"_s);
    EXPECT_TRUE(fake.device.sent.isEmpty());
}

TEST_F(SoundPanelTest, ACroppedTuneIsAttachedToTheSelectedSlide) {
    choose(u"TUNE.MID"_s);
    ctl<QPushButton>(p, "cropCmd")->click(); // closed at once: nothing changes
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_TRUE(w->message().IsEmpty() && fake.device.sent.isEmpty());
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
    fake.device.sent.clear();
    ctl<QPushButton>(p, "cropCmd")->click();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();
    EXPECT_EQ(soundOf(1), cropped);
    EXPECT_EQ(w->selectedSlide(), 1);
    EXPECT_TRUE(!TempDir::read(cropped).isEmpty() && TempDir::read(tune) == midifile::cMajorScale(5));
    EXPECT_EQ(fake.device.sent, kStopClose);
}

} // namespace
