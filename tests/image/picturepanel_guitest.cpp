#include "composer/composerfixture.h"
#include "image/widgets/picturepanel.h"
#include "picturefiles.h"
#include "support/controls.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QTest>

using namespace mms;
using mms::test::ctl;
using mms::test::near;
using namespace Qt::StringLiterals;

namespace {

QColor centre(const QImage& image) {
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

QByteArray bmp(QColor colour, int width = 10, int height = 10) {
    return test::encoded(test::filled(width, height, colour), "BMP");
}

class PicturePanelTest : public test::ComposerTest {
protected:
    QListWidget* list() const { return ctl<QListWidget>(w, "lstPicView"); }
    QString library() const { return home.file(u"UserData/Picture"_s); }
    QString put(const QString& name, const QByteArray& bytes) {
        return home.write(u"UserData/Picture/"_s + name, bytes);
    }
    // The names listed once the listing that `command` starts has finished.
    QString listed(const char* command = "refreshcmd") {
        if (command) ctl<QAbstractButton>(w, command)->click();
        const PicturePanel* panel = ctl<PicturePanel>(w, "picturePanel");
        EXPECT_TRUE(QTest::qWaitFor([panel] { return !panel->isListing(); }, 20000));
        QStringList out;
        for (int i = 0; i < list()->count(); ++i)
            out << list()->item(i)->text();
        return out.join(u' ');
    }
    QColor iconColour(int row) {
        return centre(list()->item(row)->icon().pixmap(PicturePanel::kThumbnailSize).toImage());
    }
    void attach(const QString& name) {
        const QList<QListWidgetItem*> found = list()->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        list()->setCurrentItem(found.first());
        ASSERT_TRUE(ctl<QPushButton>(w, "chgImgCmd")->isEnabled());
        ctl<QPushButton>(w, "chgImgCmd")->click();
    }
    QStringList converted() const { return QDir(home.file(u"Temp/tmpJPG"_s)).entryList(QDir::Files); }
    QString slidePicture(int position) const {
        const NodePtr node = w->message().nodeAt(qint16(position));
        return node ? node->DataImgPath : u"(no slide)"_s;
    }
};

TEST_F(PicturePanelTest, ListsByTypeWithEveryThumbnailBesideItsName) {
    put(u"A.GIF"_s, test::tinyGif()); // red
    // A header the probe accepts with nothing behind it: listed, then dropped without a gap.
    put(u"d.jpg"_s, QByteArray::fromHex("ffd8ffc00011080010001003012200021101031101ffd9"));
    put(u"f.bmp"_s, bmp(Qt::yellow, 80, 20));
    EXPECT_EQ(listed(), u"A.GIF f.bmp"_s);
    EXPECT_TRUE(near(iconColour(0), Qt::red) && near(iconColour(1), Qt::yellow));
    list()->setCurrentRow(0);
    ctl<QComboBox>(w, "imgTypeCombo")->setCurrentIndex(3);
    EXPECT_FALSE(ctl<QPushButton>(w, "chgImgCmd")->isEnabled()) << "nothing is selected after a refill";
    EXPECT_EQ(listed(nullptr), u"f.bmp"_s);
}

TEST_F(PicturePanelTest, FolderComesFromTheChooserOrTheRefreshCommand) {
    test::TempDir other;
    other.write(u"sea.bmp"_s, bmp(Qt::blue));
    put(u"own.bmp"_s, bmp(Qt::red));
    EXPECT_EQ(listed(), u"own.bmp"_s);
    EXPECT_EQ(listed("imgChgDirBrowse"), u"own.bmp"_s); // cancelled: nothing changes
    EXPECT_EQ(fake.dialogs.folderRequests, QStringList{u"I62|"_s + library()});

    fake.dialogs.folderAnswers.push_back(other.path()); // chosen: shown and listed at once
    EXPECT_EQ(listed("imgChgDirBrowse"), u"sea.bmp"_s);
    EXPECT_EQ(ctl<QLineEdit>(w, "imgDirPath")->text(), QDir::toNativeSeparators(other.path()));
    // A typed folder is listed only on refresh; until then pictures come from the listed one.
    ctl<QLineEdit>(w, "imgDirPath")->setText(library());
    attach(u"sea.bmp"_s);
    EXPECT_EQ(slidePicture(1), other.file(u"sea.bmp"_s));
    EXPECT_EQ(listed(), u"own.bmp"_s);
}

TEST_F(PicturePanelTest, PictureOnAnEmptyMessageMakesSlideOne) {
    const QString small = put(u"small.bmp"_s, bmp(Qt::blue, 240, 60));
    listed();
    attach(u"small.bmp"_s);
    ASSERT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), small);
    EXPECT_TRUE(converted().isEmpty());
    EXPECT_EQ(strip(), u"_3s"_s);
    EXPECT_TRUE(w->isModified());
    // The strip thumbnail and the phone screen keep the picture's 4:1 shape.
    const QImage thumbnail = w->stripModel().thumbnail(1);
    EXPECT_TRUE(near(centre(thumbnail), Qt::blue));
    EXPECT_FALSE(near(thumbnail.pixelColor(35, 5), Qt::blue));
    EXPECT_EQ(ctl<QLabel>(w, "picPanel")->pixmap().size(), QSize(160, 40));
}

TEST_F(PicturePanelTest, RefusedOrFailedAttachLeavesTheSlideAsItWas) {
    const QString first = put(u"first.bmp"_s, bmp(Qt::red));
    put(u"noise.bmp"_s, test::encoded(test::noise(800, 600), "BMP"));
    put(u"gone.bmp"_s, bmp(Qt::blue));
    listed();
    attach(u"first.bmp"_s);
    w->setModified(false);
    // A JPEG still too large is refused and stays in the scratch folder.
    attach(u"noise.bmp"_s);
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E0"_s});
    EXPECT_EQ(converted().size(), 1);
    // A listed file removed since: the message names it.
    LanguageTexts texts = loc.texts();
    texts.errors[31] = u"E31 %1"_s;
    loc.setTexts(texts);
    QFile::remove(library() + u"/gone.bmp"_s);
    attach(u"gone.bmp"_s);
    ASSERT_EQ(fake.dialogs.shown.size(), 2u);
    EXPECT_TRUE(fake.dialogs.shown[1].text.startsWith(u"E31 "_s) &&
                fake.dialogs.shown[1].text.contains(u"gone.bmp"_s));

    EXPECT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(slidePicture(1), first);
    EXPECT_TRUE(near(centre(w->stripModel().thumbnail(1)), Qt::red));
    EXPECT_FALSE(w->isModified());
}

} // namespace
