// The slide strip and the slide panel beside it: adding, removing and moving slides, the duration
// and text boxes, the counters and size gauge, and the phone screen both show slides on.
#include "common/filesize.h"
#include "composer/phonescreen.h"
#include "composer/widgets/sizegauge.h"
#include "composer/widgets/slideframe.h"
#include "composerfixture.h"
#include "support/scratchsettings.h"

#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QSpinBox>
#include <QTransform>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class StripTest : public ComposerTest {
protected:
    QLineEdit* duration() const { return ctl<QLineEdit>(w, "txtSlideDur"); }
    QString size() const { return ctl<QLabel>(w, "lblSize")->text(); }
};

TEST_F(StripTest, AddShowsTheNewSlideAfterTheSelectedOneOrAtTheBack) {
    ctl<QToolButton>(w, "addCmd")->click();
    EXPECT_EQ(strip(), u"_3s"_s);
    EXPECT_EQ(ctl<SlideFrame>(w, "frameSlide")->slideTitle() + ctl<QLabel>(w, "lblSlide")->text(),
              u"I9 1I26 : 1"_s);
    EXPECT_EQ(enabled({"removeCmd", "createCmd", "rm_slide", "mnu_upload", "frameSlide", "soundPlayCmd"}),
              u"111110"_s);
    EXPECT_EQ(moves(), u"0000 0000"_s);
    // The shown duration was committed as a number; the hint was never stored as the text.
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(3));
    EXPECT_TRUE(w->isModified());

    typeText(u"A"_s);
    addSlides(u"BCD"_s);
    pick(4);
    typeDuration(u"9"_s);
    pick(2);
    ctl<QToolButton>(w, "addCmd")->click();
    EXPECT_EQ(strip(), u"A3s B3s _3s C3s D9s"_s);
    EXPECT_EQ(w->selectedSlide(), 3);

    // Showing a slide is no change, and leaves a change made before it one.
    w->setModified(false);
    pick(5);
    EXPECT_FALSE(w->isModified());
    ctl<QAction>(w, "add_slide")->trigger();
    EXPECT_EQ(w->selectedSlide(), 6);
    EXPECT_EQ(moves(), u"1111 0000"_s);
    pick(1);
    EXPECT_TRUE(w->isModified());
    EXPECT_EQ(strip(), u"A3s B3s _3s C3s D9s _3s"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(StripTest, RemoveSelectsTheNeighbourAndTheLastRemovalResetsThePanel) {
    addSlides(u"ABC"_s);
    ctl<QToolButton>(w, "removeCmd")->click(); // the last of three
    EXPECT_EQ(w->selectedSlide(), 2);
    pick(1);
    ctl<QAction>(w, "rm_slide")->trigger();
    EXPECT_EQ(strip(), u"B3s"_s);

    ctl<QToolButton>(w, "removeCmd")->click();
    EXPECT_EQ(strip(), QString());
    EXPECT_EQ(ctl<QLabel>(w, "lblSlide")->text() + u'|' + ctl<QLabel>(w, "lblSize")->text() + u'|' +
                  ctl<SlideFrame>(w, "frameSlide")->slideTitle() + u'|' +
                  ctl<QLineEdit>(w, "txtSlideDur")->text() + u'|' +
                  ctl<QPlainTextEdit>(w, "txtText")->toPlainText(),
              u"I26 : 0|I26 : 0 byte|I9 ||I36"_s);
    EXPECT_EQ(enabled({"frameSlide", "removeCmd", "createCmd", "rm_slide", "mnu_upload"}), u"00000"_s);
    EXPECT_TRUE(w->isModified() && fake.dialogs.shown.empty());
}

TEST_F(StripTest, MovesCarryTheSlideAndItsLabelAndSelectTheMovedSlide) {
    addSlides(u"ABCDE"_s);
    pick(3);
    typeDuration(u"7"_s);
    const struct {
        const char* command;
        int from;
        QString strip; // C is the slide with 7 seconds
        int selected;
        QString moves;
    } steps[] = {
        {"fCmd", 3, u"A C7 B D E"_s, 2, u"1111 1111"_s},
        {"ffCmd", 2, u"C7 A B D E"_s, 1, u"0000 1111"_s},
        {"rrCmd", 1, u"A B D E C7"_s, 5, u"1111 0000"_s},
        {"sendfwd", 5, u"A B D C7 E"_s, 4, u"1111 1111"_s},
        {"rCmd", 4, u"A B D E C7"_s, 5, u"1111 0000"_s},
        {"sendfront", 5, u"C7 A B D E"_s, 1, u"0000 1111"_s},
        {"sendbwd", 1, u"A C7 B D E"_s, 2, u"1111 1111"_s},
        {"sendback", 2, u"A B D E C7"_s, 5, u"1111 0000"_s},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.command);
        pick(step.from);
        w->setModified(false);
        QObject* command = ctl<QObject>(w, step.command);
        if (auto* button = qobject_cast<QToolButton*>(command)) button->click();
        if (auto* action = qobject_cast<QAction*>(command)) action->trigger();
        EXPECT_EQ(strip().remove(u"3s"_s).remove(u's'), step.strip);
        EXPECT_EQ(w->selectedSlide(), step.selected);
        EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText() + ctl<QLineEdit>(w, "txtSlideDur")->text(),
                  u"C7s"_s);
        EXPECT_EQ(moves(), step.moves);
        EXPECT_TRUE(w->isModified());
    }
    w->rCmd_Click(); // a move that cannot apply does nothing
    w->rrCmd_Click();
    EXPECT_EQ(strip(), u"A3s B3s D3s E3s C7s"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(StripTest, AGonePictureIsReportedAndAVideoClipKeepsTheThumbnail) {
    compose();
    ASSERT_TRUE(QFile::remove(picture));
    pick(1);
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E6"_s});
    // The rest of the slide is shown all the same, so typing goes to the right slide.
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), u"A"_s);
    EXPECT_EQ(ctl<SlideFrame>(w, "frameSlide")->slideTitle(), u"I9 1"_s);

    fake.dialogs.shown.clear();
    pick(2);
    const QImage before = w->stripModel().thumbnail(2);
    w->updateCurrentSlide(u"imgPath"_s, home.file(u"clip.3gp"_s));
    EXPECT_EQ(w->message().nodeAt(2)->DataImgPath, home.file(u"clip.3gp"_s));
    EXPECT_EQ(w->stripModel().thumbnail(2), before);
    w->lstSlide_ItemClick();
    EXPECT_TRUE(fake.dialogs.shown.empty());
    // Removing a slide shows the one after it once, when the removal is done, not also while the
    // view moves its current item there (slide 3's gone picture says each time it is shown).
    pick(3);
    w->updateCurrentSlide(u"imgPath"_s, picture);
    pick(1);
    fake.dialogs.shown.clear();
    w->removeCmd_Click();
    w->removeCmd_Click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"E6"_s});
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), u"C"_s);
}

TEST_F(StripTest, TheDurationBoxTakesWholeSecondsAndPutsBackAnythingElse) {
    addSlides(u"AB"_s);
    pick(1);
    typeDuration(u"5"_s);
    // Typing goes on in front of the unit; letters, blanks and Backspace are discarded.
    type(duration(), u"7x "_s);
    pressKey(duration(), Qt::Key_Backspace);
    EXPECT_EQ(duration()->text(), u"57s"_s);
    EXPECT_EQ(strip(), u"A57s B3s"_s);

    pick(2);
    focusIn(duration()); // the box shows 3s
    duration()->setCursorPosition(2);
    type(duration(), u"5"_s); // 3s5
    EXPECT_EQ(duration()->text(), u"3s"_s);
    duration()->selectAll(); // an emptied box: the same message, and the text at focus comes back
    pressKey(duration(), Qt::Key_Delete);
    EXPECT_EQ(duration()->text(), u"3s"_s);
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{u"I9"_s, u"I9"_s}));

    fake.dialogs.shown.clear();
    w->setModified(false);
    focusIn(duration());
    duration()->setText(u"40000"_s); // pasted over the whole text: beyond 16 bits, not stored
    EXPECT_EQ(duration()->text(), u"40000s"_s);
    EXPECT_EQ(w->message().nodeAt(2)->DataSlideDur, SlideDur::fromNumber(3));
    EXPECT_EQ(strip(), u"A57s B3s"_s);
    EXPECT_FALSE(w->isModified());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(StripTest, TheTextHintMakesWayAndEveryKeystrokeIsCommittedAndCounted) {
    auto* text = ctl<QPlainTextEdit>(w, "txtText");
    // The box is disabled with an empty message; should text reach it, it makes the first slide.
    text->setPlainText(u"Hello"_s);
    ASSERT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(w->message().firstItem()->DataText, u"Hello"_s);
    EXPECT_EQ(ctl<QLabel>(w, "lblSlide")->text(), u"I26 : 1"_s);

    ctl<QToolButton>(w, "addCmd")->click();
    w->setModified(false);
    ASSERT_EQ(text->toPlainText(), u"I36"_s);
    w->txtText_Click();
    EXPECT_TRUE(text->toPlainText().isEmpty());
    type(text, u"Hi"_s);
    EXPECT_EQ(w->message().lastItem()->DataText, u"Hi"_s);
    EXPECT_TRUE(w->isModified());
    const qint32 bytes = w->message().getTotalSize({}, {}, {});
    EXPECT_EQ(size(), u"I26 : %1bytes"_s.arg(bytes));
    type(text, u"!"_s);
    EXPECT_EQ(size(), u"I26 : %1bytes"_s.arg(bytes + 1));
    w->txtText_Click(); // a click into real text leaves it alone
    EXPECT_EQ(text->toPlainText(), u"Hi!"_s);
}

class SizeGaugeTest : public ComposerTest {
protected:
    void SetUp() override {
        LanguageTexts texts = numberedTexts();
        texts.interface[sizetext::kKilobytes] = u"%1 KB"_s;
        texts.interface[sizetext::kGaugeTip] = u"%1 of %2"_s;
        loc.setTexts(texts);
        start();
    }
    SizeGauge& gauge() { return *ctl<SizeGauge>(w, "sizeGauge"); }
    // A picture file of about `kilobytes` KB.
    QString picture(int kilobytes) {
        return home.write(u"pic.bmp"_s,
                          padded(encoded(filled(8, 8, Qt::red), "BMP"), qsizetype(kilobytes) * 1024));
    }
    const ScratchSettings settings; // before the window reads the limit
};

TEST_F(SizeGaugeTest, FollowsTheRunningTotalAndTheLimitTheUserChooses) {
    addSlides(u"A"_s);
    w->attachToCurrentSlide(u"imgPath"_s, picture(95));
    ctl<QAction>(gauge(), "mnu_limit100")->trigger();
    EXPECT_EQ(gauge().level(), GaugeLevel::Near);
    EXPECT_EQ(gauge().toolTip(), u"95 KB of 100 KB"_s);

    // A file grown outside the program counts once its slide is shown again.
    picture(110);
    EXPECT_EQ(gauge().level(), GaugeLevel::Near);
    w->lstSlide_ItemClick();
    EXPECT_EQ(gauge().level(), GaugeLevel::Over);
    // So does every file whenever the window comes back to the front.
    picture(96);
    w->show();
    QApplication::setActiveWindow(w.get());
    EXPECT_EQ(gauge().toolTip(), u"96 KB of 100 KB"_s);
    picture(110);
    QApplication::setActiveWindow(nullptr);
    QApplication::setActiveWindow(w.get());
    EXPECT_EQ(gauge().level(), GaugeLevel::Over);

    // Exporting over the limit asks first; only Yes goes on to the subject prompt.
    ctl<QPushButton>(w, "createCmd")->click();
    EXPECT_EQ(fake.dialogs.texts(), QStringList{u"P%1"_s.arg(sizetext::kPromptExportOverLimit)});
    EXPECT_EQ(fake.dialogs.modalRuns, 0);
    fake.dialogs.answers.push_back(Answer::Yes);
    w->mnu_exportMms_Click();
    EXPECT_EQ(fake.dialogs.modalRuns, 1);

    // A custom limit, asked for in a window of its own, is kept for the next start.
    fake.dialogs.modalHooks.push_back([](QDialog& dialog) {
        ctl<QSpinBox>(dialog, "txtLimit")->setValue(500);
        dialog.accept();
    });
    ctl<QAction>(gauge(), "mnu_limitCustom")->trigger();
    EXPECT_EQ(gauge().limit(), 500 * 1024);
    EXPECT_EQ(gauge().level(), GaugeLevel::Normal);
    start();
    EXPECT_EQ(gauge().limit(), 500 * 1024);
}

// The smallest rectangle of `image` holding every pixel that is not white; empty when none is.
QRect inked(const QImage& image) {
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != qRgb(255, 255, 255)) box |= QRect(x, y, 1, 1);
    return box;
}

TEST(PhoneScreen, PicturesAndTextsStayInTheirRegions) {
    TempDir dir;
    const QString small = dir.write(u"small.png"_s, encoded(filled(20, 10, Qt::red), "PNG"));
    const QString large = dir.write(u"large.png"_s, encoded(filled(480, 330, Qt::green), "PNG"));
    const QString longText = u"A text far too long for one line of the small screen, which goes on and on"_s;
    const int s = 2;
    const QRect image = QTransform::fromScale(s, s).mapRect(kImageRegion);
    const QRect text = QTransform::fromScale(s, s).mapRect(kTextRegion);
    const struct {
        ScreenSlide slide;
        QRect ink; // where the drawing lies; for text, within the text region
    } cases[] = {
        {{small, {}}, QRect(70 * s, 50 * s, 20 * s, 10 * s)}, // centred, not enlarged, pixel for pixel
        {{large, {}}, image},                                 // scaled down to fill the region
        {{dir.write(u"broken.jpg"_s, "not a picture"), {}}, image},
        {{dir.file(u"clip.3gp"_s), {}}, image},
        {{{}, u"Hi"_s}, text},
        {{{}, longText}, text},
    };
    for (const auto& c : cases) {
        const QImage screen = renderPhoneScreen(c.slide, s);
        ASSERT_EQ(screen.size(), kPhoneScreenSize * s);
        const QRect ink = inked(screen);
        if (c.slide.text.isEmpty()) {
            EXPECT_EQ(ink, c.ink) << c.slide.picturePath.toStdString();
            continue;
        }
        EXPECT_TRUE(c.ink.contains(ink)) << c.slide.text.toStdString();
        // One line of capitals is about 60 % of the region high; two lines fill it nearly whole.
        const bool twoLines = ink.height() > text.height() * 3 / 4;
        EXPECT_EQ(twoLines, c.slide.text == longText) << c.slide.text.toStdString();
    }
    EXPECT_EQ(renderPhoneScreen({small, {}}, 1).pixel(79, 54), qRgb(255, 0, 0));
}

} // namespace
