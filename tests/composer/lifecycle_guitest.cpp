#include "composerfixture.h"
#include "support/controls.h"
#include "common/workspace.h"

#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include <QAction>
#include <QComboBox>
#include <QDir>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

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

TEST_F(LifecycleTest, FirstStartShowsTheFiltersFoldersAndAnEmptyMessage) {
    EXPECT_EQ(w->windowTitle(), u"I0 - I1[*]"_s);
    PicturePanel& pictures = *ctl<PicturePanel>(w, "picturePanel");
    SoundPanel& sounds = *ctl<SoundPanel>(w, "soundPanel");
    EXPECT_EQ(comboEntries(ctl<QComboBox>(pictures, "imgTypeCombo")),
              (QStringList{u"I29"_s, u"I30 (*.gif)"_s, u"I31 (*.jpg)"_s, u"I32 (*.bmp)"_s}));
    EXPECT_EQ(comboEntries(ctl<QComboBox>(sounds, "soundTypeCombo")),
              (QStringList{u"I33"_s, u"I34 (*.amr)"_s, u"I35 (*.mid)"_s}));
    EXPECT_EQ(ctl<QLineEdit>(pictures, "imgDirPath")->text(), QDir::toNativeSeparators(home.file(u"UserData/Picture"_s)));
    EXPECT_EQ(ctl<QLineEdit>(sounds, "soundDirPath")->text(), QDir::toNativeSeparators(home.file(u"UserData/Sound"_s)));
    // The empty message: only adding is possible.
    EXPECT_TRUE(ctl<QAction>(w, "add_slide")->isEnabled() && ctl<QToolButton>(w, "addCmd")->isEnabled());
    for (QAction* a : {ctl<QAction>(w, "rm_slide"), ctl<QAction>(w, "sendfront"), ctl<QAction>(w, "sendfwd"), ctl<QAction>(w, "sendbwd"), ctl<QAction>(w, "sendback"), ctl<QAction>(w, "mnu_upload")})
        EXPECT_FALSE(a->isEnabled()) << a->objectName().toStdString();
    for (QWidget* b : std::initializer_list<QWidget*>{ctl<QToolButton>(w, "ffCmd"), ctl<QToolButton>(w, "fCmd"), ctl<QToolButton>(w, "rCmd"), ctl<QToolButton>(w, "rrCmd"), ctl<QToolButton>(w, "removeCmd"),
                                                      ctl<QPushButton>(w, "createCmd"), ctl<QToolButton>(w, "soundPlayCmd"), ctl<QPushButton>(pictures, "chgImgCmd"),
                                                      ctl<QPushButton>(sounds, "chgSoundCmd"), ctl<QPushButton>(sounds, "cropCmd")})
        EXPECT_FALSE(b->isEnabled()) << b->objectName().toStdString();
    EXPECT_FALSE(w->isModified() || w->isPlaying());
}

TEST_F(LifecycleTest, StartUpStopsOnAFolderItCannotMakeOrAMissingLanguageFile) {
    w.reset();
    ASSERT_TRUE(QDir(home.path()).removeRecursively() && QDir().mkpath(home.path()));
    home.write(u"Temp"_s, "a file where a folder belongs");
    QString message = startFails({}, loc);
    EXPECT_TRUE(message.contains(QDir::toNativeSeparators(home.file(u"Temp"_s)))) << message.toStdString();
    EXPECT_TRUE(exists(u"UserData/MMS"_s));
    TempDir noLanguages;
    Localisation empty;
    frmMMSMain::Options options;
    options.languageFolder = noLanguages.path();
    options.languageCode = u"fra"_s;
    message = startFails(options, empty);
    EXPECT_TRUE(message.contains(u"French.lng"_s)) << message.toStdString();
}

TEST_F(LifecycleTest, ClosingAnUnchangedMessageAsksToExit) {
    fake.dialogs.answers = {Answer::No};
    EXPECT_FALSE(w->close());
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_EQ(fake.dialogs.shown[0].text, u"P4"_s);
    EXPECT_EQ(fake.dialogs.shown[0].title, u"I0"_s);
    EXPECT_EQ(fake.dialogs.shown[0].buttons, Buttons::YesNo);
    EXPECT_TRUE(exists(u"Temp/tmpJPG"_s));
    // Yes: the working copy and the scratch folders go, the user's folders stay.
    home.write(u"UserData/MMS/temp/pic1.jpg"_s, "x");
    home.write(u"UserData/MMS/temp.mmt"_s, "\"\"\n");
    home.write(u"UserData/MMS/party.mmt"_s, "\"\"\n");
    home.write(u"Temp/tmpJPG/a.jpg"_s, "x");
    fake.dialogs.answers = {Answer::Yes};
    ctl<QAction>(w, "mnu_exit")->trigger();
    EXPECT_FALSE(w->isVisible());
    for (const char* gone : {"UserData/MMS/temp", "UserData/MMS/temp.mmt", "Temp"})
        EXPECT_FALSE(exists(QLatin1String(gone))) << gone;
    for (const char* kept : {"UserData/MMS/party.mmt", "UserData/Picture", "UserData/Sound"})
        EXPECT_TRUE(exists(QLatin1String(kept))) << kept;
}

TEST_F(LifecycleTest, ClosingAChangedMessageAsksToSaveWithItsCancelPaths) {
    ctl<QToolButton>(w, "addCmd")->click();
    // Cancel, and Yes with the save's name dialog cancelled: the changes stay open.
    for (Answer answer : {Answer::Cancel, Answer::Yes}) {
        fake.dialogs.shown.clear();
        fake.dialogs.answers = {answer};
        EXPECT_FALSE(w->close());
        EXPECT_EQ(fake.dialogs.shown.at(0).text, u"P2"_s);
        EXPECT_EQ(fake.dialogs.shown.at(0).buttons, Buttons::YesNoCancel);
        EXPECT_EQ(fake.dialogs.shown.at(0).icon, Icon::Question);
        EXPECT_TRUE(w->isModified());
        EXPECT_EQ(w->message().getTotalSlide(), 1);
        EXPECT_TRUE(exists(u"Temp"_s));
    }
    // No: the changes are dropped and the clean-up runs.
    fake.dialogs.shown.clear();
    fake.dialogs.answers = {Answer::No};
    EXPECT_TRUE(w->close());
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P2"_s});
    EXPECT_FALSE(exists(u"Temp"_s));
}

TEST_F(LifecycleTest, CleanUpSkipsAMissingWorkingCopyAndStopsQuietlyAtAFailedStep) {
    // No temp.mmt: a folder called temp is not the working copy and stays.
    home.write(u"UserData/MMS/temp/keep.txt"_s, "x");
    ASSERT_TRUE(QDir(home.file(u"Temp/tmpJPG"_s)).removeRecursively());
    fake.dialogs.answers = {Answer::Yes};
    EXPECT_TRUE(w->close());
    EXPECT_TRUE(exists(u"UserData/MMS/temp/keep.txt"_s));
    // tmpJPG was already gone: the steps after it are skipped.
    EXPECT_TRUE(exists(u"Temp/tmpMID"_s));
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P4"_s});
}

} // namespace
