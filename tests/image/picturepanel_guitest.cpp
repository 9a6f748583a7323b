#include "composer/composerfixture.h"
#include "image/thumbnailloader.h"
#include "image/widgets/picturepanel.h"
#include "picturefiles.h"

#include <QComboBox>
#include <QDeadlineTimer>
#include <QLabel>
#include <QListWidget>
#include <QThread>

using namespace mms;

namespace {

// A JPEG header the probe accepts with no picture behind it: listed by the probe, not decodable.
const QByteArray
    kHeaderOnlyJpeg("\xFF\xD8\xFF\xC0\x00\x11\x08\x00\x10\x00\x10\x03\x01\x22\x00\x02\x11\x01\x03\x11"
                    "\x01\xFF\xD9",
                    23);

bool near(QColor a, QColor b) {
    return qAbs(a.red() - b.red()) < 40 && qAbs(a.green() - b.green()) < 40 && qAbs(a.blue() - b.blue()) < 40;
}

QColor centre(const QImage& image) {
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

class PicturePanelTest : public test::ComposerTest {
protected:
    PicturePanel& panel() { return *w->picturePanel; }
    QString library() const { return home.file(QStringLiteral("UserData/Picture")); }
    QString put(const QString& name, const QByteArray& bytes) {
        return home.write(QStringLiteral("UserData/Picture/") + name, bytes);
    }

    // Lets the event loop run until the thumbnails of the last refill are all in (or a generous
    // limit passes, which the expectations after it then report).
    void waitForListing() {
        const QDeadlineTimer deadline(20000);
        while (panel().isListing() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
            QThread::msleep(1);
        }
        EXPECT_FALSE(panel().isListing());
    }
    void refresh() {
        panel().refreshcmd->click();
        waitForListing();
    }

    QStringList names() {
        QStringList out;
        for (int i = 0; i < panel().lstPicView->count(); ++i)
            out << panel().lstPicView->item(i)->text();
        return out;
    }
    QColor iconColour(int row) {
        return centre(panel().lstPicView->item(row)->icon().pixmap(PicturePanel::kThumbnailSize).toImage());
    }
    // The user picks the picture called `name` and puts it on the slide.
    void attach(const QString& name) {
        const QList<QListWidgetItem*> found = panel().lstPicView->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        panel().lstPicView->setCurrentItem(found.first());
        ASSERT_TRUE(panel().chgImgCmd->isEnabled());
        panel().chgImgCmd->click();
    }
    QStringList converted() const {
        return QDir(home.file(QStringLiteral("Temp/tmpJPG"))).entryList(QDir::Files);
    }
    QString slidePicture(int position) const {
        const NodePtr node = w->message().nodeAt(qint16(position));
        return node ? node->DataImgPath : QStringLiteral("(no slide)");
    }
};

TEST_F(PicturePanelTest, ListsByTypeInOrderWithEveryThumbnailBesideItsName) {
    put(QStringLiteral("b.gif"), test::encoded(test::filled(20, 10, Qt::green), "PNG")); // PNG named .gif
    put(QStringLiteral("A.GIF"), test::tinyGif());                                       // red
    put(QStringLiteral("c.jpg"), "a text file, not a picture");
    put(QStringLiteral("d.jpg"), kHeaderOnlyJpeg);
    put(QStringLiteral("e.jpg"), test::encoded(test::filled(30, 60, Qt::blue), "JPG", 95));
    put(QStringLiteral("f.bmp"), test::encoded(test::filled(80, 20, Qt::yellow), "BMP"));
    put(QStringLiteral("g.png"), test::encoded(test::filled(8, 8, Qt::magenta), "PNG"));

    refresh();
    EXPECT_EQ(names(), (QStringList{QStringLiteral("A.GIF"), QStringLiteral("b.gif"), QStringLiteral("e.jpg"),
                                    QStringLiteral("f.bmp")}));
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::yellow};
    for (int row = 0; row < 4; ++row)
        EXPECT_TRUE(near(iconColour(row), colours[row])) << row;
    // A wide picture keeps its shape inside the square.
    const QImage wide = panel().lstPicView->item(3)->icon().pixmap(PicturePanel::kThumbnailSize).toImage();
    EXPECT_TRUE(near(wide.pixelColor(20, 2), thumbnailBackground()));

    const QStringList byType[] = {{QStringLiteral("A.GIF"), QStringLiteral("b.gif")},
                                  {QStringLiteral("e.jpg")},
                                  {QStringLiteral("f.bmp")}};
    for (int entry = 1; entry <= 3; ++entry) {
        panel().lstPicView->setCurrentRow(0);
        EXPECT_TRUE(panel().chgImgCmd->isEnabled());
        panel().imgTypeCombo->setCurrentIndex(entry);
        EXPECT_FALSE(panel().chgImgCmd->isEnabled()) << "nothing is selected after a refill";
        waitForListing();
        EXPECT_EQ(names(), byType[entry - 1]) << entry;
    }
}

TEST_F(PicturePanelTest, FolderComesFromTheChooserOrTheRefreshCommand) {
    test::TempDir other;
    other.write(QStringLiteral("sea.bmp"), test::encoded(test::filled(10, 10, Qt::blue), "BMP"));
    put(QStringLiteral("own.bmp"), test::encoded(test::filled(10, 10, Qt::red), "BMP"));
    refresh();

    // Cancelled: nothing changes. The start folder loses its trailing separator.
    panel().imgDirPath->setText(library() + QLatin1Char('/'));
    panel().imgChgDirBrowse->click();
    EXPECT_EQ(fake.dialogs.folderRequests, QStringList{QStringLiteral("I62|") + library()});
    EXPECT_EQ(panel().imgDirPath->text(), library() + QLatin1Char('/'));
    EXPECT_EQ(names(), QStringList{QStringLiteral("own.bmp")});

    // Chosen: shown and listed at once; a root keeps its separator as the start folder.
    panel().imgDirPath->setText(QStringLiteral("/"));
    fake.dialogs.folderAnswers.push_back(other.path());
    panel().imgChgDirBrowse->click();
    EXPECT_EQ(fake.dialogs.folderRequests.last(), QStringLiteral("I62|/"));
    EXPECT_EQ(panel().imgDirPath->text(), QDir::toNativeSeparators(other.path()));
    waitForListing();
    EXPECT_EQ(names(), QStringList{QStringLiteral("sea.bmp")});

    // Typing a folder lists nothing new until the refresh command.
    panel().imgDirPath->setText(library());
    EXPECT_EQ(names(), QStringList{QStringLiteral("sea.bmp")});
    attach(QStringLiteral("sea.bmp")); // from the folder the list shows, not the one typed
    EXPECT_EQ(slidePicture(1), other.file(QStringLiteral("sea.bmp")));
    refresh();
    EXPECT_EQ(names(), QStringList{QStringLiteral("own.bmp")});
}

TEST_F(PicturePanelTest, PictureOnAnEmptyMessageMakesSlideOneAndTheLimitIsExclusive) {
    const QByteArray bmp = test::encoded(test::filled(240, 60, Qt::blue), "BMP");
    const QString small = put(QStringLiteral("small.bmp"), test::padded(bmp, 102399));
    put(QStringLiteral("large.bmp"), test::padded(bmp, 102400));
    refresh();
    ASSERT_TRUE(w->IsEmpty());

    attach(QStringLiteral("small.bmp"));
    ASSERT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), small);
    EXPECT_TRUE(converted().isEmpty());
    EXPECT_EQ(labels(), QStringList{test::label(1, 3)});
    EXPECT_TRUE(w->isModified());
    // The strip thumbnail and the phone screen keep the picture's 4:1 shape.
    const QImage thumbnail = w->stripModel().thumbnail(1);
    EXPECT_EQ(thumbnail.size(), QSize(70, 70));
    EXPECT_TRUE(near(centre(thumbnail), Qt::blue));
    EXPECT_FALSE(near(thumbnail.pixelColor(35, 5), Qt::blue));
    EXPECT_EQ(w->picPanel->pixmap().size(), QSize(160, 40));

    w->setModified(false);
    fake.random.draws = {0.5};
    attach(QStringLiteral("large.bmp"));
    ASSERT_EQ(converted(), QStringList{QStringLiteral("2024517143055000.jpg")});
    EXPECT_EQ(slidePicture(1), home.file(QStringLiteral("Temp/tmpJPG/2024517143055000.jpg")));
    EXPECT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_TRUE(w->isModified());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PicturePanelTest, LargeGifsAreRefusedByTheirTwoPatternsAndOtherCasesConverted) {
    const QByteArray big = test::padded(test::tinyGif(), 150 * 1024);
    put(QStringLiteral("a.gif"), big);
    put(QStringLiteral("b.GIF"), big);
    put(QStringLiteral("c.Gif"), big);
    refresh();

    attach(QStringLiteral("a.gif"));
    attach(QStringLiteral("b.GIF"));
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("E0"), QStringLiteral("E0")}));
    EXPECT_TRUE(w->IsEmpty());
    EXPECT_TRUE(converted().isEmpty());
    EXPECT_FALSE(w->isModified());

    attach(QStringLiteral("c.Gif"));
    ASSERT_EQ(converted().size(), 1);
    EXPECT_EQ(slidePicture(1), home.file(QStringLiteral("Temp/tmpJPG/") + converted().first()));
    EXPECT_TRUE(near(centre(w->stripModel().thumbnail(1)), Qt::red));
}

TEST_F(PicturePanelTest, FailedAttachLeavesTheSlideAsItWas) {
    const QString first =
        put(QStringLiteral("first.bmp"), test::encoded(test::filled(10, 10, Qt::red), "BMP"));
    put(QStringLiteral("noise.bmp"), test::encoded(test::noise(800, 600), "BMP"));
    put(QStringLiteral("gone.bmp"), test::encoded(test::filled(10, 10, Qt::blue), "BMP"));
    refresh();
    attach(QStringLiteral("first.bmp"));
    w->setModified(false);

    // Still too large as a JPEG: the JPEG stays in the scratch folder, the slide keeps its picture.
    attach(QStringLiteral("noise.bmp"));
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E0")});
    ASSERT_EQ(converted().size(), 1);
    EXPECT_GE(QFileInfo(home.file(QStringLiteral("Temp/tmpJPG/") + converted().first())).size(), 102400);

    // A listed file removed since: the message names it.
    LanguageTexts texts = loc.texts();
    texts.errors[31] = QStringLiteral("E31 %1");
    loc.setTexts(texts);
    QFile::remove(library() + QStringLiteral("/gone.bmp"));
    attach(QStringLiteral("gone.bmp"));
    ASSERT_EQ(fake.dialogs.shown.size(), 2u);
    EXPECT_TRUE(fake.dialogs.shown[1].text.startsWith(QStringLiteral("E31")));
    EXPECT_TRUE(fake.dialogs.shown[1].text.contains(QStringLiteral("gone.bmp")));

    EXPECT_EQ(slidePicture(1), first);
    EXPECT_TRUE(near(centre(w->stripModel().thumbnail(1)), Qt::red));
    EXPECT_FALSE(w->isModified());
}

TEST_F(PicturePanelTest, ARefreshDuringLoadingDropsTheOldThumbnails) {
    // Enough camera-sized pictures that the first listing is still running when the folder changes.
    const QByteArray photo = test::encoded(test::noise(1200, 900), "JPG", 90);
    for (int i = 0; i < 40; ++i)
        put(QStringLiteral("old%1.jpg").arg(i, 2, 10, QLatin1Char('0')), photo);
    test::TempDir other;
    for (const char* name : {"new1.bmp", "new2.bmp"})
        other.write(QString::fromLatin1(name), test::encoded(test::filled(12, 12, Qt::green), "BMP"));

    panel().refreshcmd->click();
    const QDeadlineTimer deadline(20000);
    while (panel().lstPicView->count() == 0 && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    ASSERT_GT(panel().lstPicView->count(), 0);
    fake.dialogs.folderAnswers.push_back(other.path());
    panel().imgChgDirBrowse->click();
    waitForListing();
    // Results of the dropped listing still on their way must not turn up late either.
    const QDeadlineTimer settle(300);
    while (!settle.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("new1.bmp"), QStringLiteral("new2.bmp")}));
    EXPECT_TRUE(near(iconColour(0), Qt::green) && near(iconColour(1), Qt::green));
}

} // namespace
