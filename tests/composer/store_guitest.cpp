// Saving, opening and deleting messages, their name dialogs, and the draft kept while changes are unsaved.
#include "composer/draftstore.h"
#include "composer/slidepicture.h"
#include "composerfixture.h"
#include "store/storefixture.h"
#include "store/widgets/frmmmsfiledelete.h"
#include "store/widgets/frmmmsfileopen.h"
#include "store/widgets/frmmmsfilesave.h"

#include <QLabel>
#include <QTest>
#include <QTreeWidget>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class StoreTest : public ComposerTest {
protected:
    // The user types `name` into the next name dialog and presses its action button.
    void answerDialog(const QString& name, const char* button = "cmdSave") {
        fake.dialogs.modalHooks.push_back([name, button](QDialog& d) {
            d.findChild<QLineEdit*>(u"txtName"_s)->setText(name);
            ctl<QPushButton>(d, button)->click();
        });
    }
    // Whether a draft lies in the workspace once the pending write or removal is done.
    bool draftNow() {
        w->flushDraft();
        return DraftStore(home.path()).exists();
    }
    bool stored(const QString& name) const { return exists(u"UserData/MMS/%1.mmt"_s.arg(name)); }
    void saveAs(const QString& name) {
        answerDialog(name);
        w->mnu_saveAs_Click();
    }
};

TEST_F(StoreTest, SaveAsNamesTheMessageSaveStoresItAgainAndDeleteKeepsTheCurrentOne) {
    compose();
    answerDialog(u"old"_s);
    ctl<QAction>(w, "mnu_save")->trigger(); // never saved: Save behaves as Save as
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P8"_s});
    EXPECT_TRUE(stored(u"old"_s));
    EXPECT_EQ(w->windowTitle(), u"I0 - old[*]"_s);
    EXPECT_FALSE(w->isModified());

    typeText(u"!"_s);
    fake.dialogs.shown.clear();
    w->mnu_save_Click(); // no dialog and no message this time
    EXPECT_TRUE(fake.dialogs.shown.empty() && fake.dialogs.modalRuns == 1);
    EXPECT_FALSE(w->isModified());

    saveAs(u"new"_s);
    fake.dialogs.shown.clear();
    answerDialog(u"old"_s, "cmdDelete");
    fake.dialogs.answers = {Answer::Yes};
    ctl<QAction>(w, "mnu_delete")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"P1"_s, u"P7"_s}));
    EXPECT_EQ(fake.dialogs.shown[0].title, u"I7"_s);
    EXPECT_FALSE(stored(u"old"_s));
    EXPECT_TRUE(stored(u"new"_s));
    EXPECT_EQ(w->messageState().currentFile, u"new"_s);
    EXPECT_EQ(w->message().getTotalSlide(), 3);
}

TEST_F(StoreTest, NewAsksFirstAndGoesOnAfterACancelledSaveAsButNotAfterAFailedSave) {
    compose();
    fake.dialogs.answers = {Answer::Cancel};
    ctl<QAction>(w, "mnu_new")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P3"_s});
    EXPECT_EQ(w->message().getTotalSlide(), 3);
    fake.dialogs.answers = {Answer::Yes}; // save first: the save-as dialog is cancelled, New goes on
    w->mnu_new_Click();
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_TRUE(w->message().IsEmpty() && w->stripModel().count() == 0);
    EXPECT_EQ(w->windowTitle(), u"I0 - I1[*]"_s);
    EXPECT_FALSE(w->isModified());

    compose();
    saveAs(u"trip"_s);
    // The picture disappears from the library; a Save as under a new name cannot copy it.
    ASSERT_TRUE(QFile::remove(picture));
    typeText(u"?"_s);
    fake.dialogs.shown.clear();
    saveAs(u"other"_s);
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_TRUE(fake.dialogs.shown[0].text.startsWith(u"E23"_s));
    EXPECT_FALSE(stored(u"other"_s));
    EXPECT_EQ(w->messageState().currentFile, u"trip"_s);
    EXPECT_TRUE(w->isModified());
    fake.dialogs.answers = {Answer::Yes}; // save first: it fails again, so nothing is dropped
    w->mnu_new_Click();
    EXPECT_EQ(w->message().getTotalSlide(), 3);
}

TEST_F(StoreTest, OpenRebuildsTheSlidesFromTheWorkingCopyAndAFailedOpenChangesNothing) {
    compose();
    saveAs(u"trip"_s);
    w->mnu_new_Click();
    fake.dialogs.shown.clear();

    answerDialog(u"trip"_s, "cmdOpen");
    ctl<QAction>(w, "mnu_open")->trigger();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();
    EXPECT_EQ(strip(), u"A5s B3s C3s"_s);
    EXPECT_NE(w->stripModel().thumbnail(1), blankThumbnail());
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), u"A"_s);
    EXPECT_FALSE(w->isModified());
    EXPECT_EQ(w->windowTitle(), u"I0 - trip[*]"_s);
    pick(2);
    EXPECT_EQ(ctl<QLabel>(w, "lblSoundName")->text(), u"trip-sound2.mid"_s);

    w->mnu_open_Click(); // cancelling the dialog changes nothing
    EXPECT_EQ(strip(), u"A5s B3s C3s"_s);
    typeText(u"!"_s);
    home.write(u"UserData/MMS/broken.mmt"_s, "\"subject\"\n3,I\n");
    QDir().mkpath(home.file(u"UserData/MMS/broken"_s));
    fake.dialogs.answers = {Answer::No}; // do not save the changes first
    answerDialog(u"broken"_s, "cmdOpen");
    w->mnu_open_Click();
    ASSERT_EQ(fake.dialogs.shown.size(), 2u);
    EXPECT_TRUE(fake.dialogs.shown[1].text.startsWith(u"E24"_s));
    EXPECT_EQ(strip(), u"A5s B!3s C3s"_s);
    EXPECT_EQ(w->messageState().currentFile, u"trip"_s);
    EXPECT_TRUE(w->isModified());
    // The slides refer into the working copy, which the failed open must not have replaced.
    const QString sound = w->message().nodeAt(2)->DataSoundPath;
    EXPECT_TRUE(sound.startsWith(home.file(u"UserData/MMS/temp/"_s))) << sound.toStdString();
    EXPECT_EQ(TempDir::read(sound), QByteArray(300, 'm'));
}

// A killed composer runs none of its own shutdown: the draft it wrote while the user worked must be
// enough. Here the first window is left as it is, never closed, while the next one starts.
TEST_F(StoreTest, AnAbandonedComposerLeavesADraftToRestore) {
    options.draftDelayMs = 20;
    start();
    w->messageState().currentFile = u"trip"_s;
    w->messageState().txtsubject = u"Hi"_s;
    compose();
    ASSERT_TRUE(QTest::qWaitFor([&] { return DraftStore(home.path()).exists(); }, 20000));
    const std::unique_ptr<frmMMSMain> abandoned = std::move(w);
    ASSERT_TRUE(QFile::remove(tune));

    // The next start offers the draft; Yes gives the message back as it was, still unsaved, without
    // the sound that went meanwhile, which is named.
    start();
    fake.dialogs.answers.push_back(Answer::Yes);
    w->offerDraftRestore();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"P12"_s, u"E38"_s}));
    ASSERT_EQ(strip(), u"A5s B3s C3s"_s);
    EXPECT_EQ(w->message().nodeAt(1)->DataImgPath, picture);
    EXPECT_TRUE(w->message().nodeAt(2)->DataSoundPath.isEmpty());
    EXPECT_NE(w->stripModel().thumbnail(1), w->stripModel().thumbnail(2)); // the picture's, a blank one
    EXPECT_EQ(w->selectedSlide(), 2);
    EXPECT_EQ(w->messageState().currentFile + w->messageState().txtsubject, u"tripHi"_s);
    EXPECT_EQ(w->windowTitle(), u"I0 - trip[*]"_s);
    EXPECT_TRUE(w->isModified() && w->isWindowModified());
    EXPECT_EQ(w->history().count(), 0);
}

TEST_F(StoreTest, ChangesKeepADraftThatSavingNewAndClosingRemove) {
    addSlides(u"A"_s);
    ASSERT_TRUE(draftNow());
    w->messageState().currentFile = u"kept"_s;
    w->mnu_save_Click();
    EXPECT_FALSE(draftNow());
    typeText(u"!"_s);
    ASSERT_TRUE(draftNow());
    w->mnu_new_Click();
    EXPECT_FALSE(draftNow());
    addSlides(u"B"_s);
    ASSERT_TRUE(draftNow());
    bool cancel = false;
    fake.dialogs.answers.push_back(Answer::No); // close without saving: the changes are given up
    w->Form_QueryUnload(cancel);
    EXPECT_FALSE(cancel || draftNow());

    // A draft declined at start-up goes; nothing is written over one not yet offered.
    const QByteArray left = encodeDraft(Draft{{}, {}, 0, {}});
    ASSERT_TRUE(DraftStore(home.path()).write(left).isOk());
    w.reset();
    start();
    addSlides(u"C"_s);
    w->flushDraft();
    EXPECT_EQ(TempDir::read(DraftStore(home.path()).path()), left);
    fake.dialogs.answers.push_back(Answer::No);
    w->offerDraftRestore();
    EXPECT_FALSE(draftNow());

    // A damaged draft is set aside with a message.
    ASSERT_TRUE(DraftStore(home.path()).write("{ not a draft").isOk());
    fake.dialogs.shown.clear();
    w->offerDraftRestore();
    ASSERT_EQ(fake.dialogs.texts(), QStringList{u"E35"_s});
    EXPECT_FALSE(DraftStore(home.path()).exists());
    EXPECT_EQ(TempDir::read(home.file(u"UserData/draft-damaged-20240517-143005.json"_s)), "{ not a draft");
}

class NameDialogsTest : public StoreFixture {
protected:
    void SetUp() override {
        texts.setTexts(numberedTexts());
        for (const QString& name : {u"zeta"_s, u"Alpha"_s, u"current"_s})
            ASSERT_TRUE(store.save(CSlide(), name, {}).isOk());
        ASSERT_TRUE(store.copyToWorkingCopy(u"zeta"_s).isOk());
        state.currentFile = u"current"_s;
        state.isCancel = true;
    }
    Localisation texts;
    RecordingSink sink;
    MessageState state;
};

TEST_F(NameDialogsTest, SaveDialogListsMessagesAndAsksBeforeReplacing) {
    frmMMSFileSave dialog(nullptr, texts, sink, store, state);
    EXPECT_FALSE(state.isCancel);
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowCloseButtonHint);
    auto* files = ctl<QTreeWidget>(dialog, "lstFile");
    QStringList rows;
    for (int i = 0; i < files->topLevelItemCount(); ++i)
        rows << files->topLevelItem(i)->text(0);
    EXPECT_EQ(rows, QStringList({u"Alpha"_s, u"current"_s, u"zeta"_s}));
    EXPECT_FALSE(files->topLevelItem(0)->text(1).isEmpty());

    // Spaces are dropped as they are typed; the button follows the box.
    auto* save = ctl<QPushButton>(dialog, "cmdSave");
    EXPECT_FALSE(save->isEnabled());
    type(dialog.txtName, u"n w"_s);
    EXPECT_EQ(dialog.txtName->text(), u"nw"_s);
    EXPECT_TRUE(save->isEnabled());
    dialog.txtName->setText(u"temp"_s);
    save->click();
    EXPECT_EQ(sink.texts(), QStringList{u"E22"_s});

    // An existing name: No stays in the dialog, Yes replaces.
    sink.shown.clear();
    emit files->itemClicked(files->topLevelItem(2), 0);
    sink.answers = {Answer::No, Answer::Yes};
    save->click();
    EXPECT_TRUE(state.currentFile == u"current"_s && dialog.result() == QDialog::Rejected);
    save->click();
    ASSERT_EQ(sink.shown.size(), 2u);
    EXPECT_TRUE(sink.shown[0].text == u"P9"_s && sink.shown[0].title == u"E15"_s);
    EXPECT_EQ(sink.shown[0].defaultAnswer, Answer::No);
    EXPECT_TRUE(state.isOverwrite && !state.isCancel);
    EXPECT_TRUE(state.currentFile == u"zeta"_s && dialog.result() == QDialog::Accepted);
}

TEST_F(NameDialogsTest, OpenAndDeleteRefuseInOrderAndEveryWayOutButTheActionCountsAsCancel) {
    frmMMSFileOpen open(nullptr, texts, sink, store, state);
    frmMMSFileDelete remove(nullptr, texts, sink, store, state);
    const auto refusal = [&](const QString& name, bool opening) {
        (opening ? open.txtName : remove.txtName)->setText(name);
        opening ? open.cmdOpen_Click() : remove.cmdDelete_Click();
        return sink.shown.empty() ? QString() : sink.shown.back().text;
    };
    const std::tuple<QString, const char*, const char*> cases[] = {{u"current"_s, "E14", "E11"},
                                                                   {QString(), "E12", "E12"},
                                                                   {u"temp"_s, "E22", "E22"},
                                                                   {u"Alpha "_s, "E13", "E13"}};
    for (const auto& [name, openError, deleteError] : cases) {
        EXPECT_EQ(refusal(name, true), QLatin1String(openError)) << name.toStdString();
        EXPECT_EQ(refusal(name, false), QLatin1String(deleteError)) << name.toStdString();
    }
    EXPECT_EQ(state.currentFile, u"current"_s);

    // Only the delete dialog lets a space through.
    type(open.txtName, u" "_s);
    type(remove.txtName, u" "_s);
    EXPECT_TRUE(open.txtName->text() == u"Alpha "_s && remove.txtName->text() == u"Alpha  "_s);

    const std::size_t shown = sink.shown.size();
    EXPECT_FALSE(state.isCancel);
    open.show();
    pressKey(&open, Qt::Key_Escape);
    EXPECT_TRUE(state.isCancel && !open.isVisible());
    state.isCancel = false;
    remove.show();
    remove.close();
    EXPECT_TRUE(state.isCancel && sink.shown.size() == shown);
    frmMMSFileSave save(nullptr, texts, sink, store, state);
    save.txtName->setText(u"x"_s);
    ctl<QPushButton>(save, "cmdCancel")->click();
    EXPECT_TRUE(state.isCancel);
    EXPECT_EQ(state.currentFile, u"current"_s);
}

} // namespace
