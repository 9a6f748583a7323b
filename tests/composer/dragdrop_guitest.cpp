// Slides dragged in the strip and files dropped on the composer, down to the drop events.
#include "composer/widgets/slidestripview.h"
#include "composerfixture.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QUndoStack>
#include <QUrl>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class DropTest : public ComposerTest {
protected:
    // Drags `data` over `target` and drops it at `pos`; the action the drop settled on.
    static Qt::DropAction drop(QWidget* target, const QMimeData& data, QPoint pos) {
        const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(pos, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDragMoveEvent move(pos, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &move);
        QDropEvent dropped(pos, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &dropped);
        return dropped.isAccepted() ? dropped.dropAction() : Qt::IgnoreAction;
    }
    static QMimeData* files(const QStringList& paths) {
        auto* data = new QMimeData;
        QList<QUrl> urls;
        for (const QString& p : paths)
            urls << QUrl::fromLocalFile(p);
        data->setUrls(urls);
        return data;
    }
    QString pictureOf(int position) const { return w->message().nodeAt(position)->DataImgPath; }
};

TEST_F(DropTest, TheStripAndTheSlidePanelTakeDropsThroughThePanelsAttachRules) {
    compose();
    const QString bigGif = home.write(u"Downloads/big.gif"_s, QByteArray(102400, 'g'));
    const QString bigAmr = home.write(u"Downloads/big.amr"_s, QByteArray(102400, 'a'));
    const QString text = home.write(u"Downloads/notes.txt"_s, "x");
    const int steps = w->history().count();
    w->dropFiles({text, bigGif, bigAmr});
    EXPECT_EQ(fake.dialogs.texts(),
              (QStringList{u"E37"_s, u"E0"_s, u"E1"_s})); // the language texts name no file here
    EXPECT_EQ(w->history().count(), steps);
    EXPECT_TRUE(pictureOf(2).isEmpty());
    fake.dialogs.shown.clear();

    w->show();
    QApplication::processEvents();
    auto* view = ctl<QListView>(w, "lstSlide");
    const auto centreOf = [&](int position) {
        return view->visualRect(w->stripModel().index(position - 1)).center();
    };
    QMimeData slide;
    slide.setData(SlideStripView::kSlideMimeType, "1");
    EXPECT_EQ(drop(view->viewport(), slide, centreOf(3)), Qt::MoveAction);
    EXPECT_EQ(strip(), u"B3s C3s A5s"_s);
    EXPECT_EQ(w->selectedSlide(), 3);

    // Files are copied, never moved away from the file manager.
    const QString red = savePicture(u"Downloads/red.bmp"_s, Qt::red);
    const QString blue = savePicture(u"Downloads/blue.bmp"_s, Qt::blue);
    const QString other = home.write(u"Downloads/other.mid"_s, QByteArray(200, 'm'));
    std::unique_ptr<QMimeData> onItem(files({red, other}));
    EXPECT_EQ(drop(view->viewport(), *onItem, centreOf(2)), Qt::CopyAction);
    EXPECT_EQ(w->selectedSlide(), 2);
    EXPECT_EQ(pictureOf(2), red);
    EXPECT_EQ(w->message().nodeAt(2)->DataSoundPath, other);
    std::unique_ptr<QMimeData> onPanel(files({blue}));
    EXPECT_EQ(drop(ctl<QPlainTextEdit>(w, "txtText")->viewport(), *onPanel, {5, 5}), Qt::CopyAction);
    EXPECT_EQ(pictureOf(2), blue);
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), u"C"_s); // no path typed into the text
    EXPECT_EQ(w->history().undoText(), u"I87"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();

    fake.dialogs.answers.push_back(Answer::No);
    w->mnu_new_Click();
    w->dropFiles({red}); // on an empty message a slide is made for it
    EXPECT_EQ(strip(), u"_3s"_s);
    EXPECT_EQ(pictureOf(1), red);
}

} // namespace
