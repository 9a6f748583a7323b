#include "common/filesize.h"
#include "composer/composerfixture.h"
#include "image/thumbnailloader.h"
#include "image/widgets/picturepanel.h"
#include "picturefiles.h"
#include "support/controls.h"

#include <QComboBox>
#include <QDeadlineTimer>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QThread>

using namespace mms;
using mms::test::ctl;

namespace {

bool near(QColor a, QColor b) {
    return qAbs(a.red() - b.red()) < 40 && qAbs(a.green() - b.green()) < 40 && qAbs(a.blue() - b.blue()) < 40;
}

QColor centre(const QImage& image) {
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

const QString shrinkQuestion = QStringLiteral("P%1").arg(sizetext::kPromptShrinkToFit);

QByteArray bmp(QColor colour, int width = 10, int height = 10) {
    return test::encoded(test::filled(width, height, colour), "BMP");
}

class PicturePanelTest : public test::ComposerTest {
protected:
    PicturePanel& panel() { return *ctl<PicturePanel>(w, "picturePanel"); }
    QString library() const { return home.file(QStringLiteral("UserData/Picture")); }
    QString put(const QString& name, const QByteArray& bytes) {
        return home.write(QStringLiteral("UserData/Picture/") + name, bytes);
    }
    void waitForListing() {
        const QDeadlineTimer deadline(20000);
        while (panel().isListing() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
            QThread::msleep(1);
        }
        EXPECT_FALSE(panel().isListing());
    }
    void refresh() {
        ctl<QPushButton>(panel(), "refreshcmd")->click();
        waitForListing();
    }
    QString names() {
        QStringList out;
        for (int i = 0; i < ctl<QListWidget>(panel(), "lstPicView")->count(); ++i)
            out << ctl<QListWidget>(panel(), "lstPicView")->item(i)->text();
        return out.join(u' ');
    }
    QColor iconColour(int row) {
        return centre(ctl<QListWidget>(panel(), "lstPicView")
                          ->item(row)
                          ->icon()
                          .pixmap(PicturePanel::kThumbnailSize)
                          .toImage());
    }
    void attach(const QString& name) {
        const QList<QListWidgetItem*> found =
            ctl<QListWidget>(panel(), "lstPicView")->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        ctl<QListWidget>(panel(), "lstPicView")->setCurrentItem(found.first());
        ASSERT_TRUE(ctl<QPushButton>(panel(), "chgImgCmd")->isEnabled());
        ctl<QPushButton>(panel(), "chgImgCmd")->click();
    }
    QStringList converted() const {
        return QDir(home.file(QStringLiteral("Temp/tmpJPG"))).entryList(QDir::Files);
    }
    QString slidePicture(int position) const {
        const NodePtr node = w->message().nodeAt(qint16(position));
        return node ? node->DataImgPath : QStringLiteral("(no slide)");
    }
};

TEST_F(PicturePanelTest, ListsByTypeWithEveryThumbnailBesideItsName) {
    put(QStringLiteral("A.GIF"), test::tinyGif()); // red
    // A header the probe accepts with nothing behind it: listed, then dropped without a gap.
    put(QStringLiteral("d.jpg"), QByteArray::fromHex("ffd8ffc00011080010001003012200021101031101ffd9"));
    put(QStringLiteral("e.jpg"), test::encoded(test::filled(30, 60, Qt::blue), "JPG", 95));
    put(QStringLiteral("f.bmp"), bmp(Qt::yellow, 80, 20));
    refresh();
    EXPECT_EQ(names(), QStringLiteral("A.GIF e.jpg f.bmp"));
    const QColor colours[] = {Qt::red, Qt::blue, Qt::yellow};
    const char* byType[] = {"A.GIF", "e.jpg", "f.bmp"};
    for (int row = 0; row < 3; ++row) {
        EXPECT_TRUE(near(iconColour(row), colours[row])) << row;
        ctl<QListWidget>(panel(), "lstPicView")->setCurrentRow(0);
        ctl<QComboBox>(panel(), "imgTypeCombo")->setCurrentIndex(row + 1);
        EXPECT_FALSE(ctl<QPushButton>(panel(), "chgImgCmd")->isEnabled())
            << "nothing is selected after a refill";
        waitForListing();
        EXPECT_EQ(names(), QLatin1String(byType[row])) << row;
        ctl<QComboBox>(panel(), "imgTypeCombo")->setCurrentIndex(0);
        waitForListing();
    }
}

TEST_F(PicturePanelTest, FolderComesFromTheChooserOrTheRefreshCommand) {
    test::TempDir other;
    other.write(QStringLiteral("sea.bmp"), bmp(Qt::blue));
    put(QStringLiteral("own.bmp"), bmp(Qt::red));
    refresh();

    // Cancelled: nothing changes. The start folder loses its trailing separator.
    ctl<QLineEdit>(panel(), "imgDirPath")->setText(library() + QLatin1Char('/'));
    ctl<QToolButton>(panel(), "imgChgDirBrowse")->click();
    EXPECT_EQ(fake.dialogs.folderRequests, QStringList{QStringLiteral("I62|") + library()});
    EXPECT_EQ(ctl<QLineEdit>(panel(), "imgDirPath")->text(), library() + QLatin1Char('/'));
    EXPECT_EQ(names(), QStringLiteral("own.bmp"));

    // Chosen: shown and listed at once; a root keeps its separator as the start folder.
    ctl<QLineEdit>(panel(), "imgDirPath")->setText(QStringLiteral("/"));
    fake.dialogs.folderAnswers.push_back(other.path());
    ctl<QToolButton>(panel(), "imgChgDirBrowse")->click();
    EXPECT_EQ(fake.dialogs.folderRequests.last(), QStringLiteral("I62|/"));
    EXPECT_EQ(ctl<QLineEdit>(panel(), "imgDirPath")->text(), QDir::toNativeSeparators(other.path()));
    waitForListing();
    EXPECT_EQ(names(), QStringLiteral("sea.bmp"));

    // A typed folder is listed only on refresh; until then pictures come from the listed one.
    ctl<QLineEdit>(panel(), "imgDirPath")->setText(library());
    EXPECT_EQ(names(), QStringLiteral("sea.bmp"));
    attach(QStringLiteral("sea.bmp"));
    EXPECT_EQ(slidePicture(1), other.file(QStringLiteral("sea.bmp")));
    refresh();
    EXPECT_EQ(names(), QStringLiteral("own.bmp"));
}

TEST_F(PicturePanelTest, PictureOnAnEmptyMessageMakesSlideOne) {
    const QString small = put(QStringLiteral("small.bmp"), bmp(Qt::blue, 240, 60));
    refresh();
    ASSERT_TRUE(w->IsEmpty());
    attach(QStringLiteral("small.bmp"));
    ASSERT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), small);
    EXPECT_TRUE(converted().isEmpty());
    EXPECT_EQ(strip(), QStringLiteral("_3s"));
    EXPECT_TRUE(w->isModified());
    // The strip thumbnail and the phone screen keep the picture's 4:1 shape.
    const QImage thumbnail = w->stripModel().thumbnail(1);
    EXPECT_TRUE(near(centre(thumbnail), Qt::blue));
    EXPECT_FALSE(near(thumbnail.pixelColor(35, 5), Qt::blue));
    EXPECT_EQ(ctl<QLabel>(w, "picPanel")->pixmap().size(), QSize(160, 40));
}

TEST_F(PicturePanelTest, RefusedOrFailedAttachLeavesTheSlideAsItWas) {
    const QString first = put(QStringLiteral("first.bmp"), bmp(Qt::red));
    put(QStringLiteral("a.gif"), test::padded(test::tinyGif(), 150 * 1024));
    put(QStringLiteral("noise.bmp"), test::encoded(test::noise(800, 600), "BMP"));
    put(QStringLiteral("gone.bmp"), bmp(Qt::blue));
    refresh();
    attach(QStringLiteral("first.bmp"));
    w->setModified(false);

    // A large GIF is refused unconverted; a JPEG still too large, when the user declines to shrink
    // it, stays in the scratch folder.
    attach(QStringLiteral("a.gif"));
    EXPECT_TRUE(converted().isEmpty());
    fake.dialogs.answers.push_back(Answer::No);
    attach(QStringLiteral("noise.bmp"));
    EXPECT_EQ(fake.dialogs.texts(),
              (QStringList{QStringLiteral("E0"), shrinkQuestion, QStringLiteral("E0")}));
    ASSERT_EQ(converted().size(), 1);
    EXPECT_GE(QFileInfo(home.file(QStringLiteral("Temp/tmpJPG/") + converted().first())).size(), 102400);

    // A listed file removed since: the message names it.
    LanguageTexts texts = loc.texts();
    texts.errors[31] = QStringLiteral("E31 %1");
    loc.setTexts(texts);
    QFile::remove(library() + QStringLiteral("/gone.bmp"));
    attach(QStringLiteral("gone.bmp"));
    ASSERT_EQ(fake.dialogs.shown.size(), 4u);
    EXPECT_TRUE(fake.dialogs.shown[3].text.startsWith(QStringLiteral("E31")));
    EXPECT_TRUE(fake.dialogs.shown[3].text.contains(QStringLiteral("gone.bmp")));

    EXPECT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), first);
    EXPECT_TRUE(near(centre(w->stripModel().thumbnail(1)), Qt::red));
    EXPECT_FALSE(w->isModified());
}

// A photograph whose conversion is still too large is shrunk on Yes, off the window's thread, and
// put on the slide upright; a cancelled shrink attaches nothing.
TEST_F(PicturePanelTest, AConversionStillTooLargeIsShrunkOnYes) {
    LanguageTexts texts = loc.texts();
    texts.interface[sizetext::kKilobytes] = QStringLiteral("%1 KB");
    loc.setTexts(texts);
    put(QStringLiteral("photo.jpg"),
        test::withOrientation(test::encoded(test::noise(900, 600), "JPG", 90), 6));
    put(QStringLiteral("small.bmp"), bmp(Qt::red));
    refresh();
    const auto tip = [this](int row) {
        return ctl<QListWidget>(panel(), "lstPicView")->item(row)->toolTip();
    };
    EXPECT_TRUE(tip(0).startsWith(QStringLiteral("photo.jpg\n")) &&
                tip(0).endsWith(QStringLiteral(" KB\nI%1").arg(sizetext::kPictureWillBeConverted)));
    EXPECT_EQ(tip(1), QStringLiteral("small.bmp\n1 KB"));

    const auto waitForFit = [this] {
        for (const QDeadlineTimer d(20000); panel().isFitting() && !d.hasExpired();)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    };
    fake.random.draws = {0.1, 0.2, 0.3, 0.4}; // scratch names for the conversions
    attach(QStringLiteral("photo.jpg"));      // the question's default answer: Yes
    EXPECT_EQ(fake.dialogs.texts(), QStringList{shrinkQuestion});
    EXPECT_TRUE(panel().isFitting());
    EXPECT_TRUE(ctl<QProgressBar>(panel(), "fitProgress")->isVisibleTo(&panel()));
    EXPECT_FALSE(ctl<QPushButton>(panel(), "chgImgCmd")->isEnabled());
    waitForFit();
    const QString fitted = slidePicture(1);
    EXPECT_TRUE(fitted.startsWith(home.file(QStringLiteral("Temp/tmpJPG/"))));
    EXPECT_LT(QFileInfo(fitted).size(), 102400);
    EXPECT_EQ(converted().size(), 2); // the same-size conversion stays beside the fitted one
    const QSize shown = ctl<QLabel>(w, "picPanel")->pixmap().size();
    EXPECT_TRUE(QImage(fitted).height() > QImage(fitted).width() && shown.height() > shown.width());
    EXPECT_TRUE(w->isModified());
    EXPECT_TRUE(ctl<QPushButton>(panel(), "chgImgCmd")->isEnabled());

    attach(QStringLiteral("photo.jpg"));
    ctl<QPushButton>(panel(), "fitCancelCmd")->click();
    EXPECT_FALSE(panel().isFitting());
    EXPECT_FALSE(ctl<QProgressBar>(panel(), "fitProgress")->isVisibleTo(&panel()));
    for (const QDeadlineTimer d(500); !d.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(slidePicture(1), fitted);
    EXPECT_EQ(fake.dialogs.shown.size(), 2u);
}

TEST_F(PicturePanelTest, ARefreshDuringLoadingDropsTheOldThumbnails) {
    // Enough camera-sized pictures that the first listing is still running when the folder changes.
    const QByteArray photo = test::encoded(test::noise(1200, 900), "JPG", 90);
    for (int i = 0; i < 40; ++i)
        put(QStringLiteral("old%1.jpg").arg(i, 2, 10, QLatin1Char('0')), photo);
    test::TempDir other;
    for (const char* name : {"new1.bmp", "new2.bmp"})
        other.write(QString::fromLatin1(name), bmp(Qt::green));

    ctl<QPushButton>(panel(), "refreshcmd")->click();
    for (const QDeadlineTimer d(20000);
         ctl<QListWidget>(panel(), "lstPicView")->count() == 0 && !d.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    ASSERT_GT(ctl<QListWidget>(panel(), "lstPicView")->count(), 0);
    fake.dialogs.folderAnswers.push_back(other.path());
    ctl<QToolButton>(panel(), "imgChgDirBrowse")->click();
    waitForListing();
    // Results of the dropped listing still on their way must not turn up late either.
    for (const QDeadlineTimer d(300); !d.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(names(), QStringLiteral("new1.bmp new2.bmp"));
    EXPECT_TRUE(near(iconColour(0), Qt::green) && near(iconColour(1), Qt::green));
}

} // namespace
