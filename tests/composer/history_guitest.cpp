// Undo and redo of every command that changes the message, the commands that take a picture or a
// sound off a slide, and slides and files dropped on the composer, down to the drop events.
#include "composer/widgets/slidestripview.h"
#include "composerfixture.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QUndoStack>
#include <QUrl>
#include <functional>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

// Everything the message and its view hold, apart from which slide is selected.
struct Snapshot {
    QStringList labels;
    QList<QImage> thumbnails;
    QList<SlideContent> nodes;
    QString counters;
    bool operator==(const Snapshot&) const = default;
};

class HistoryTest : public ComposerTest {
protected:
    void SetUp() override {
        ComposerTest::SetUp();
        compose();
    }
    Snapshot snapshot() const {
        Snapshot s;
        for (int i = 1; i <= w->stripModel().count(); ++i) {
            s.labels << w->stripModel().label(i);
            s.thumbnails << w->stripModel().thumbnail(i);
        }
        for (auto n = w->message().firstItem(); n; n = n->NextNode)
            s.nodes << contentOf(*n);
        s.counters = ctl<QLabel>(w, "lblSlide")->text() + ctl<QLabel>(w, "lblSize")->text();
        return s;
    }
    // The panel shows the selected slide, as after any command.
    void expectPanelShowsSelection() const {
        const NodePtr node = w->message().nodeAt(w->selectedSlide());
        ASSERT_TRUE(node);
        const QString text = ctl<QPlainTextEdit>(w, "txtText")->toPlainText();
        EXPECT_EQ(text, node->DataText.isEmpty() ? u"I36"_s : node->DataText);
        EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), node->DataSlideDur.toString() + u's');
    }
    void undo() { ctl<QAction>(w, "mnu_undo")->trigger(); }
    void redo() { ctl<QAction>(w, "mnu_redo")->trigger(); }
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

TEST_F(HistoryTest, EveryCommandIsUndoneAndRedoneWithStripThumbnailsAndListInStep) {
    struct Case {
        const char* step; // the caption the Edit menu names it by
        std::function<void()> command;
    };
    const QString cropped = home.write(u"Temp/tmpMID/12345.mid"_s, "MThd");
    const QString red = savePicture(u"UserData/Picture/red.bmp"_s, Qt::red);
    const QString dropped = savePicture(u"elsewhere/blue.bmp"_s, Qt::blue);
    const Case cases[] = {
        {"I10", [&] { pick(1), ctl<QToolButton>(w, "addCmd")->click(); }},
        {"I11", [&] { pick(2), ctl<QToolButton>(w, "removeCmd")->click(); }},
        {"I12", [&] { pick(3), ctl<QToolButton>(w, "ffCmd")->click(); }},
        {"I14", [&] { pick(2), ctl<QAction>(w, "sendfwd")->trigger(); }},
        {"I15", [&] { pick(1), ctl<QToolButton>(w, "rCmd")->click(); }},
        {"I13", [&] { pick(1), ctl<QAction>(w, "sendback")->trigger(); }},
        {"I92", [&] { w->lstSlide_DragDrop(3, 1); }},
        {"I85", [&] { pick(2), typeDuration(u"12"_s); }},
        {"I86", [&] { pick(1), typeText(u"xyz"_s); }},
        {"I87", [&] { pick(3), w->attachToCurrentSlide(u"imgPath"_s, red); }},
        {"I88", [&] { pick(3), ctl<QAction>(w, "mnu_removePicture")->trigger(); }},
        {"I89", [&] { pick(1), w->attachToCurrentSlide(u"soundPath"_s, tune); }},
        {"I90", [&] { pick(1), ctl<QAction>(w, "mnu_removeSound")->trigger(); }},
        {"I91", [&] { pick(2), w->attachToCurrentSlide(u"soundPath"_s, cropped); }},
        {"I87", [&] { w->dropFiles({dropped}, 1); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(QString::number(&c - cases).toStdString() + " " + c.step);
        const Snapshot before = snapshot();
        const int steps = w->history().index();
        c.command();
        const Snapshot after = snapshot();
        ASSERT_NE(after, before);
        EXPECT_EQ(w->history().index(), steps + 1); // one step, however many keys were typed
        EXPECT_EQ(ctl<QAction>(w, "mnu_undo")->text(), u"&I83"_s);
        EXPECT_EQ(w->history().undoText(), QLatin1String(c.step));
        undo();
        EXPECT_EQ(snapshot(), before);
        expectPanelShowsSelection();
        redo();
        EXPECT_EQ(snapshot(), after);
        expectPanelShowsSelection();
        EXPECT_FALSE(strip().contains(u'?')) << strip().toStdString();
        EXPECT_TRUE(w->isModified() && w->isWindowModified());
    }
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();
    // Picture and sound come off through the context menus of the phone frame and the sound's name,
    // and through the Delete key while either has the focus.
    for (const auto& [owner, action] :
         {std::pair{"phoneScreen", "mnu_removePicture"}, {"lblSoundName", "mnu_removeSound"}}) {
        auto* widget = ctl<QWidget>(w, owner);
        EXPECT_EQ(widget->contextMenuPolicy(), Qt::ActionsContextMenu);
        EXPECT_TRUE(widget->actions().contains(ctl<QAction>(w, action)));
        EXPECT_EQ(ctl<QAction>(w, action)->shortcut(), QKeySequence(Qt::Key_Delete));
    }
}

TEST_F(HistoryTest, TypingPausesSplitStepsAndNewClearsTheHistory) {
    pick(1);
    typeText(u"ab"_s);
    fake.clock.time = fake.clock.time.addSecs(3);
    typeText(u"cd"_s);
    undo();
    EXPECT_EQ(strip(), u"Aab5s B3s C3s"_s);
    undo();
    EXPECT_EQ(strip(), u"A5s B3s C3s"_s);
    // Typing back to where the burst began leaves nothing to undo.
    const int steps = w->history().index();
    typeText(u"x"_s);
    pressKey(ctl<QPlainTextEdit>(w, "txtText"), Qt::Key_Backspace);
    EXPECT_EQ(w->history().index(), steps);

    fake.dialogs.answers.push_back(Answer::No);
    ctl<QAction>(w, "mnu_new")->trigger();
    EXPECT_EQ(w->history().count(), 0);
    EXPECT_FALSE(ctl<QAction>(w, "mnu_undo")->isEnabled());
    // Ctrl+Z in the text boxes undoes the message's steps, not the box's own typing.
    QKeyEvent undoKey(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
    QApplication::sendEvent(ctl<QPlainTextEdit>(w, "txtText"), &undoKey);
    EXPECT_FALSE(undoKey.isAccepted());
    EXPECT_EQ(ctl<QAction>(w, "mnu_undo")->text(), u"&I81"_s);
}

TEST_F(HistoryTest, TheStripAndTheSlidePanelTakeDropsThroughThePanelsAttachRules) {
    const QString bigGif = home.write(u"Downloads/big.gif"_s, QByteArray(102400, 'g'));
    const QString bigAmr = home.write(u"Downloads/big.amr"_s, QByteArray(102400, 'a'));
    const QString text = home.write(u"Downloads/notes.txt"_s, "x");
    const int steps = w->history().count();
    w->dropFiles({text, bigGif, bigAmr});
    EXPECT_EQ(fake.dialogs.texts(),
              (QStringList{u"E37"_s, u"E0"_s, u"E1"_s})); // the language texts name no file here
    EXPECT_EQ(w->history().count(), steps);
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
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(u'|').toStdString();

    fake.dialogs.answers.push_back(Answer::No);
    w->mnu_new_Click();
    w->dropFiles({red}); // on an empty message a slide is made for it
    EXPECT_EQ(strip(), u"_3s"_s);
    EXPECT_EQ(pictureOf(1), red);
}

} // namespace
