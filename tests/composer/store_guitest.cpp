#include "composer/slidepicture.h"
#include "support/controls.h"
#include "composerfixture.h"
#include "store/widgets/frmmmsfiledelete.h"
#include "store/widgets/frmmmsfileopen.h"
#include "store/widgets/frmmmsfilesave.h"

#include <QLabel>

using namespace mms;
using namespace mms::test;

namespace {

class StoreTest : public ComposerTest {
protected:
    // The user types `name` into the next name dialog and presses its action button.
    template <typename Dialog> void answerDialog(const QString& name) {
        fake.dialogs.modalHooks.push_back([name](QDialog& d) {
            auto& dialog = dynamic_cast<Dialog&>(d);
            dialog.txtName->setText(name);
            if constexpr (std::is_same_v<Dialog, frmMMSFileSave>) ctl<QPushButton>(dialog, "cmdSave")->click();
            if constexpr (std::is_same_v<Dialog, frmMMSFileOpen>) ctl<QPushButton>(dialog, "cmdOpen")->click();
            if constexpr (std::is_same_v<Dialog, frmMMSFileDelete>) ctl<QPushButton>(dialog, "cmdDelete")->click();
        });
    }
    bool stored(const QString& name) const {
        return QFileInfo::exists(home.file(QStringLiteral("UserData/MMS/%1.mmt").arg(name)));
    }
    void saveAs(const QString& name) {
        answerDialog<frmMMSFileSave>(name);
        w->mnu_saveAs_Click();
    }
    // Two slides: "A" with a picture and 5 seconds, "B" with a sound.
    void composeTwoSlides() {
        addSlides(QStringLiteral("AB"));
        pick(1);
        typeDuration(QStringLiteral("5"));
        picture = savePicture(QStringLiteral("UserData/Picture/green.png"), Qt::green);
        w->updateCurrentSlide(QStringLiteral("imgPath"), picture);
        pick(2);
        w->updateCurrentSlide(QStringLiteral("soundPath"),
                              home.write(QStringLiteral("UserData/Sound/tune.mid"), QByteArray(300, 'm')));
    }
    QString picture;
};

TEST_F(StoreTest, SaveAsNamesTheMessageSaveStoresItAgainAndDeleteKeepsTheCurrentOne) {
    composeTwoSlides();
    answerDialog<frmMMSFileSave>(QStringLiteral("old"));
    ctl<QAction>(w, "mnu_save")->trigger(); // never saved: Save behaves as Save as
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P8")});
    EXPECT_TRUE(stored(QStringLiteral("old")));
    EXPECT_EQ(w->windowTitle(), QStringLiteral("I0 - old[*]"));
    EXPECT_FALSE(w->isModified());

    typeText(QStringLiteral("!"));
    fake.dialogs.shown.clear();
    w->mnu_save_Click();
    EXPECT_TRUE(fake.dialogs.shown.empty());
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_FALSE(w->isModified());

    saveAs(QStringLiteral("new"));
    fake.dialogs.shown.clear();
    answerDialog<frmMMSFileDelete>(QStringLiteral("old"));
    fake.dialogs.answers = {Answer::Yes};
    ctl<QAction>(w, "mnu_delete")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("P1"), QStringLiteral("P7")}));
    EXPECT_EQ(fake.dialogs.shown[0].title, QStringLiteral("I7"));
    EXPECT_FALSE(stored(QStringLiteral("old")));
    EXPECT_TRUE(stored(QStringLiteral("new")));
    EXPECT_EQ(w->messageState().currentFile, QStringLiteral("new"));
    EXPECT_EQ(w->message().getTotalSlide(), 2);
}

TEST_F(StoreTest, ASaveThatFailsKeepsTheNameTheChangesAndTheStoredCopy) {
    composeTwoSlides();
    saveAs(QStringLiteral("trip"));
    const QByteArray index = TempDir::read(home.file(QStringLiteral("UserData/MMS/trip.mmt")));

    // The picture disappears from the library; a Save as under a new name cannot copy it.
    ASSERT_TRUE(QFile::remove(picture));
    typeText(QStringLiteral("?"));
    fake.dialogs.shown.clear();
    saveAs(QStringLiteral("other"));
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_TRUE(fake.dialogs.shown[0].text.startsWith(QStringLiteral("E23")));
    EXPECT_FALSE(stored(QStringLiteral("other")));
    EXPECT_EQ(w->messageState().currentFile, QStringLiteral("trip"));
    EXPECT_TRUE(w->isModified());
    EXPECT_EQ(TempDir::read(home.file(QStringLiteral("UserData/MMS/trip.mmt"))), index);

    // New does not drop a message whose save just failed.
    fake.dialogs.answers = {Answer::Yes};
    w->mnu_new_Click();
    EXPECT_EQ(w->message().getTotalSlide(), 2);
}

TEST_F(StoreTest, NewAsksAboutChangesAndGoesOnAfterACancelledSaveAs) {
    composeTwoSlides();
    fake.dialogs.answers = {Answer::Cancel};
    ctl<QAction>(w, "mnu_new")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P3")});
    EXPECT_EQ(w->message().getTotalSlide(), 2);

    fake.dialogs.answers = {Answer::Yes}; // then the save-as dialog is cancelled
    w->mnu_new_Click();
    EXPECT_EQ(fake.dialogs.modalRuns, 1);
    EXPECT_TRUE(w->message().IsEmpty());
    EXPECT_EQ(w->stripModel().count(), 0);
    EXPECT_EQ(w->windowTitle(), QStringLiteral("I0 - I1[*]"));
    EXPECT_FALSE(w->isModified());
    EXPECT_FALSE(ctl<QToolButton>(w, "ffCmd")->isEnabled() || ctl<QAction>(w, "sendback")->isEnabled());
}

TEST_F(StoreTest, OpenRebuildsTheSlidesFromTheWorkingCopy) {
    composeTwoSlides();
    saveAs(QStringLiteral("trip"));
    w->mnu_new_Click();
    fake.dialogs.shown.clear();

    answerDialog<frmMMSFileOpen>(QStringLiteral("trip"));
    ctl<QAction>(w, "mnu_open")->trigger();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(order(), QStringLiteral("AB"));
    EXPECT_EQ(labels(), (QStringList{label(1, 5), label(2, 3)}));
    expectInStep();
    EXPECT_NE(w->stripModel().thumbnail(1), blankThumbnail());
    EXPECT_EQ(w->stripModel().thumbnail(2), blankThumbnail());
    const QString workingCopy = home.file(QStringLiteral("UserData/MMS/temp/"));
    EXPECT_TRUE(w->message().firstItem()->DataImgPath.startsWith(workingCopy));
    EXPECT_TRUE(w->message().lastItem()->DataSoundPath.startsWith(workingCopy));
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("A"));
    EXPECT_FALSE(w->isModified());
    EXPECT_EQ(w->windowTitle(), QStringLiteral("I0 - trip[*]"));

    pick(2);
    EXPECT_EQ(ctl<QLabel>(w, "lblSoundName")->text(), QStringLiteral("trip-sound2.mid"));

    // Cancelling the dialog changes nothing.
    w->mnu_open_Click();
    EXPECT_EQ(order(), QStringLiteral("AB"));
    EXPECT_EQ(w->messageState().currentFile, QStringLiteral("trip"));
}

TEST_F(StoreTest, AMessageThatCannotBeOpenedChangesNothing) {
    addSlides(QStringLiteral("X"));
    home.write(QStringLiteral("UserData/MMS/broken.mmt"), "\"subject\"\n3,I\n");
    QDir().mkpath(home.file(QStringLiteral("UserData/MMS/broken")));
    fake.dialogs.answers = {Answer::No}; // do not save the changes first
    answerDialog<frmMMSFileOpen>(QStringLiteral("broken"));
    w->mnu_open_Click();
    ASSERT_EQ(fake.dialogs.shown.size(), 2u);
    EXPECT_TRUE(fake.dialogs.shown[1].text.startsWith(QStringLiteral("E24")));
    EXPECT_EQ(order(), QStringLiteral("X"));
    EXPECT_TRUE(w->messageState().currentFile.isEmpty());
    EXPECT_TRUE(w->isModified());
}

} // namespace
