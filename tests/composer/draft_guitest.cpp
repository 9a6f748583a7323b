// The draft: kept while there are unsaved changes, restored after a killed composer, removed when
// the changes are saved or given up, set aside when damaged.
#include "composer/draftstore.h"
#include "composerfixture.h"
#include "support/controls.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <cstdio>
#include <cstdlib>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

const char kHomeVariable[] = "MMS_DRAFT_CHILD_HOME";

class DraftTest : public ComposerTest {
protected:
    // Whether a draft lies in the workspace once the pending write or removal is done.
    bool draftNow() {
        w->flushDraft();
        return DraftStore(home.path()).exists();
    }
};

// The composer the test below starts as a child process: it edits a message, waits for its draft,
// then keeps running until it is killed.
[[noreturn]] void runChildComposer(const QString& home) {
    FakePlatform fake;
    Localisation loc;
    loc.setTexts(numberedTexts());
    frmMMSMain::Options options;
    options.appFolder = home;
    options.draftDelayMs = 20;
    frmMMSMain w(fake.platform, loc, options);
    if (!w.Form_Load()) std::exit(2);
    w.addCmd_Click();
    w.attachToCurrentSlide(u"imgPath"_s, home + u"/UserData/Picture/p.bmp"_s);
    w.txtText_Click();
    ctl<QPlainTextEdit>(w, "txtText")->setPlainText(u"Hello"_s);
    w.addCmd_Click();
    w.attachToCurrentSlide(u"soundPath"_s, home + u"/UserData/Sound/t.mid"_s);
    ctl<QLineEdit>(w, "txtSlideDur")->setText(u"7"_s);
    for (const QDeadlineTimer d(20000); !DraftStore(home).exists() && !d.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    std::printf("DRAFT-WRITTEN\n");
    std::fflush(stdout);
    QEventLoop().exec();
    std::exit(3);
}

} // namespace

TEST_F(DraftTest, AKilledComposerLeavesADraftToRestore) {
    if (const QString childHome = qEnvironmentVariable(kHomeVariable); !childHome.isEmpty())
        runChildComposer(childHome);
    const QString picture = savePicture(u"UserData/Picture/p.bmp"_s, Qt::red);
    home.write(u"UserData/Sound/t.mid"_s, "MThd");
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QLatin1String(kHomeVariable), home.path());
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(),
                {u"--gtest_filter=DraftTest.AKilledComposerLeavesADraftToRestore"_s});
    QByteArray output;
    for (const QDeadlineTimer d(30000);
         !output.contains("DRAFT-WRITTEN") && child.waitForReadyRead(d.remainingTime());)
        output += child.readAllStandardOutput();
    ASSERT_TRUE(output.contains("DRAFT-WRITTEN")) << output.toStdString();
    child.kill(); // SIGKILL: nothing of the composer's own shutdown runs
    child.waitForFinished();
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);

    // The next start offers the draft; Yes gives the message back as it was, still unsaved.
    w.reset();
    start();
    fake.dialogs.answers.push_back(Answer::Yes);
    w->offerDraftRestore();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P12"_s});
    ASSERT_EQ(strip(), u"Hello3s _7s"_s);
    EXPECT_EQ(w->message().nodeAt(1)->DataImgPath, picture);
    EXPECT_EQ(w->message().nodeAt(2)->DataSoundPath, home.file(u"UserData/Sound/t.mid"_s));
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
