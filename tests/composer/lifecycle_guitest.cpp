#include "composerfixture.h"
#include "store/workspace.h"

#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QMenu>
#include <QTabWidget>

using namespace mms;
using namespace mms::test;

namespace {

class LifecycleTest : public ComposerTest {
protected:
    bool exists(const QString& relative) const { return QFileInfo::exists(home.file(relative)); }
    static QStringList comboEntries(QComboBox* combo) {
        QStringList out;
        for (int i = 0; i < combo->count(); ++i)
            out << combo->itemText(i);
        return out;
    }
    // A second window started with `options`; returns the failure message ("" when it started).
    QString startFails(frmMMSMain::Options options, Localisation& texts) {
        options.appFolder = home.path();
        frmMMSMain window(fake.platform, texts, options);
        const Status s = window.Form_Load();
        return s.isOk() ? QString() : s.message();
    }
};

TEST_F(LifecycleTest, FirstStartShowsTheCaptionsFoldersAndAnEmptyMessage) {
    EXPECT_EQ(w->windowTitle(), QStringLiteral("I0 - I1"));
    PicturePanel& pictures = *w->picturePanel;
    SoundPanel& sounds = *w->soundPanel;
    // Captions that share an entry with another control.
    // clang-format off
    const std::pair<QString, int> captions[] = {
        {w->mnu_upload->text(), 63}, {w->createCmd->text(), 63}, {w->ffCmd->toolTip(), 12},
        {w->rrCmd->toolTip(), 13}, {w->fCmd->toolTip(), 14}, {w->rCmd->toolTip(), 15},
        {pictures.imgChgDirBrowse->toolTip(), 19}, {sounds.SoundChgDirBrowse->toolTip(), 19},
        {pictures.refreshcmd->text(), 20}, {sounds.refresh2Cmd->text(), 20},
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
}

TEST_F(LifecycleTest, StartUpStopsOnAFolderItCannotMakeOrAMissingLanguageFile) {
    w.reset();
    ASSERT_TRUE(QDir(home.path()).removeRecursively() && QDir().mkpath(home.path()));
    home.write(QStringLiteral("Temp"), "a file where a folder belongs");
    QString message = startFails({}, loc);
    EXPECT_TRUE(message.contains(QDir::toNativeSeparators(home.file(QStringLiteral("Temp")))))
        << message.toStdString();
    EXPECT_TRUE(exists(QStringLiteral("UserData/MMS")));

    TempDir noLanguages;
    Localisation empty;
    frmMMSMain::Options options;
    options.languageFolder = noLanguages.path();
    options.languageCode = QStringLiteral("fra");
    message = startFails(options, empty);
    EXPECT_TRUE(message.contains(QStringLiteral("French.lng"))) << message.toStdString();
}

TEST_F(LifecycleTest, ClosingAnUnchangedMessageAsksToExit) {
    fake.dialogs.answers = {Answer::No};
    EXPECT_FALSE(w->close());
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
    w->mnu_exit->trigger();
    EXPECT_FALSE(w->isVisible());
    for (const char* gone : {"UserData/MMS/temp", "UserData/MMS/temp.mmt", "Temp"})
        EXPECT_FALSE(exists(QLatin1String(gone))) << gone;
    for (const char* kept : {"UserData/MMS/party.mmt", "UserData/Picture", "UserData/Sound"})
        EXPECT_TRUE(exists(QLatin1String(kept))) << kept;
}

TEST_F(LifecycleTest, ClosingAChangedMessageAsksToSaveWithItsCancelPaths) {
    w->addCmd->click();
    // Cancel, and Yes with the save's name dialog cancelled: the changes stay open.
    for (Answer answer : {Answer::Cancel, Answer::Yes}) {
        fake.dialogs.shown.clear();
        fake.dialogs.answers = {answer};
        EXPECT_FALSE(w->close());
        EXPECT_EQ(fake.dialogs.shown.at(0).text, QStringLiteral("P2"));
        EXPECT_EQ(fake.dialogs.shown.at(0).buttons, Buttons::YesNoCancel);
        EXPECT_EQ(fake.dialogs.shown.at(0).icon, Icon::Question);
        EXPECT_TRUE(w->isModified());
        EXPECT_EQ(w->message().getTotalSlide(), 1);
        EXPECT_TRUE(exists(QStringLiteral("Temp")));
    }
    // No: the changes are dropped and the clean-up runs.
    fake.dialogs.shown.clear();
    fake.dialogs.answers = {Answer::No};
    EXPECT_TRUE(w->close());
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P2")});
    EXPECT_FALSE(exists(QStringLiteral("Temp")));
}

TEST_F(LifecycleTest, CleanUpSkipsAMissingWorkingCopyAndStopsQuietlyAtAFailedStep) {
    // No temp.mmt: a folder called temp is not the working copy and stays.
    home.write(QStringLiteral("UserData/MMS/temp/keep.txt"), "x");
    ASSERT_TRUE(QDir(home.file(QStringLiteral("Temp/tmpJPG"))).removeRecursively());
    fake.dialogs.answers = {Answer::Yes};
    EXPECT_TRUE(w->close());
    EXPECT_TRUE(exists(QStringLiteral("UserData/MMS/temp/keep.txt")));
    // tmpJPG was already gone: the steps after it are skipped.
    EXPECT_TRUE(exists(QStringLiteral("Temp/tmpMID")));
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("P4")});
}

} // namespace
