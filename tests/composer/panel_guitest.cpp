#include "composerfixture.h"

#include <QGroupBox>
#include <QLabel>

using namespace mms;
using namespace mms::test;

namespace {

using PanelTest = ComposerTest;

TEST_F(PanelTest, TypedDurationsAreCommittedAndShownWithTheUnit) {
    addSlides(QStringLiteral("AB"));
    pick(1);
    typeDuration(QStringLiteral("5"));
    EXPECT_EQ(w->txtSlideDur->text(), QStringLiteral("5s"));
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(5));
    EXPECT_EQ(w->stripModel().label(1), label(1, 5));
    // Typing goes on in front of the unit: a second digit makes 57 seconds.
    type(w->txtSlideDur, QStringLiteral("7"));
    EXPECT_EQ(w->txtSlideDur->text(), QStringLiteral("57s"));
    EXPECT_EQ(w->stripModel().label(1), label(1, 57));
    // Letters, blanks and Backspace are discarded.
    type(w->txtSlideDur, QStringLiteral("x "));
    pressKey(w->txtSlideDur, Qt::Key_Backspace);
    EXPECT_EQ(w->txtSlideDur->text(), QStringLiteral("57s"));
    EXPECT_TRUE(fake.dialogs.shown.empty());
    EXPECT_EQ(w->stripModel().label(2), label(2, 3));
}

TEST_F(PanelTest, ADurationThatIsNoNumberIsUndoneWithAMessage) {
    w->addCmd->click();
    focusIn(w->txtSlideDur); // the box shows 3s
    w->txtSlideDur->setCursorPosition(2);
    type(w->txtSlideDur, QStringLiteral("5")); // 3s5
    ASSERT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("I9")});
    EXPECT_EQ(w->txtSlideDur->text(), QStringLiteral("3s"));
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(3));

    // An emptied box: the same message, and the text at focus comes back.
    w->txtSlideDur->selectAll();
    pressKey(w->txtSlideDur, Qt::Key_Delete);
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("I9"), QStringLiteral("I9")}));
    EXPECT_EQ(w->txtSlideDur->text(), QStringLiteral("3s"));
    EXPECT_EQ(w->stripModel().label(1), label(1, 3));
}

TEST_F(PanelTest, ADurationBeyondSixteenBitsIsNotStored) {
    w->addCmd->click();
    w->setModified(false);
    focusIn(w->txtSlideDur);
    w->txtSlideDur->setText(QStringLiteral("40000")); // pasted over the whole text
    EXPECT_EQ(w->txtSlideDur->text(), QStringLiteral("40000s"));
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(3));
    EXPECT_EQ(w->stripModel().label(1), label(1, 3));
    EXPECT_FALSE(w->isModified());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PanelTest, TheTextHintMakesWayAndEveryKeystrokeIsCommitted) {
    w->addCmd->click();
    w->setModified(false);
    ASSERT_EQ(w->txtText->toPlainText(), QStringLiteral("I36"));
    w->txtText_Click();
    EXPECT_TRUE(w->txtText->toPlainText().isEmpty());
    type(w->txtText, QStringLiteral("Hi"));
    EXPECT_EQ(w->message().firstItem()->DataText, QStringLiteral("Hi"));
    EXPECT_TRUE(w->isModified());
    const qint32 size = w->message().getTotalSize({}, {}, {});
    EXPECT_EQ(w->lblSize->text(), QStringLiteral("I26 : %1bytes").arg(size));
    type(w->txtText, QStringLiteral("!"));
    EXPECT_EQ(w->message().firstItem()->DataText, QStringLiteral("Hi!"));
    EXPECT_EQ(w->lblSize->text(), QStringLiteral("I26 : %1bytes").arg(size + 1));
    // A click into real text leaves it alone.
    w->txtText_Click();
    EXPECT_EQ(w->txtText->toPlainText(), QStringLiteral("Hi!"));
}

TEST_F(PanelTest, TypingIntoAnEmptyMessageMakesTheFirstSlide) {
    // The box is disabled with the panel; the handler still copes when text reaches it.
    w->txtText->setPlainText(QStringLiteral("Hello"));
    ASSERT_FALSE(w->message().IsEmpty());
    EXPECT_EQ(w->message().firstItem()->DataText, QStringLiteral("Hello"));
    EXPECT_EQ(w->txtText->toPlainText(), QStringLiteral("Hello"));
    EXPECT_EQ(w->selectedSlide(), 1);
    EXPECT_EQ(w->lblSlide->text(), QStringLiteral("I26 : 1"));
}

TEST_F(PanelTest, CountersFollowResetAndCommits) {
    EXPECT_EQ(w->lblSlide->text(), QStringLiteral("I26 : 0"));
    EXPECT_EQ(w->lblSize->text(), QStringLiteral("I26 : 0 byte"));
    addSlides(QStringLiteral("AB"));
    const QString sound = home.write(QStringLiteral("tune.mid"), QByteArray(1000, 'x'));
    w->updateCurrentSlide(QStringLiteral("soundPath"), sound);
    EXPECT_EQ(w->lblSlide->text(), QStringLiteral("I26 : 2"));
    EXPECT_EQ(w->lblSize->text(), QStringLiteral("I26 : %1bytes").arg(w->message().getTotalSize({}, {}, {})));
    EXPECT_GT(w->message().getTotalSize({}, {}, {}), 1000);
}

TEST_F(PanelTest, TheSoundLabelNamesAStoredSoundAfterItsMessage) {
    addSlides(QStringLiteral("AB"));
    w->messageState().currentFile = QStringLiteral("party");
    w->updateCurrentSlide(QStringLiteral("soundPath"),
                          home.file(QStringLiteral("UserData/MMS/temp/sound2.mid")));
    w->lstSlide_ItemClick();
    EXPECT_EQ(w->lblSoundName->text(), QStringLiteral("party-sound2.mid"));
    EXPECT_TRUE(w->soundPlayCmd->isEnabled());
    w->updateCurrentSlide(QStringLiteral("soundPath"), home.file(QStringLiteral("lib/sound1.amr")));
    w->lstSlide_ItemClick();
    EXPECT_EQ(w->lblSoundName->text(), QStringLiteral("sound1.amr"));
    pick(1);
    EXPECT_TRUE(w->lblSoundName->text().isEmpty());
    EXPECT_FALSE(w->soundPlayCmd->isEnabled());
}

} // namespace
