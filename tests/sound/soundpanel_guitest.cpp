#include "composer/composerfixture.h"
#include "sound/midi_testfile.h"
#include "sound/mididecoder.h"
#include "sound/playercontrol.h"
#include "sound/widgets/frmmmscropmidi.h"
#include "sound/widgets/soundpanel.h"
#include "store/messagestore.h"
#include "store/workspace.h"

#include <QComboBox>
#include <QListWidget>

using namespace mms;
using namespace mms::test;

namespace {

const QStringList kStopClose = {QStringLiteral("stop music"), QStringLiteral("close music")};

// Stands still wherever the test puts it; the crop window only reads its position.
class StillPlayer final : public PlayerControl {
public:
    Status open(const QString&) override { return opened = true, Status::ok(); }
    void close() override { opened = false; }
    Status play() override { return Status::ok(); }
    void stop() override {}
    void prev() override { pos = 0; }
    void seek(qint64 ms) override { pos = ms; }
    void setFrom(qint64) override {}
    void setTo(qint64) override {}
    bool isOpen() const override { return opened; }
    bool isPlaying() const override { return false; }
    qint64 position() const override { return pos; }
    qint64 length() const override { return opened ? 4000 : 0; }
    bool opened = false;
    qint64 pos = 0;
};

// 120 bpm: the quarter notes C5 D5 E5 F5 G5 on channel 0, half a second each.
QByteArray scale() {
    midifile::Track meta;
    meta.tempo(500000).timeSig(4, 2).end();
    midifile::Track notes;
    notes.program(0, 19);
    for (int key : {60, 62, 64, 65, 67})
        notes.note(0, 96, 0, key);
    notes.end();
    return midifile::midiFile(96, {meta, notes});
}

class SoundPanelTest : public ComposerTest {
protected:
    void SetUp() override {
        ComposerTest::SetUp();
        p = w->soundPanel;
        library = home.file(QStringLiteral("UserData/Sound"));
        tune = home.write(QStringLiteral("UserData/Sound/TUNE.MID"), scale());
        home.write(QStringLiteral("UserData/Sound/tune.amr"), QByteArray(102399, 'a'));
        home.write(QStringLiteral("UserData/Sound/big.amr"), QByteArray(102400, 'a'));
        home.write(QStringLiteral("UserData/Sound/notes.txt"), "x");
        p->refresh2Cmd->click();
        p->setCropPlayer(&player);
    }
    QStringList listed() const {
        QStringList names;
        for (int i = 0; i < p->fileBoxSound->count(); ++i)
            names << p->fileBoxSound->item(i)->text();
        return names;
    }
    // The user clicks a file of the list.
    void choose(const QString& name) {
        const auto items = p->fileBoxSound->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(items.size(), 1) << name.toStdString();
        p->fileBoxSound->setCurrentItem(items.front());
    }
    std::pair<bool, bool> attachAndCrop() const {
        return {p->chgSoundCmd->isEnabled(), p->cropCmd->isEnabled()};
    }
    QString soundOf(int position) const { return w->message().nodeAt(qint16(position))->DataSoundPath; }

    SoundPanel* p = nullptr;
    StillPlayer player;
    QString library;
    QString tune;
};

TEST_F(SoundPanelTest, TheCommandsFollowTheSelectionAndTheType) {
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("big.amr"), QStringLiteral("tune.amr"),
                                     QStringLiteral("TUNE.MID")}));
    choose(QStringLiteral("TUNE.MID"));
    EXPECT_EQ(attachAndCrop(), std::make_pair(true, true));
    choose(QStringLiteral("tune.amr"));
    EXPECT_EQ(attachAndCrop(), std::make_pair(true, false));
    p->fileBoxSound->clearSelection();
    EXPECT_EQ(attachAndCrop(), std::make_pair(false, false));

    // A refresh keeps a file that is still there, and with it the commands.
    choose(QStringLiteral("TUNE.MID"));
    p->refresh2Cmd->click();
    EXPECT_EQ(p->selectedFileName(), QStringLiteral("TUNE.MID"));
    EXPECT_EQ(attachAndCrop(), std::make_pair(true, true));

    p->soundTypeCombo->setCurrentIndex(1);
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("big.amr"), QStringLiteral("tune.amr")}));
    EXPECT_EQ(attachAndCrop(), std::make_pair(false, false));
    p->soundTypeCombo->setCurrentIndex(2);
    EXPECT_EQ(listed(), QStringList{QStringLiteral("TUNE.MID")});

    // A slide reset disables the commands; clicking the selected file again brings them back.
    choose(QStringLiteral("TUNE.MID"));
    w->refreshSlidePanel();
    emit p->fileBoxSound->itemClicked(p->fileBoxSound->currentItem());
    EXPECT_EQ(attachAndCrop(), std::make_pair(true, true));
}

TEST_F(SoundPanelTest, EveryFolderChangeDisablesTheCommandsAndNoFolderShowsNothing) {
    choose(QStringLiteral("TUNE.MID"));
    p->SoundChgDirBrowse->click(); // cancelled
    EXPECT_EQ(fake.dialogs.folderRequests, QStringList{QStringLiteral("I62|") + library});
    EXPECT_EQ(listed().size(), 3);
    EXPECT_TRUE(p->selectedFileName().isEmpty());
    EXPECT_EQ(attachAndCrop(), std::make_pair(false, false));

    const QString other = home.file(QStringLiteral("other"));
    home.write(QStringLiteral("other/a.mid"), "MThd");
    fake.dialogs.folderAnswers = {other, other};
    p->SoundChgDirBrowse->click();
    EXPECT_EQ(p->soundDirPath->text(), QDir::toNativeSeparators(other));
    EXPECT_EQ(listed(), QStringList{QStringLiteral("a.mid")});
    choose(QStringLiteral("a.mid"));
    home.write(QStringLiteral("other/b.amr"), "#!AMR");
    p->SoundChgDirBrowse->click(); // the same folder is read again
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("a.mid"), QStringLiteral("b.amr")}));
    EXPECT_EQ(attachAndCrop(), std::make_pair(false, false));

    // A typed text that names no folder empties the list without a word, as do refresh and type.
    choose(QStringLiteral("a.mid"));
    p->soundDirPath->setText(home.file(QStringLiteral("missing")));
    EXPECT_TRUE(listed().isEmpty());
    EXPECT_TRUE(p->fileListFolder().isEmpty());
    EXPECT_EQ(attachAndCrop(), std::make_pair(false, false));
    p->refresh2Cmd->click();
    p->soundTypeCombo->setCurrentIndex(0);
    EXPECT_TRUE(listed().isEmpty());
    EXPECT_TRUE(fake.dialogs.shown.empty());
    p->soundDirPath->setText(library);
    EXPECT_EQ(listed().size(), 3);
}

TEST_F(SoundPanelTest, AttachingPutsTheLibraryPathOnTheSelectedSlideBelowTheSizeLimit) {
    // An empty message gets its first slide.
    choose(QStringLiteral("tune.amr"));
    p->chgSoundCmd->click();
    ASSERT_EQ(w->stripModel().count(), 1);
    EXPECT_EQ(soundOf(1), library + QStringLiteral("/tune.amr"));
    EXPECT_TRUE(w->isModified());
    EXPECT_EQ(fake.device.sent, kStopClose);

    // On the selected slide; a playing preview is stopped and the device closed once more.
    addSlides(QStringLiteral("B"));
    choose(QStringLiteral("TUNE.MID"));
    p->chgSoundCmd->click();
    EXPECT_EQ(soundOf(2), tune);
    w->soundPlayCmd->click();
    ASSERT_TRUE(w->isPlaying());
    fake.device.sent.clear();
    choose(QStringLiteral("tune.amr"));
    p->chgSoundCmd->click();
    EXPECT_EQ(soundOf(2), library + QStringLiteral("/tune.amr"));
    EXPECT_EQ(w->selectedSlide(), 2);
    EXPECT_FALSE(w->isPlaying());
    ASSERT_GE(fake.device.sent.size(), 2);
    EXPECT_EQ(fake.device.sent.mid(fake.device.sent.size() - 2), kStopClose);

    // 102400 bytes or a file that has gone: the slide keeps its sound and nothing is sent.
    fake.device.sent.clear();
    choose(QStringLiteral("big.amr"));
    p->chgSoundCmd->click();
    choose(QStringLiteral("TUNE.MID"));
    QFile::remove(tune);
    p->chgSoundCmd->click();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("E1"), QStringLiteral("E28")}));
    EXPECT_EQ(soundOf(2), library + QStringLiteral("/tune.amr"));
    EXPECT_TRUE(fake.device.sent.isEmpty());
}

TEST_F(SoundPanelTest, ACroppedTuneIsAttachedSavedAndReadBack) {
    // Closing the crop window changes nothing.
    choose(QStringLiteral("TUNE.MID"));
    p->cropCmd->click();
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_TRUE(w->message().IsEmpty());
    EXPECT_TRUE(fake.device.sent.isEmpty());

    addSlides(QStringLiteral("AB"));
    pick(1);
    const QString cropped = workspace::tmpMid(home.path()) + QStringLiteral("/55000.mid");
    fake.random.draws = {0.5};
    fake.dialogs.modalHooks.push_back([&](QDialog& d) {
        auto& crop = dynamic_cast<frmMMSCropMIDI&>(d);
        EXPECT_EQ(crop.txtName->text(), tune);
        EXPECT_EQ(crop.outfilename, cropped);
        EXPECT_TRUE(player.isOpen()) << "the tune is opened before the window shows";
        player.pos = 520;
        crop.Command2->click();
        player.pos = 1480;
        crop.Command3->click();
        crop.Command4->click();
    });
    fake.device.sent.clear();
    p->cropCmd->click();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(soundOf(1), cropped);
    EXPECT_EQ(w->selectedSlide(), 1);
    EXPECT_TRUE(w->isModified());
    EXPECT_EQ(fake.device.sent, kStopClose);

    // The cropped tune is what the preview plays.
    w->soundPlayCmd->click();
    EXPECT_EQ(fake.device.sent.mid(2, 1),
              QStringList{QStringLiteral("open \"%1\" Alias music").arg(cropped)});

    const MessageStore store(home.path());
    ASSERT_TRUE(store.save(w->message(), QStringLiteral("song"), QString()).isOk());
    QFile::remove(cropped);
    LoadedMessage back;
    ASSERT_TRUE(
        store
            .load(QStringLiteral("song"), workspace::messageFolder(home.path(), QStringLiteral("song")), back)
            .isOk());
    ASSERT_EQ(back.slides.size(), 2u);
    MidiDecoder decoder;
    decoder.resetMidiTables();
    decoder.decodeMidiFile(back.slides[0].soundPath);
    ASSERT_TRUE(decoder.midiDecoded()) << back.slides[0].soundPath.toStdString();
    EXPECT_EQ(decoder.noteTable(0, 0), QStringLiteral("4D5 4E5"));
    EXPECT_EQ(decoder.channelProgram(0), 19);
}

} // namespace
