// The draft: kept while there are unsaved changes, restored after a killed composer, removed when
// the changes are saved or given up, set aside when damaged.
#include "composer/draftstore.h"
#include "composerfixture.h"

#include <QTest>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class DraftTest : public ComposerTest {
protected:
    // Whether a draft lies in the workspace once the pending write or removal is done.
    bool draftNow() {
        w->flushDraft();
        return DraftStore(home.path()).exists();
    }
};

} // namespace

// A killed composer runs none of its own shutdown: the draft it wrote while the user worked must be
// enough. Here the first window is left as it is, never closed, while the next one starts.
TEST_F(DraftTest, AnAbandonedComposerLeavesADraftToRestore) {
    options.draftDelayMs = 20;
    start();
    compose();
    ASSERT_TRUE(QTest::qWaitFor([&] { return DraftStore(home.path()).exists(); }, 20000));
    const std::unique_ptr<frmMMSMain> abandoned = std::move(w);

    // The next start offers the draft; Yes gives the message back as it was, still unsaved.
    start();
    fake.dialogs.answers.push_back(Answer::Yes);
    w->offerDraftRestore();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P12"_s});
    ASSERT_EQ(strip(), u"A5s B3s C3s"_s);
    EXPECT_EQ(w->message().nodeAt(1)->DataImgPath, picture);
    EXPECT_EQ(w->message().nodeAt(2)->DataSoundPath, tune);
    EXPECT_NE(w->stripModel().thumbnail(1), w->stripModel().thumbnail(2)); // the picture's, a blank one
    EXPECT_EQ(w->selectedSlide(), 2);
    EXPECT_TRUE(w->isModified() && w->isWindowModified());
    EXPECT_EQ(w->history().count(), 0);
}

TEST_F(DraftTest, ChangesKeepADraftThatSavingNewAndClosingRemove) {
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
}

TEST_F(DraftTest, ADamagedDraftIsSetAsideWithAMessageAndMissingMediaAreNamed) {
    ASSERT_TRUE(DraftStore(home.path()).write("{ not a draft").isOk());
    w->offerDraftRestore();
    ASSERT_EQ(fake.dialogs.texts(), QStringList{u"E35"_s});
    EXPECT_FALSE(DraftStore(home.path()).exists());
    EXPECT_EQ(TempDir::read(home.file(u"UserData/draft-damaged-20240517-143005.json"_s)), "{ not a draft");

    const Draft draft{
        u"trip"_s, u"Hi"_s, 1, {SlideContent{SlideDur::fromNumber(4), home.file(u"gone.bmp"_s), u"T"_s, {}}}};
    ASSERT_TRUE(DraftStore(home.path()).write(encodeDraft(draft)).isOk());
    fake.dialogs.shown.clear();
    fake.dialogs.answers.push_back(Answer::Yes);
    w->offerDraftRestore();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"P12"_s, u"E38"_s}));
    EXPECT_EQ(strip(), u"T4s"_s);
    EXPECT_TRUE(w->message().nodeAt(1)->DataImgPath.isEmpty());
    EXPECT_EQ(w->messageState().currentFile + w->messageState().txtsubject, u"tripHi"_s);
    EXPECT_EQ(w->windowTitle(), u"I0 - trip[*]"_s);
}
