#include "common/filesize.h"
#include "common/workspace.h"
#include "composer/composerfixture.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/scriptedplayer.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "sound/widgets/soundpanel.h"
#include "store/messagestore.h"
#include "support/controls.h"

#include <QComboBox>
#include <QListWidget>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

const QStringList kStopClose = {u"stop music"_s, u"close music"_s};
using Commands = std::pair<bool, bool>; // attach, crop
const Commands kBoth{true, true}, kAttach{true, false}, kNone{false, false};

class SoundPanelTest : public ComposerTest {
protected:
    void SetUp() override {
        ComposerTest::SetUp();
        p = ctl<SoundPanel>(w, "soundPanel");
        library = home.file(u"UserData/Sound"_s);
        tune = home.write(u"UserData/Sound/TUNE.MID"_s, midifile::cMajorScale(5));
        home.write(u"UserData/Sound/tune.amr"_s, QByteArray(102399, 'a'));
        home.write(u"UserData/Sound/big.amr"_s, QByteArray(102400, 'a'));
        home.write(u"UserData/Sound/notes.txt"_s, "x");
        ctl<QPushButton>(p, "refresh2Cmd")->click();
        p->setCropPlayer(&player);
    }
    QStringList listed() const {
        QStringList names;
        for (int i = 0; i < ctl<QListWidget>(p, "fileBoxSound")->count(); ++i)
            names << ctl<QListWidget>(p, "fileBoxSound")->item(i)->text();
        return names;
    }
    Commands commands() const {
        return {ctl<QPushButton>(p, "chgSoundCmd")->isEnabled(), ctl<QPushButton>(p, "cropCmd")->isEnabled()};
    }
    // The user clicks a file of the list; the commands it leaves enabled.
    Commands choose(const QString& name) {
        const auto items = ctl<QListWidget>(p, "fileBoxSound")->findItems(name, Qt::MatchExactly);
        EXPECT_EQ(items.size(), 1) << name.toStdString();
        if (!items.isEmpty()) ctl<QListWidget>(p, "fileBoxSound")->setCurrentItem(items.front());
        return commands();
    }
    QString soundOf(int position) const { return w->message().nodeAt(qint16(position))->DataSoundPath; }
    SoundPanel* p = nullptr;
    ScriptedPlayer player;
    QString library, tune;
};

TEST_F(SoundPanelTest, TheCommandsFollowTheSelectionAndTheType) {
    EXPECT_EQ(listed(), (QStringList{u"big.amr"_s, u"tune.amr"_s, u"TUNE.MID"_s}));
    // Sizes in the tooltips; a file at the limit is marked as too large.
    const auto tip = [this](int row) { return ctl<QListWidget>(p, "fileBoxSound")->item(row)->toolTip(); };
    const QString size = u"I%1"_s.arg(sizetext::kKilobytes);
    EXPECT_EQ(tip(0), u"big.amr\n"_s + size + u"\nI%1"_s.arg(sizetext::kTooLargeToUse));
    EXPECT_EQ(tip(1), u"tune.amr\n"_s + size);
    EXPECT_EQ(choose(u"TUNE.MID"_s), kBoth);
    EXPECT_EQ(choose(u"tune.amr"_s), kAttach);
    ctl<QListWidget>(p, "fileBoxSound")->clearSelection();
    EXPECT_EQ(commands(), kNone);
    choose(u"TUNE.MID"_s); // a refresh keeps a file that is still there, and the commands
    ctl<QPushButton>(p, "refresh2Cmd")->click();
    EXPECT_EQ(p->selectedFileName(), u"TUNE.MID"_s);
    EXPECT_EQ(commands(), kBoth);
    ctl<QComboBox>(p, "soundTypeCombo")->setCurrentIndex(1);
    EXPECT_EQ(listed(), (QStringList{u"big.amr"_s, u"tune.amr"_s}));
    EXPECT_EQ(commands(), kNone);
    ctl<QComboBox>(p, "soundTypeCombo")->setCurrentIndex(2);
    EXPECT_EQ(listed(), QStringList{u"TUNE.MID"_s});
    // A slide reset disables the commands; clicking the selected file brings them back.
    choose(u"TUNE.MID"_s);
    w->refreshSlidePanel();
    emit ctl<QListWidget>(p, "fileBoxSound")->itemClicked(ctl<QListWidget>(p, "fileBoxSound")->currentItem());
    EXPECT_EQ(commands(), kBoth);
}

TEST_F(SoundPanelTest, EveryFolderChangeDisablesTheCommandsAndNoFolderShowsNothing) {
    choose(u"TUNE.MID"_s);
    ctl<QToolButton>(p, "SoundChgDirBrowse")->click(); // cancelled
    EXPECT_EQ(fake.dialogs.folderRequests, QStringList{u"I62|"_s + library});
    EXPECT_EQ(commands(), kNone);
    const QString other = home.file(u"other"_s);
    home.write(u"other/a.mid"_s, "MThd");
    fake.dialogs.folderAnswers = {other, other};
    ctl<QToolButton>(p, "SoundChgDirBrowse")->click();
    EXPECT_EQ(ctl<QLineEdit>(p, "soundDirPath")->text(), QDir::toNativeSeparators(other));
    EXPECT_EQ(listed(), QStringList{u"a.mid"_s});
    choose(u"a.mid"_s);
    home.write(u"other/b.amr"_s, "#!AMR");
    ctl<QToolButton>(p, "SoundChgDirBrowse")->click(); // the same folder is read again
    EXPECT_EQ(listed(), (QStringList{u"a.mid"_s, u"b.amr"_s}));
    EXPECT_EQ(commands(), kNone);
    // A typed text that names no folder empties the list without a word, as do refresh and type.
    choose(u"a.mid"_s);
    ctl<QLineEdit>(p, "soundDirPath")->setText(home.file(u"missing"_s));
    EXPECT_TRUE(listed().isEmpty() && p->fileListFolder().isEmpty());
    EXPECT_EQ(commands(), kNone);
    ctl<QPushButton>(p, "refresh2Cmd")->click();
    ctl<QComboBox>(p, "soundTypeCombo")->setCurrentIndex(0);
    EXPECT_TRUE(listed().isEmpty());
    EXPECT_TRUE(fake.dialogs.shown.empty());
    ctl<QLineEdit>(p, "soundDirPath")->setText(library);
    EXPECT_EQ(listed().size(), 3);
}

TEST_F(SoundPanelTest, AttachingPutsTheLibraryPathOnTheSelectedSlideBelowTheSizeLimit) {
    const QString amr = library + u"/tune.amr"_s;
    choose(u"tune.amr"_s); // an empty message gets its first slide
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    ASSERT_EQ(w->stripModel().count(), 1);
    EXPECT_EQ(soundOf(1), amr);
    EXPECT_TRUE(w->isModified());
    // On the selected slide; a playing preview is stopped and the device closed.
    addSlides(u"B"_s);
    choose(u"TUNE.MID"_s);
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    EXPECT_EQ(soundOf(2), tune);
    ctl<QToolButton>(w, "soundPlayCmd")->click();
    ASSERT_TRUE(w->isPlaying());
    choose(u"tune.amr"_s);
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    EXPECT_EQ(soundOf(2), amr);
    EXPECT_EQ(w->selectedSlide(), 2);
    EXPECT_FALSE(w->isPlaying());
    EXPECT_EQ(fake.device.sent.mid(fake.device.sent.size() - 2), kStopClose);
    // 102400 bytes or a file that has gone: the slide keeps its sound and nothing is sent.
    fake.device.sent.clear();
    choose(u"big.amr"_s);
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    choose(u"TUNE.MID"_s);
    QFile::remove(tune);
    ctl<QPushButton>(p, "chgSoundCmd")->click();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"E1"_s, u"E28"_s}));
    EXPECT_EQ(soundOf(2), amr);
    EXPECT_TRUE(fake.device.sent.isEmpty());
}

TEST_F(SoundPanelTest, ACroppedTuneIsAttachedSavedAndReadBack) {
    choose(u"TUNE.MID"_s);
    ctl<QPushButton>(p, "cropCmd")->click(); // closed at once: nothing changes
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_TRUE(w->message().IsEmpty());
    EXPECT_TRUE(fake.device.sent.isEmpty());
    addSlides(u"AB"_s);
    pick(1);
    const QString cropped = workspace::tmpMid(home.path()) + u"/55000.mid"_s;
    fake.random.draws = {0.5};
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = dynamic_cast<frmMMSCropMIDI&>(d);
        EXPECT_EQ(crop.txtName->text(), tune);
        EXPECT_EQ(crop.outfilename, cropped);
        EXPECT_TRUE(player.isOpen()) << "the tune is opened before the window shows";
        player.pos = 520;
        ctl<QPushButton>(crop, "Command2")->click();
        player.pos = 1480;
        ctl<QPushButton>(crop, "Command3")->click();
        ctl<QPushButton>(crop, "Command4")->click();
    });
    fake.device.sent.clear();
    ctl<QPushButton>(p, "cropCmd")->click();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();
    EXPECT_EQ(soundOf(1), cropped);
    EXPECT_EQ(w->selectedSlide(), 1);
    EXPECT_EQ(TempDir::read(tune), midifile::cMajorScale(5)) << "the library tune is untouched";
    EXPECT_EQ(fake.device.sent, kStopClose);
    ctl<QToolButton>(w, "soundPlayCmd")->click(); // the preview plays the cropped tune
    EXPECT_EQ(fake.device.sent.mid(2, 1), QStringList{u"open \"%1\" Alias music"_s.arg(cropped)});
    // Saved, the message keeps its own copy of the cropped tune.
    const MessageStore store(home.path());
    ASSERT_TRUE(store.save(w->message(), u"song"_s, QString()).isOk());
    QFile::remove(cropped);
    LoadedMessage back;
    ASSERT_TRUE(store.load(u"song"_s, workspace::messageFolder(home.path(), u"song"_s), back).isOk());
    ASSERT_EQ(back.slides.size(), 2u);
    MidiDecoder decoder;
    decoder.resetMidiTables();
    decoder.decodeMidiFile(back.slides[0].soundPath);
    ASSERT_TRUE(decoder.midiDecoded()) << back.slides[0].soundPath.toStdString();
    EXPECT_EQ(decoder.noteTable(0, 0), u"4D5 4E5"_s);
    EXPECT_EQ(decoder.channelProgram(0), 19);
}

} // namespace
