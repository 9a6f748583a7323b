// Start-up, closing, what the composer keeps between runs, File > Open Recent, the About box and
// Qt's own texts in the interface language.
#include "composerfixture.h"
#include "image/picturefiles.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include "store/appfolder.h"
#include "store/messagestore.h"

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QSplitter>
#include <QTabWidget>
#include <QTest>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

using LifecycleTest = ComposerTest;

TEST_F(LifecycleTest, FirstStartShowsTheLibraryFoldersAndAMessageThatCanOnlyGrowOrStopsWithAReason) {
    EXPECT_EQ(w->windowTitle(), u"I0 - I1[*]"_s);
    EXPECT_EQ(ctl<QLineEdit>(w, "soundDirPath")->text(),
              QDir::toNativeSeparators(home.file(u"UserData/Sound"_s)));
    EXPECT_EQ(enabled({"add_slide", "addCmd", "rm_slide", "removeCmd", "createCmd", "mnu_upload",
                       "soundPlayCmd", "chgImgCmd", "chgSoundCmd", "cropCmd"}),
              u"1100000000"_s);
    EXPECT_EQ(moves(), u"0000 0000"_s);
    EXPECT_FALSE(w->isModified() || w->isPlaying() || w->isWindowModified());
    // The menus get their mnemonics; the Edit menu's one letter is the File menu's.
    EXPECT_EQ(ctl<QMenu>(w, "file")->title() + ctl<QMenu>(w, "edit")->title(), u"&I2I80(&E)"_s);

    // Start-up stops on a folder it cannot make and on a missing language file.
    w.reset();
    ASSERT_TRUE(QDir(home.path()).removeRecursively() && QDir().mkpath(home.path()));
    home.write(u"Temp"_s, "a file where a folder belongs");
    QString message = tryStart();
    EXPECT_TRUE(message.contains(QDir::toNativeSeparators(home.file(u"Temp"_s)))) << message.toStdString();
    TempDir noLanguages;
    options.languageFolder = noLanguages.path();
    options.languageCode = u"fra"_s;
    message = tryStart();
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

TEST_F(LifecycleTest, WindowColumnsFoldersAndTabAreKeptForTheNextRun) {
    const QString pictures = QDir::toNativeSeparators(home.file(u"My Pictures"_s));
    const QString sounds = QDir::toNativeSeparators(home.file(u"My Sounds"_s));
    QDir().mkpath(pictures);
    QDir().mkpath(sounds);
    ctl<QLineEdit>(w, "imgDirPath")->setText(pictures);
    ctl<QLineEdit>(w, "soundDirPath")->setText(sounds);
    ctl<QTabWidget>(w, "MenuTab")->setCurrentIndex(1);
    w->resize(900, 600);
    ctl<QSplitter>(w, "mainSplitter")->setSizes({300, 300, 300});
    const QList<int> columns = ctl<QSplitter>(w, "mainSplitter")->sizes();
    w->Form_Unload();

    start();
    EXPECT_EQ(ctl<PicturePanel>(w, "picturePanel")->libraryFolder(), pictures);
    EXPECT_EQ(ctl<SoundPanel>(w, "soundPanel")->libraryFolder(), sounds);
    EXPECT_EQ(ctl<QTabWidget>(w, "MenuTab")->currentIndex(), 1);
    EXPECT_EQ(w->size(), QSize(900, 600));
    EXPECT_EQ(ctl<QSplitter>(w, "mainSplitter")->sizes(), columns);

    // A folder that has gone since is not shown again.
    w->Form_Unload();
    QDir(pictures).removeRecursively();
    start();
    EXPECT_EQ(ctl<PicturePanel>(w, "picturePanel")->libraryFolder(),
              QDir::toNativeSeparators(home.file(u"UserData/Picture"_s)));
}

// How many names the list keeps is the recent list's own rule; here, that the menu follows it.
TEST_F(LifecycleTest, OpenRecentListsTheLastMessagesAndDropsMissingOnesWithAMessage) {
    EXPECT_FALSE(ctl<QMenu>(w, "mnu_openRecent")->menuAction()->isEnabled());
    for (const QString& name : {u"a"_s, u"b"_s, u"c"_s}) {
        CSlide slides;
        slides.InsertAtBack(SlideDur::fromText(u"3"_s), {}, name, {});
        ASSERT_TRUE(MessageStore(home.path()).save(slides, name, {}).isOk());
        w->openRecent(name);
    }
    EXPECT_EQ(strip(), u"c3s"_s);
    QStringList captions;
    for (const QAction* a : ctl<QMenu>(w, "mnu_openRecent")->actions())
        captions << a->text();
    EXPECT_EQ(captions, (QStringList{u"&1 c"_s, u"&2 b"_s, u"&3 a"_s}));
    ctl<QAction>(w, "mnu_recent2")->trigger();
    EXPECT_EQ(strip(), u"b3s"_s);
    EXPECT_EQ(w->recentMessages(), (QStringList{u"b"_s, u"c"_s, u"a"_s}));
    EXPECT_TRUE(fake.dialogs.shown.empty());

    // The list outlives the window; a message deleted meanwhile is dropped when chosen.
    w->Form_Unload();
    QFile::remove(home.file(u"UserData/MMS/a.mmt"_s));
    start();
    ctl<QAction>(w, "mnu_recent3")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E36"_s});
    EXPECT_EQ(w->recentMessages(), (QStringList{u"b"_s, u"c"_s}));
    EXPECT_TRUE(w->message().IsEmpty());
}

// The real window with the shipped texts, a library and a filled slide. With MMS_SCREENSHOT set to a
// file name the window is also saved there as a PNG, to look at.
TEST_F(LifecycleTest, ShowsTheFilledSlideAndTheAboutBoxWithTheShippedTexts) {
    const QColor sky(0x42, 0x85, 0xf4);
    const QString path = home.write(u"UserData/Picture/beach.jpg"_s, encoded(filled(320, 240, sky), "JPG"));
    // Qt's own texts follow the interface language, and the translation goes with the window.
    const QKeySequence save(Qt::CTRL | Qt::Key_S);
    startIn(u"ger"_s);
    EXPECT_EQ(save.toString(QKeySequence::NativeText), u"Strg+S"_s);
    EXPECT_EQ(ctl<QMenu>(w, "edit")->title(), u"&Bearbeiten"_s);
    startIn(u"en"_s);
    EXPECT_EQ(save.toString(QKeySequence::NativeText), u"Ctrl+S"_s);

    ctl<QToolButton>(w, "addCmd")->click();
    w->updateCurrentSlide(u"imgPath"_s, path);
    w->updateCurrentSlide(u"soundPath"_s, home.write(u"UserData/Sound/party.mid"_s, "MThd"));
    typeText(u"Happy birthday, Anna!"_s);
    w->lstSlide_ItemClick();
    w->show();
    // The picture library fills in the background.
    EXPECT_TRUE(QTest::qWaitFor([&] { return ctl<QListWidget>(w, "lstPicView")->count() == 1; }, 20000));
    const QImage shot = w->grab().toImage();
    if (const QString target = qEnvironmentVariable("MMS_SCREENSHOT"); !target.isEmpty()) shot.save(target);
    EXPECT_TRUE(w->windowTitle().startsWith(u"MMS Composer - "_s)) << w->windowTitle().toStdString();
    const QLabel* screen = ctl<QLabel>(w, "picPanel");
    EXPECT_TRUE(test::near(shot.pixelColor(screen->mapTo(w.get(), screen->rect().center())), sky));
    // The panel keeps the picture it decoded only while the file stays as it was.
    const QColor sand(0xf4, 0xc2, 0x42);
    home.write(u"UserData/Picture/beach.jpg"_s, encoded(filled(160, 120, sand), "JPG"));
    w->lstSlide_ItemClick();
    EXPECT_TRUE(
        test::near(w->grab().toImage().pixelColor(screen->mapTo(w.get(), screen->rect().center())), sand));

    ctl<QAction>(w, "mnu_about")->trigger();
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    const QString about = fake.dialogs.shown.front().text;
    EXPECT_TRUE(about.contains(u"Version "_s + programVersion()));
    for (const char* part :
         {"Qt " QT_VERSION_STR, "libarchive 3.", "libjpeg-turbo 2.", "FluidSynth 2.", "FFmpeg 5.",
          "FluidR3_GM sound font", "GNU LGPL 3.0", "BSD 2-Clause", "IJG", "GNU LGPL 2.1", "MIT"})
        EXPECT_TRUE(about.contains(QLatin1String(part))) << part;
    EXPECT_EQ(fake.dialogs.shown.front().title, u"About MMS Composer"_s);
}

} // namespace
