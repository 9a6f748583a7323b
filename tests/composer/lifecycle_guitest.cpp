#include "composerfixture.h"
#include "store/workspace.h"

#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>

using namespace mms;
using namespace mms::test;

namespace {

class LifecycleTest : public ComposerTest {
protected:
    bool exists(const QString& relative) const { return QFileInfo::exists(home.file(relative)); }
    QStringList comboEntries(QComboBox* combo) const {
        QStringList out;
        for (int i = 0; i < combo->count(); ++i)
            out << combo->itemText(i);
        return out;
    }
    // The user closes the window; true when it closed.
    bool closeWindow() { return w->close(); }
};

TEST_F(LifecycleTest, FirstStartMakesTheWorkspaceAndSetsEveryCaption) {
    for (const char* folder : {"UserData", "UserData/MMS", "UserData/Sound", "UserData/Picture", "Temp",
                               "Temp/tmpJPG", "Temp/tmpMID"})
        EXPECT_TRUE(QFileInfo(home.file(QLatin1String(folder))).isDir()) << folder;

    EXPECT_EQ(w->windowTitle(), QStringLiteral("I0 - I1"));
    PicturePanel& pictures = *w->picturePanel;
    SoundPanel& sounds = *w->soundPanel;
    // clang-format off
    const std::pair<QString, int> captions[] = {
        {w->file->title(), 2}, {w->mnu_new->text(), 3}, {w->mnu_open->text(), 4},
        {w->mnu_save->text(), 5}, {w->mnu_saveAs->text(), 6}, {w->mnu_delete->text(), 7},
        {w->mnu_exit->text(), 8}, {w->slide->title(), 9}, {w->add_slide->text(), 10},
        {w->rm_slide->text(), 11}, {w->sendfront->text(), 12}, {w->sendback->text(), 13},
        {w->sendfwd->text(), 14}, {w->sendbwd->text(), 15}, {w->mnu_upload->text(), 63},
        {w->MenuTab->tabText(0), 17}, {w->MenuTab->tabText(1), 18}, {w->createCmd->text(), 63},
        {w->Frame1->title(), 24}, {w->Frame2->title(), 25}, {w->ffCmd->toolTip(), 12},
        {w->fCmd->toolTip(), 14}, {w->addCmd->toolTip(), 10}, {w->removeCmd->toolTip(), 11},
        {w->rCmd->toolTip(), 15}, {w->rrCmd->toolTip(), 13}, {w->soundPlayCmd->toolTip(), 28},
        {w->txtSlideDur->toolTip(), 61}, {pictures.imgChgDirBrowse->toolTip(), 19},
        {pictures.refreshcmd->text(), 20}, {pictures.chgImgCmd->text(), 21},
        {sounds.SoundChgDirBrowse->toolTip(), 19}, {sounds.cropCmd->text(), 23},
        {sounds.refresh2Cmd->text(), 20}, {sounds.chgSoundCmd->text(), 22},
    };
    // clang-format on
    for (const auto& [text, number] : captions)
        EXPECT_EQ(text, QStringLiteral("I%1").arg(number));
    EXPECT_EQ(comboEntries(pictures.imgTypeCombo),
              (QStringList{QStringLiteral("I29"), QStringLiteral("I30 (*.gif)"),
                           QStringLiteral("I31 (*.jpg)"), QStringLiteral("I32 (*.bmp)")}));
    EXPECT_EQ(
        comboEntries(sounds.soundTypeCombo),
        (QStringList{QStringLiteral("I33"), QStringLiteral("I34 (*.amr)"), QStringLiteral("I35 (*.mid)")}));
    EXPECT_EQ(pictures.imgTypeCombo->currentIndex(), 0);
    EXPECT_EQ(sounds.soundTypeCombo->currentIndex(), 0);
    EXPECT_EQ(pictures.imgDirPath->text(),
              QDir::toNativeSeparators(home.file(QStringLiteral("UserData/Picture"))));
    EXPECT_EQ(sounds.soundDirPath->text(),
              QDir::toNativeSeparators(home.file(QStringLiteral("UserData/Sound"))));

    // The empty message: only adding is possible.
    EXPECT_TRUE(w->add_slide->isEnabled() && w->addCmd->isEnabled());
    for (QAction* a : {w->rm_slide, w->sendfront, w->sendfwd, w->sendbwd, w->sendback, w->mnu_upload})
        EXPECT_FALSE(a->isEnabled()) << a->objectName().toStdString();
    for (QWidget* b : std::initializer_list<QWidget*>{w->ffCmd, w->fCmd, w->rCmd, w->rrCmd, w->removeCmd,
                                                      w->createCmd, w->soundPlayCmd, pictures.chgImgCmd,
                                                      sounds.chgSoundCmd, sounds.cropCmd})
        EXPECT_FALSE(b->isEnabled()) << b->objectName().toStdString();
    EXPECT_FALSE(w->isModified() || w->isPlaying());
    EXPECT_TRUE(w->messageState().currentFile.isEmpty());
}

TEST_F(LifecycleTest, StartingAgainKeepsFoldersAndTheirFiles) {
    w.reset();
    home.write(QStringLiteral("UserData/Picture/cat.gif"), "GIF89a");
    home.write(QStringLiteral("UserData/Sound/tune.mid"), "MThd");
    home.write(QStringLiteral("Temp/tmpJPG/old.jpg"), "x");
    start();
    for (const char* kept : {"UserData/Picture/cat.gif", "UserData/Sound/tune.mid", "Temp/tmpJPG/old.jpg"})
        EXPECT_TRUE(exists(QLatin1String(kept))) << kept;
}

TEST_F(LifecycleTest, AWorkspaceFolderThatCannotBeMadeStopsStartUp) {
    w.reset();
    ASSERT_TRUE(QDir(home.path()).removeRecursively());
    QDir().mkpath(home.path());
    home.write(QStringLiteral("Temp"), "a file where a folder belongs");
    frmMMSMain::Options options;
    options.appFolder = home.path();
    frmMMSMain window(fake.platform, loc, options);
    const Status s = window.Form_Load();
    ASSERT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(QDir::toNativeSeparators(home.file(QStringLiteral("Temp")))))
        << s.message().toStdString();
    EXPECT_TRUE(exists(QStringLiteral("UserData/MMS")));
}

TEST_F(LifecycleTest, AMissingLanguageFileStopsStartUpNamingTheFile) {
    TempDir noLanguages;
    Localisation empty;
    frmMMSMain::Options options;
    options.appFolder = home.path();
    options.languageFolder = noLanguages.path();
    options.languageCode = QStringLiteral("fra");
    frmMMSMain window(fake.platform, empty, options);
    const Status s = window.Form_Load();
    ASSERT_FALSE(s.isOk());
    EXPECT_TRUE(s.message().contains(QStringLiteral("French.lng"))) << s.message().toStdString();
}

TEST_F(LifecycleTest, ClosingAnUnchangedMessageAsksToExit) {
    fake.dialogs.answers = {Answer::No};
    EXPECT_FALSE(closeWindow());
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_EQ(fake.dialogs.shown[0].text, QStringLiteral("P4"));
    EXPECT_EQ(fake.dialogs.shown[0].title, QStringLiteral("I0"));
    EXPECT_EQ(fake.dialogs.shown[0].buttons, Buttons::YesNo);
    EXPECT_TRUE(exists(QStringLiteral("Temp/tmpJPG")));

    // Yes: the working copy and the scratch folders go, the user's folders stay.
    home.write(QStringLiteral("UserData/MMS/temp/pic1.jpg"), "x");
    home.write(QStringLiteral("UserData/MMS/temp.mmt"), "\"\"\n");
    home.write(QStringLiteral("UserData/MMS/party.mmt"), "\"\"\n");
    home.write(QStringLiteral("Temp/tmpJPG/a.jpg"), "x");
    fake.dialogs.answers = {Answer::Yes};
    EXPECT_TRUE(w->mnu_exit->isEnabled());
    w->mnu_exit->trigger();
    EXPECT_FALSE(w->isVisible());
    for (const char* gone : {"UserData/MMS/temp", "UserData/MMS/temp.mmt", "Temp"})
        EXPECT_FALSE(exists(QLatin1String(gone))) << gone;
    for (const char* kept : {"UserData/MMS/party.mmt", "UserData/Picture", "UserData/Sound"})
        EXPECT_TRUE(exists(QLatin1String(kept))) << kept;
}

TEST_F(LifecycleTest, ClosingAChangedMessageAsksToSaveWithItsCancelPaths) {
    w->addCmd->click();
    fake.dialogs.answers = {Answer::Cancel};
    EXPECT_FALSE(closeWindow());
    EXPECT_EQ(fake.dialogs.shown.at(0).text, QStringLiteral("P2"));
    EXPECT_EQ(fake.dialogs.shown.at(0).buttons, Buttons::YesNoCancel);
    EXPECT_EQ(fake.dialogs.shown.at(0).icon, Icon::Question);
    EXPECT_TRUE(exists(QStringLiteral("Temp")));

    // Yes, and the save does not happen (its name dialog is cancelled): the changes stay open.
    fake.dialogs.shown.clear();
    fake.dialogs.answers = {Answer::Yes};
    EXPECT_FALSE(closeWindow());
    EXPECT_EQ(fake.dialogs.shown.at(0).text, QStringLiteral("P2"));
    EXPECT_TRUE(w->isModified());
    EXPECT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_TRUE(exists(QStringLiteral("Temp")));

    // No: the changes are dropped and the clean-up runs.
    fake.dialogs.shown.clear();
    fake.dialogs.answers = {Answer::No};
    EXPECT_TRUE(closeWindow());
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P2")});
    EXPECT_FALSE(exists(QStringLiteral("Temp")));
}

TEST_F(LifecycleTest, CleanUpSkipsAMissingWorkingCopyAndStopsQuietlyAtAFailedStep) {
    // No temp.mmt: a folder called temp is not the working copy and stays.
    home.write(QStringLiteral("UserData/MMS/temp/keep.txt"), "x");
    ASSERT_TRUE(QDir(home.file(QStringLiteral("Temp/tmpJPG"))).removeRecursively());
    fake.dialogs.answers = {Answer::Yes};
    EXPECT_TRUE(closeWindow());
    EXPECT_TRUE(exists(QStringLiteral("UserData/MMS/temp/keep.txt")));
    // tmpJPG was already gone: the steps after it are skipped.
    EXPECT_TRUE(exists(QStringLiteral("Temp/tmpMID")));
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P4")});
}

TEST_F(LifecycleTest, SizeComboFitsTheLongestEntry) {
    QComboBox combo;
    combo.addItems({QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(frmMMSMain::SizeCombo(&combo),
              std::max(10, combo.fontMetrics().horizontalAdvance(QStringLiteral("a"))));
    combo.addItem(QStringLiteral("a much longer entry than the others"));
    EXPECT_EQ(frmMMSMain::SizeCombo(&combo),
              combo.fontMetrics().horizontalAdvance(QStringLiteral("a much longer entry than the others")));
}

} // namespace
