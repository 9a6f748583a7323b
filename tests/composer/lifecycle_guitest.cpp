#include "composerfixture.h"
#include "image/picturefiles.h"
#include "support/controls.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QTest>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class LifecycleTest : public ComposerTest {
protected:
    bool exists(const QString& relative) const { return QFileInfo::exists(home.file(relative)); }
    // A second window started with `options`; returns the failure message ("" when it started).
    QString startFails(frmMMSMain::Options options, Localisation& texts) {
        options.appFolder = home.path();
        frmMMSMain window(fake.platform, texts, options);
        const Status s = window.Form_Load();
        return s.isOk() ? QString() : s.message();
    }
};

TEST_F(LifecycleTest, FirstStartShowsTheLibraryFoldersAndAMessageThatCanOnlyGrow) {
    EXPECT_EQ(w->windowTitle(), u"I0 - I1[*]"_s);
    EXPECT_EQ(ctl<QLineEdit>(w, "imgDirPath")->text(),
              QDir::toNativeSeparators(home.file(u"UserData/Picture"_s)));
    EXPECT_EQ(ctl<QLineEdit>(w, "soundDirPath")->text(),
              QDir::toNativeSeparators(home.file(u"UserData/Sound"_s)));
    EXPECT_EQ(enabled({"add_slide", "addCmd", "rm_slide", "removeCmd", "createCmd", "mnu_upload",
                       "soundPlayCmd", "chgImgCmd", "chgSoundCmd", "cropCmd"}),
              u"1100000000"_s);
    EXPECT_EQ(moves(), u"0000 0000"_s);
    EXPECT_FALSE(w->isModified() || w->isPlaying());
}

TEST_F(LifecycleTest, StartUpStopsOnAFolderItCannotMakeOrAMissingLanguageFile) {
    w.reset();
    ASSERT_TRUE(QDir(home.path()).removeRecursively() && QDir().mkpath(home.path()));
    home.write(u"Temp"_s, "a file where a folder belongs");
    QString message = startFails({}, loc);
    EXPECT_TRUE(message.contains(QDir::toNativeSeparators(home.file(u"Temp"_s)))) << message.toStdString();
    TempDir noLanguages;
    Localisation empty;
    frmMMSMain::Options options;
    options.languageFolder = noLanguages.path();
    options.languageCode = u"fra"_s;
    message = startFails(options, empty);
    EXPECT_TRUE(message.contains(u"French.lng"_s)) << message.toStdString();
}

TEST_F(LifecycleTest, ClosingAnUnchangedMessageAsksToExitAndCleansUpWithoutAWord) {
    fake.dialogs.answers = {Answer::No};
    EXPECT_FALSE(w->close());
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    const Message& asked = fake.dialogs.shown[0];
    EXPECT_TRUE(asked.text == u"P4"_s && asked.title == u"I0"_s && asked.buttons == Buttons::YesNo);
    // Yes: the working copy goes; the clean-up stops quietly at the scratch folder that is gone already.
    home.write(u"UserData/MMS/temp.mmt"_s, "\"\"\n");
    home.write(u"UserData/MMS/temp/pic1.jpg"_s, "x");
    ASSERT_TRUE(QDir(home.file(u"Temp/tmpJPG"_s)).removeRecursively());
    w->show();
    fake.dialogs.answers = {Answer::Yes};
    ctl<QAction>(w, "mnu_exit")->trigger();
    EXPECT_FALSE(w->isVisible());
    EXPECT_FALSE(exists(u"UserData/MMS/temp.mmt"_s) || exists(u"UserData/MMS/temp"_s));
    EXPECT_TRUE(exists(u"Temp/tmpMID"_s));
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"P4"_s, u"P4"_s}));
}

TEST_F(LifecycleTest, ClosingAChangedMessageAsksToSaveAndOnlyNoDropsTheChanges) {
    ctl<QToolButton>(w, "addCmd")->click();
    // Yes runs the save, whose name dialog is cancelled here: the changes stay open, as with Cancel.
    for (Answer answer : {Answer::Cancel, Answer::Yes, Answer::No}) {
        fake.dialogs.shown.clear();
        fake.dialogs.answers = {answer};
        EXPECT_EQ(w->close(), answer == Answer::No);
        ASSERT_EQ(fake.dialogs.shown.size(), 1u);
        const Message& asked = fake.dialogs.shown[0];
        EXPECT_TRUE(asked.text == u"P2"_s && asked.buttons == Buttons::YesNoCancel &&
                    asked.icon == Icon::Question);
        EXPECT_EQ(exists(u"Temp"_s), answer != Answer::No);
    }
}

// The real window with the shipped English texts, a library and a filled slide. With MMS_SCREENSHOT
// set to a file name the window is also saved there as a PNG, to look at.
TEST(ComposerWindow, ShowsTheFilledSlideWithTheShippedTexts) {
    TempDir home;
    FakePlatform fake;
    Localisation loc;
    frmMMSMain::Options options;
    options.appFolder = home.path();
    options.languageFolder = QStringLiteral(MMS_BIN_DIR);
    options.languageCode = u"en"_s;
    const QColor sky(0x42, 0x85, 0xf4);
    QImage picture(320, 240, QImage::Format_RGB32);
    picture.fill(sky);
    const QString path = home.write(u"UserData/Picture/beach.jpg"_s, {});
    ASSERT_TRUE(picture.save(path));

    frmMMSMain w(fake.platform, loc, options);
    ASSERT_TRUE(w.Form_Load().isOk());
    ctl<QToolButton>(w, "addCmd")->click();
    w.updateCurrentSlide(u"imgPath"_s, path);
    w.updateCurrentSlide(u"soundPath"_s, home.write(u"UserData/Sound/party.mid"_s, "MThd"));
    w.txtText_Click();
    ctl<QPlainTextEdit>(w, "txtText")->setPlainText(u"Happy birthday, Anna!"_s);
    w.lstSlide_ItemClick();
    w.show();
    // The picture library fills in the background.
    EXPECT_TRUE(QTest::qWaitFor([&] { return ctl<QListWidget>(w, "lstPicView")->count() == 1; }, 20000));
    const QImage shot = w.grab().toImage();
    if (const QString target = qEnvironmentVariable("MMS_SCREENSHOT"); !target.isEmpty()) shot.save(target);
    EXPECT_TRUE(w.windowTitle().startsWith(u"MMS Composer - "_s)) << w.windowTitle().toStdString();
    const QLabel* screen = ctl<QLabel>(w, "picPanel");
    EXPECT_TRUE(test::near(shot.pixelColor(screen->mapTo(&w, screen->rect().center())), sky));
    w.Form_Unload();
}

} // namespace
