#include "common/filesize.h"
#include "composer/composerfixture.h"
#include "image/fittask.h"
#include "image/picturequality.h"
#include "image/picturetexts.h"
#include "image/widgets/picturepanel.h"
#include "picturefiles.h"
#include "support/controls.h"
#include "support/scratchsettings.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QTest>

using namespace mms;
using mms::test::ctl;
using mms::test::near;
using namespace Qt::StringLiterals;

namespace {

const QString shrinkQuestion = u"P%1"_s.arg(sizetext::kPromptShrinkToFit);

class PicturePanelTest : public test::ComposerTest {
protected:
    QListWidget* list() const { return ctl<QListWidget>(w, "lstPicView"); }
    PicturePanel* panel() const { return ctl<PicturePanel>(w, "picturePanel"); }
    QString library() const { return home.file(u"UserData/Picture"_s); }
    QString put(const QString& name, const QByteArray& bytes) {
        return home.write(u"UserData/Picture/"_s + name, bytes);
    }
    // The names listed once the listing that `command` starts has finished.
    QString listed(const char* command = "refreshcmd") {
        if (command) ctl<QAbstractButton>(w, command)->click();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !panel()->isListing(); }, 20000));
        QStringList out;
        for (int i = 0; i < list()->count(); ++i)
            out << list()->item(i)->text();
        return out.join(u' ');
    }
    QColor iconColour(int row) {
        const QImage icon = list()->item(row)->icon().pixmap(PicturePanel::kThumbnailSize).toImage();
        return icon.pixelColor(icon.width() / 2, icon.height() / 2);
    }
    void attach(const QString& name) {
        const QList<QListWidgetItem*> found = list()->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        list()->setCurrentItem(found.first());
        ASSERT_TRUE(ctl<QPushButton>(w, "chgImgCmd")->isEnabled());
        ctl<QPushButton>(w, "chgImgCmd")->click();
    }
    QStringList converted() const { return QDir(home.file(u"Temp/tmpJPG"_s)).entryList(QDir::Files); }
    const test::ScratchSettings settings; // before the window reads the picture quality
    QString slidePicture(int position) const {
        const NodePtr node = w->message().nodeAt(qint16(position));
        return node ? node->DataImgPath : u"(no slide)"_s;
    }
};

TEST_F(PicturePanelTest, ListsByTypeWithEveryThumbnailBesideItsName) {
    put(u"A.GIF"_s, test::tinyGif()); // red
    put(u"e.jpg"_s, test::encoded(test::filled(30, 60, Qt::blue), "JPG", 95));
    put(u"f.bmp"_s, test::solid("BMP", 80, 20, Qt::yellow));
    EXPECT_EQ(listed(), u"A.GIF e.jpg f.bmp"_s);
    const std::pair<const char*, QColor> byType[] = {
        {"A.GIF", Qt::red}, {"e.jpg", Qt::blue}, {"f.bmp", Qt::yellow}};
    for (int type = 1; type <= 3; ++type) {
        list()->setCurrentRow(0);
        ctl<QComboBox>(w, "imgTypeCombo")->setCurrentIndex(type);
        EXPECT_FALSE(ctl<QPushButton>(w, "chgImgCmd")->isEnabled()) << "nothing is selected after a refill";
        EXPECT_EQ(listed(nullptr), QLatin1String(byType[type - 1].first));
        EXPECT_TRUE(near(iconColour(0), byType[type - 1].second)) << type;
    }
}

TEST_F(PicturePanelTest, FolderComesFromTheChooserOrTheRefreshCommand) {
    test::TempDir other;
    other.write(u"sea.bmp"_s, test::solid("BMP", 10, 10, Qt::blue));
    put(u"own.bmp"_s, test::solid("BMP", 10, 10, Qt::red));
    EXPECT_EQ(listed(), u"own.bmp"_s);
    // Cancelled: nothing changes. The start folder loses a trailing separator; a root keeps it.
    ctl<QLineEdit>(w, "imgDirPath")->setText(library() + u'/');
    EXPECT_EQ(listed("imgChgDirBrowse"), u"own.bmp"_s);
    EXPECT_EQ(ctl<QLineEdit>(w, "imgDirPath")->text(), library() + u'/');
    ctl<QLineEdit>(w, "imgDirPath")->setText(u"/"_s);
    fake.dialogs.folderAnswers.push_back(other.path()); // chosen: shown and listed at once
    EXPECT_EQ(listed("imgChgDirBrowse"), u"sea.bmp"_s);
    EXPECT_EQ(fake.dialogs.folderRequests, (QStringList{u"I62|"_s + library(), u"I62|/"_s}));
    EXPECT_EQ(ctl<QLineEdit>(w, "imgDirPath")->text(), QDir::toNativeSeparators(other.path()));
    // A typed folder is listed only on refresh; until then pictures come from the listed one.
    ctl<QLineEdit>(w, "imgDirPath")->setText(library());
    attach(u"sea.bmp"_s);
    EXPECT_EQ(slidePicture(1), other.file(u"sea.bmp"_s));
    EXPECT_EQ(listed(), u"own.bmp"_s);
}

// The choice is kept as the setting, which the next start shows, and the next conversion uses it.
TEST_F(PicturePanelTest, TheQualityChosenIsKeptAndConvertsThePictures) {
    auto* combo = ctl<QComboBox>(w, "qualityCombo");
    EXPECT_EQ(combo->count(), 3);
    EXPECT_EQ(combo->currentText(), u"I%1"_s.arg(imagetext::kQualityStandard));
    combo->setCurrentIndex(2);
    emit combo->activated(2);
    EXPECT_EQ(readPictureQualitySetting(), 85);

    const QByteArray large = test::solid("BMP", 240, 160, Qt::blue);
    put(u"large.bmp"_s, large);
    listed();
    attach(u"large.bmp"_s);
    EXPECT_TRUE(test::TempDir::read(slidePicture(1)) == test::jpegOf(QImage::fromData(large), 85));

    writePictureQualitySetting(50);
    LanguageTexts texts = loc.texts();
    texts.interface[imagetext::kQualityOther] = u"Q%1"_s;
    loc.setTexts(texts);
    start();
    combo = ctl<QComboBox>(w, "qualityCombo");
    EXPECT_EQ(combo->count(), 4);
    EXPECT_EQ(combo->currentText(), u"Q50"_s);
}

// The strip thumbnail's shape and a conversion's limits are the import's and the loader's own rules.
TEST_F(PicturePanelTest, AttachMakesSlideOneAndARefusalLeavesTheSlideAsItWas) {
    const QString small = put(u"small.bmp"_s, test::solid("BMP", 240, 60, Qt::blue));
    put(u"noise.bmp"_s, test::encoded(test::noise(800, 600), "BMP"));
    put(u"gone.bmp"_s, test::solid("BMP", 10, 10, Qt::red));
    listed();
    attach(u"small.bmp"_s);
    ASSERT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), small);
    EXPECT_EQ(strip(), u"_3s"_s);
    EXPECT_TRUE(w->isModified());
    EXPECT_EQ(ctl<QLabel>(w, "picPanel")->pixmap().size(), QSize(160, 40)); // the picture's 4:1 shape
    w->setModified(false);
    // A JPEG still too large, when the user declines to shrink it, stays in the scratch folder.
    fake.dialogs.answers.push_back(Answer::No);
    attach(u"noise.bmp"_s);
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{shrinkQuestion, u"E0"_s}));
    EXPECT_EQ(converted().size(), 1);
    // A listed file removed since: the message names it.
    LanguageTexts texts = loc.texts();
    texts.errors[31] = u"E31 %1"_s;
    loc.setTexts(texts);
    QFile::remove(library() + u"/gone.bmp"_s);
    attach(u"gone.bmp"_s);
    ASSERT_EQ(fake.dialogs.shown.size(), 3u);
    EXPECT_TRUE(fake.dialogs.shown[2].text.startsWith(u"E31 "_s) &&
                fake.dialogs.shown[2].text.contains(u"gone.bmp"_s));

    EXPECT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), small);
    EXPECT_FALSE(w->isModified());
}

// A photograph whose conversion is still too large is shrunk on Yes, off the window's thread; a
// cancelled shrink attaches nothing.
TEST_F(PicturePanelTest, AConversionStillTooLargeIsShrunkOnYes) {
    LanguageTexts texts = loc.texts();
    texts.interface[sizetext::kKilobytes] = u"%1 KB"_s;
    loc.setTexts(texts);
    put(u"photo.jpg"_s, test::noisyJpeg(900, 600));
    put(u"small.bmp"_s, test::solid("BMP", 10, 10, Qt::red));
    listed();
    const QString tip = list()->item(0)->toolTip();
    EXPECT_TRUE(tip.startsWith(u"photo.jpg\n"_s) &&
                tip.endsWith(u" KB\nI%1"_s.arg(sizetext::kPictureWillBeConverted)));
    EXPECT_EQ(list()->item(1)->toolTip(), u"small.bmp\n1 KB"_s);

    fake.random.draws = {0.1, 0.2, 0.3, 0.4}; // scratch names for the conversions
    attach(u"photo.jpg"_s);                   // the question's default answer: Yes
    EXPECT_EQ(fake.dialogs.texts(), QStringList{shrinkQuestion});
    EXPECT_TRUE(panel()->isFitting() && ctl<QProgressBar>(w, "fitProgress")->isVisibleTo(panel()));
    EXPECT_FALSE(ctl<QPushButton>(w, "chgImgCmd")->isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !panel()->isFitting(); }, 20000));
    const QString fitted = slidePicture(1);
    EXPECT_TRUE(fitted.startsWith(home.file(u"Temp/tmpJPG/"_s)));
    EXPECT_EQ(converted().size(), 2); // the same-size conversion stays beside the fitted one
    EXPECT_TRUE(w->isModified() && ctl<QPushButton>(w, "chgImgCmd")->isEnabled());

    attach(u"photo.jpg"_s);
    ctl<QPushButton>(w, "fitCancelCmd")->click();
    EXPECT_FALSE(panel()->isFitting() || ctl<QProgressBar>(w, "fitProgress")->isVisibleTo(panel()));
    // The cancelled shrink's outcome comes back all the same, and must be dropped.
    const FitTask* task = panel()->findChild<FitTask*>();
    ASSERT_TRUE(task);
    EXPECT_TRUE(QTest::qWaitFor([task] { return !task->isWorking(); }, 20000));
    EXPECT_EQ(slidePicture(1), fitted);
    EXPECT_EQ(fake.dialogs.shown.size(), 2u);
}

// A JPEG cut short is refused unless the user takes it; a large GIF is shrunk on Yes and stays a GIF.
TEST_F(PicturePanelTest, DamagedPicturesAskAndLargeGifsShrink) {
    const QByteArray photo = test::noisyJpeg(64, 64);
    const QString cut = put(u"cut.jpg"_s, photo.left(photo.size() / 2));
    put(u"anim.gif"_s, test::animatedGif(QSize(200, 200), {10, 10, 10}, 0));
    listed();
    const QString useDamaged = u"P%1"_s.arg(picturetext::kPromptUseDamaged);
    attach(u"cut.jpg"_s); // the question's default answer: No
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{useDamaged, u"E%1"_s.arg(picturetext::kErrDamaged)}));
    EXPECT_EQ(w->message().getTotalSlide(), 0);
    fake.dialogs.answers = {Answer::Yes};
    attach(u"cut.jpg"_s);
    EXPECT_EQ(slidePicture(1), cut);

    fake.random.draws = {0.1};
    attach(u"anim.gif"_s); // the question's default answer: Yes
    EXPECT_EQ(fake.dialogs.texts().last(), u"P%1"_s.arg(picturetext::kPromptShrinkGif));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !panel()->isFitting(); }, 20000));
    EXPECT_TRUE(slidePicture(1).startsWith(home.file(u"Temp/tmpJPG/"_s)) &&
                slidePicture(1).endsWith(u".gif"_s));
    EXPECT_LT(QFileInfo(slidePicture(1)).size(), kAttachmentLimit);
}

} // namespace
