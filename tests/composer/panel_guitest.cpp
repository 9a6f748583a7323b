#include "composerfixture.h"
#include "support/controls.h"

#include <QLabel>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

class PanelTest : public ComposerTest {
protected:
    QLineEdit* duration() const { return ctl<QLineEdit>(w, "txtSlideDur"); }
    QString size() const { return ctl<QLabel>(w, "lblSize")->text(); }
};

TEST_F(PanelTest, TypedDurationsAreCommittedAndShownWithTheUnit) {
    addSlides(u"AB"_s);
    pick(1);
    typeDuration(u"5"_s);
    EXPECT_EQ(duration()->text(), u"5s"_s);
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(5));
    // Typing goes on in front of the unit; letters, blanks and Backspace are discarded.
    type(duration(), u"7x "_s);
    pressKey(duration(), Qt::Key_Backspace);
    EXPECT_EQ(duration()->text(), u"57s"_s);
    EXPECT_EQ(strip(), u"A57s B3s"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PanelTest, ADurationThatIsNoNumberIsUndoneAndOneBeyondSixteenBitsIsNotStored) {
    ctl<QToolButton>(w, "addCmd")->click();
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
    duration()->setText(u"40000"_s); // pasted over the whole text
    EXPECT_EQ(duration()->text(), u"40000s"_s);
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(3));
    EXPECT_EQ(strip(), u"_3s"_s);
    EXPECT_FALSE(w->isModified());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PanelTest, TheTextHintMakesWayAndEveryKeystrokeIsCommittedAndCounted) {
    EXPECT_EQ(size(), u"I26 : 0 byte"_s);
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

} // namespace
