// What the composer keeps between runs, File > Open Recent, the About box, Qt's own texts in the
// interface language, mnemonics and the unsaved-changes marker.
#include "composerfixture.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include "store/appfolder.h"
#include "store/messagestore.h"
#include "support/controls.h"

#include <QMenu>
#include <QSplitter>
#include <QTabWidget>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class SessionTest : public ComposerTest {
protected:
    void SetUp() override {
        loc.setTexts(numberedTexts());
        startWithSettings();
    }
    void startWithSettings(const QString& languageCode = {}, const QString& languageFolder = {}) {
        frmMMSMain::Options options;
        options.appFolder = home.path();
        options.settingsFile = home.file(u"settings.ini"_s);
        options.languageCode = languageCode;
        options.languageFolder = languageFolder;
        w = std::make_unique<frmMMSMain>(fake.platform, loc, options);
        ASSERT_TRUE(w->Form_Load().isOk());
    }
    void store(const QString& name) {
        CSlide slides;
        slides.InsertAtBack(SlideDur::fromText(u"3"_s), {}, name, {});
        ASSERT_TRUE(MessageStore(home.path()).save(slides, name, {}).isOk());
    }
    QStringList recentCaptions() const {
        QStringList out;
        for (const QAction* a : ctl<QMenu>(w, "mnu_openRecent")->actions())
            out << a->text();
        return out;
    }
};

TEST_F(SessionTest, WindowColumnsFoldersAndTabAreKeptForTheNextRun) {
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

    startWithSettings();
    EXPECT_EQ(ctl<PicturePanel>(w, "picturePanel")->libraryFolder(), pictures);
    EXPECT_EQ(ctl<SoundPanel>(w, "soundPanel")->libraryFolder(), sounds);
    EXPECT_EQ(ctl<QTabWidget>(w, "MenuTab")->currentIndex(), 1);
    EXPECT_EQ(w->size(), QSize(900, 600));
    EXPECT_EQ(ctl<QSplitter>(w, "mainSplitter")->sizes(), columns);

    // A folder that has gone since is not shown again.
    w->Form_Unload();
    QDir(pictures).removeRecursively();
    startWithSettings();
    EXPECT_EQ(ctl<PicturePanel>(w, "picturePanel")->libraryFolder(),
              QDir::toNativeSeparators(home.file(u"UserData/Picture"_s)));
}

TEST_F(SessionTest, OpenRecentListsTheLastEightMessagesAndDropsMissingOnesWithAMessage) {
    EXPECT_FALSE(ctl<QMenu>(w, "mnu_openRecent")->menuAction()->isEnabled());
    for (char c = 'a'; c <= 'i'; ++c) {
        store(QString(QLatin1Char(c)));
        w->openRecent(QString(QLatin1Char(c)));
    }
    EXPECT_EQ(strip(), u"i3s"_s);
    EXPECT_EQ(recentCaptions(), (QStringList{u"&1 i"_s, u"&2 h"_s, u"&3 g"_s, u"&4 f"_s, u"&5 e"_s, u"&6 d"_s,
                                             u"&7 c"_s, u"&8 b"_s}));
    ctl<QAction>(w, "mnu_recent2")->trigger();
    EXPECT_EQ(strip(), u"h3s"_s);
    EXPECT_EQ(w->recentMessages().first(), u"h"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty());

    // The list outlives the window; a message deleted meanwhile is dropped when chosen.
    w->Form_Unload();
    QFile::remove(home.file(u"UserData/MMS/c.mmt"_s));
    startWithSettings();
    ctl<QAction>(w, "mnu_recent7")->trigger();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E36"_s});
    EXPECT_FALSE(w->recentMessages().contains(u"c"_s));
    EXPECT_EQ(w->recentMessages().size(), 7);
    EXPECT_TRUE(w->message().IsEmpty());
}

TEST_F(SessionTest, MenusHaveMnemonicsAndTheTitleMarksUnsavedChanges) {
    EXPECT_EQ(ctl<QMenu>(w, "file")->title(), u"&I2"_s);
    EXPECT_EQ(ctl<QMenu>(w, "edit")->title(), u"I80(&E)"_s); // its one letter is the File menu's
    EXPECT_EQ(ctl<QAction>(w, "mnu_new")->text(), u"&I3"_s);
    EXPECT_FALSE(w->isWindowModified());
    addSlides(u"A"_s);
    EXPECT_TRUE(w->isWindowModified());
    EXPECT_EQ(w->windowTitle(), u"I0 - I1[*]"_s);
}

TEST_F(SessionTest, AboutNamesTheVersionLibrariesAndSoundFontWithTheirLicences) {
    startWithSettings(u"en"_s, QStringLiteral(MMS_BIN_DIR));
    ctl<QAction>(w, "mnu_about")->trigger();
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    const QString about = fake.dialogs.shown.front().text;
    EXPECT_TRUE(about.contains(u"Version "_s + programVersion()));
    for (const char* part :
         {"Qt " QT_VERSION_STR, "libarchive 3.", "libjpeg-turbo 2.", "FluidSynth 2.", "FluidR3_GM sound font",
          "GNU LGPL 3.0", "BSD 2-Clause", "IJG", "GNU LGPL 2.1", "MIT"})
        EXPECT_TRUE(about.contains(QLatin1String(part))) << part;
    EXPECT_EQ(fake.dialogs.shown.front().title, u"About MMS Composer"_s);
}

TEST_F(SessionTest, QtsOwnTextsFollowTheInterfaceLanguage) {
    const QKeySequence save(Qt::CTRL | Qt::Key_S);
    startWithSettings(u"ger"_s, QStringLiteral(MMS_BIN_DIR));
    EXPECT_EQ(save.toString(QKeySequence::NativeText), u"Strg+S"_s);
    EXPECT_EQ(ctl<QMenu>(w, "edit")->title(), u"&Bearbeiten"_s);
    w.reset(); // the translation goes with the window
    EXPECT_EQ(save.toString(QKeySequence::NativeText), u"Ctrl+S"_s);
}

} // namespace
