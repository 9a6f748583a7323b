#include "composer/slidepicture.h"
#include "support/controls.h"
#include "composerfixture.h"

#include <QAction>
#include <QGroupBox>
#include <QLabel>

using namespace mms;
using namespace mms::test;

namespace {

using StripTest = ComposerTest;

TEST_F(StripTest, AddShowsTheNewSlideAfterTheSelectedOneOrAtTheBack) {
    ctl<QToolButton>(w, "addCmd")->click();
    EXPECT_EQ(labels(), QStringList{label(1, 3)});
    EXPECT_EQ(ctl<QGroupBox>(w, "frameSlide")->title(), QStringLiteral("I9 1"));
    EXPECT_TRUE(ctl<QToolButton>(w, "removeCmd")->isEnabled() && ctl<QPushButton>(w, "createCmd")->isEnabled() && ctl<QAction>(w, "rm_slide")->isEnabled() &&
                ctl<QAction>(w, "mnu_upload")->isEnabled() && ctl<QGroupBox>(w, "frameSlide")->isEnabled());
    EXPECT_FALSE(ctl<QToolButton>(w, "soundPlayCmd")->isEnabled());
    EXPECT_EQ(moves(), (Moves{false, false}));
    EXPECT_EQ(ctl<QLabel>(w, "lblSlide")->text(), QStringLiteral("I26 : 1"));
    // The shown duration was committed as a number; the hint was never stored as the text.
    ASSERT_TRUE(w->message().firstItem()->DataSlideDur.isNumber());
    EXPECT_EQ(w->message().firstItem()->DataSlideDur.number(), 3);
    EXPECT_TRUE(w->message().firstItem()->DataText.isEmpty());
    EXPECT_TRUE(w->isModified());

    typeText(QStringLiteral("A"));
    addSlides(QStringLiteral("BCD"));
    pick(4);
    typeDuration(QStringLiteral("9"));
    pick(2);
    ctl<QToolButton>(w, "addCmd")->click();
    EXPECT_EQ(order(), QStringLiteral("AB_CD"));
    EXPECT_EQ(w->selectedSlide(), 3);
    EXPECT_EQ(labels(), (QStringList{label(1, 3), label(2, 3), label(3, 3), label(4, 3), label(5, 9)}));
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("I36"));
    expectInStep();

    pick(5);
    ctl<QAction>(w, "add_slide")->trigger();
    EXPECT_EQ(w->selectedSlide(), 6);
    EXPECT_EQ(order(), QStringLiteral("AB_CD_"));
    EXPECT_EQ(moves(), (Moves{true, false}));
    expectInStep();
    EXPECT_TRUE(fake.dialogs.shown.empty()) << fake.dialogs.texts().join(QLatin1Char('|')).toStdString();
}

TEST_F(StripTest, RemoveSelectsTheNeighbourAndTheLastRemovalResetsThePanel) {
    addSlides(QStringLiteral("ABC"));
    ctl<QToolButton>(w, "removeCmd")->click(); // the last of three
    EXPECT_EQ(order(), QStringLiteral("AB"));
    EXPECT_EQ(w->selectedSlide(), 2);
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("B"));

    pick(1);
    ctl<QAction>(w, "rm_slide")->trigger();
    EXPECT_EQ(order(), QStringLiteral("B"));
    EXPECT_EQ(ctl<QGroupBox>(w, "frameSlide")->title(), QStringLiteral("I9 1"));
    expectInStep();

    ctl<QToolButton>(w, "removeCmd")->click();
    EXPECT_TRUE(w->message().IsEmpty());
    EXPECT_EQ(w->stripModel().count(), 0);
    EXPECT_EQ(ctl<QLabel>(w, "lblSlide")->text(), QStringLiteral("I26 : 0"));
    EXPECT_EQ(ctl<QLabel>(w, "lblSize")->text(), QStringLiteral("I26 : 0 byte"));
    EXPECT_EQ(ctl<QGroupBox>(w, "frameSlide")->title(), QStringLiteral("I9 "));
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("I36"));
    EXPECT_TRUE(ctl<QLineEdit>(w, "txtSlideDur")->text().isEmpty());
    EXPECT_FALSE(ctl<QGroupBox>(w, "frameSlide")->isEnabled() || ctl<QToolButton>(w, "removeCmd")->isEnabled() || ctl<QPushButton>(w, "createCmd")->isEnabled() ||
                 ctl<QAction>(w, "rm_slide")->isEnabled() || ctl<QAction>(w, "mnu_upload")->isEnabled());
    EXPECT_TRUE(w->isModified());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(StripTest, MovesCarryTextDurationAndThumbnailAndSelectTheMovedSlide) {
    addSlides(QStringLiteral("ABCDE"));
    // Slide C gets its own duration and picture, so all three can be followed.
    pick(3);
    typeDuration(QStringLiteral("7"));
    w->updateCurrentSlide(QStringLiteral("imgPath"), savePicture(QStringLiteral("red.png"), Qt::red));
    const QImage cThumb = w->stripModel().thumbnail(3);
    EXPECT_NE(cThumb, blankThumbnail());

    struct Step {
        void (frmMMSMain::*command)();
        int from;
        QString order;
        int selected;
        Moves moves;
    };
    const Step steps[] = {
        {&frmMMSMain::fCmd_Click, 3, QStringLiteral("ACBDE"), 2, {true, true}},
        {&frmMMSMain::ffCmd_Click, 2, QStringLiteral("CABDE"), 1, {false, true}},
        {&frmMMSMain::rrCmd_Click, 1, QStringLiteral("ABDEC"), 5, {true, false}},
        {&frmMMSMain::fCmd_Click, 5, QStringLiteral("ABDCE"), 4, {true, true}},
        {&frmMMSMain::rCmd_Click, 4, QStringLiteral("ABDEC"), 5, {true, false}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.order.toStdString());
        pick(step.from);
        w->setModified(false);
        (w.get()->*step.command)();
        EXPECT_EQ(order(), step.order);
        EXPECT_EQ(w->selectedSlide(), step.selected);
        EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("C"));
        EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("7s"));
        EXPECT_EQ(w->stripModel().label(step.selected), label(step.selected, 7));
        EXPECT_EQ(w->stripModel().thumbnail(step.selected), cThumb);
        EXPECT_EQ(moves(), step.moves);
        EXPECT_TRUE(w->isModified());
        expectInStep();
    }
    // The menu commands do the same; a move that cannot apply does nothing.
    pick(2);
    ctl<QAction>(w, "sendfront")->trigger();
    EXPECT_EQ(order(), QStringLiteral("BADEC"));
    w->fCmd_Click();
    w->ffCmd_Click();
    EXPECT_EQ(order(), QStringLiteral("BADEC"));
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(StripTest, ShowingASlideIsNoChangeButEveryCommandIs) {
    addSlides(QStringLiteral("AB"));
    w->setModified(false);
    pick(1);
    EXPECT_FALSE(w->isModified());
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("A"));
    typeText(QStringLiteral("x")); // a change made before another slide is shown stays a change
    pick(2);
    EXPECT_TRUE(w->isModified());
}

TEST_F(StripTest, AGonePictureIsReportedAndAVideoClipKeepsTheThumbnail) {
    addSlides(QStringLiteral("AB"));
    pick(1);
    const QString picture = savePicture(QStringLiteral("blue.bmp"), Qt::blue);
    w->updateCurrentSlide(QStringLiteral("imgPath"), picture);
    ASSERT_TRUE(QFile::remove(picture));
    pick(2);
    pick(1);
    EXPECT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("E6")});
    // The rest of the slide is shown all the same, so typing goes to the right slide.
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("A"));
    EXPECT_EQ(ctl<QGroupBox>(w, "frameSlide")->title(), QStringLiteral("I9 1"));

    fake.dialogs.shown.clear();
    pick(2);
    const QImage before = w->stripModel().thumbnail(2);
    w->updateCurrentSlide(QStringLiteral("imgPath"), home.file(QStringLiteral("clip.3gp")));
    EXPECT_EQ(w->message().lastItem()->DataImgPath, home.file(QStringLiteral("clip.3gp")));
    EXPECT_EQ(w->stripModel().thumbnail(2), before);
    w->lstSlide_ItemClick();
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

} // namespace
