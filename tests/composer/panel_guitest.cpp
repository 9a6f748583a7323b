#include "composerfixture.h"
#include "support/controls.h"

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
    EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("5s"));
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(5));
    // Typing goes on in front of the unit: a second digit makes 57 seconds.
    type(ctl<QLineEdit>(w, "txtSlideDur"), QStringLiteral("7"));
    EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("57s"));
    EXPECT_EQ(w->stripModel().label(1), label(1, 57));
    // Letters, blanks and Backspace are discarded.
    type(ctl<QLineEdit>(w, "txtSlideDur"), QStringLiteral("x "));
    pressKey(ctl<QLineEdit>(w, "txtSlideDur"), Qt::Key_Backspace);
    EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("57s"));
    EXPECT_TRUE(fake.dialogs.shown.empty());
    EXPECT_EQ(w->stripModel().label(2), label(2, 3));
}

TEST_F(PanelTest, ADurationThatIsNoNumberIsUndoneAndOneBeyondSixteenBitsIsNotStored) {
    ctl<QToolButton>(w, "addCmd")->click();
    focusIn(ctl<QLineEdit>(w, "txtSlideDur")); // the box shows 3s
    ctl<QLineEdit>(w, "txtSlideDur")->setCursorPosition(2);
    type(ctl<QLineEdit>(w, "txtSlideDur"), QStringLiteral("5")); // 3s5
    ASSERT_EQ(fake.dialogs.texts(), QStringList{QStringLiteral("I9")});
    EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("3s"));
    // An emptied box: the same message, and the text at focus comes back.
    ctl<QLineEdit>(w, "txtSlideDur")->selectAll();
    pressKey(ctl<QLineEdit>(w, "txtSlideDur"), Qt::Key_Delete);
    EXPECT_EQ(fake.dialogs.texts(), (QStringList{QStringLiteral("I9"), QStringLiteral("I9")}));
    EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("3s"));
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(3));

    fake.dialogs.shown.clear();
    w->setModified(false);
    focusIn(ctl<QLineEdit>(w, "txtSlideDur"));
    ctl<QLineEdit>(w, "txtSlideDur")->setText(QStringLiteral("40000")); // pasted over the whole text
    EXPECT_EQ(ctl<QLineEdit>(w, "txtSlideDur")->text(), QStringLiteral("40000s"));
    EXPECT_EQ(w->message().firstItem()->DataSlideDur, SlideDur::fromNumber(3));
    EXPECT_EQ(w->stripModel().label(1), label(1, 3));
    EXPECT_FALSE(w->isModified());
    EXPECT_TRUE(fake.dialogs.shown.empty());
}

TEST_F(PanelTest, TheTextHintMakesWayAndEveryKeystrokeIsCommittedAndCounted) {
    EXPECT_EQ(ctl<QLabel>(w, "lblSize")->text(), QStringLiteral("I26 : 0 byte"));
    // The box is disabled with an empty message; should text reach it, it makes the first slide.
    ctl<QPlainTextEdit>(w, "txtText")->setPlainText(QStringLiteral("Hello"));
    ASSERT_EQ(w->message().getTotalSlide(), 1);
    EXPECT_EQ(w->message().firstItem()->DataText, QStringLiteral("Hello"));
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("Hello"));
    EXPECT_EQ(w->selectedSlide(), 1);
    EXPECT_EQ(ctl<QLabel>(w, "lblSlide")->text(), QStringLiteral("I26 : 1"));

    ctl<QToolButton>(w, "addCmd")->click();
    w->setModified(false);
    ASSERT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("I36"));
    w->txtText_Click();
    EXPECT_TRUE(ctl<QPlainTextEdit>(w, "txtText")->toPlainText().isEmpty());
    type(ctl<QPlainTextEdit>(w, "txtText"), QStringLiteral("Hi"));
    EXPECT_EQ(w->message().lastItem()->DataText, QStringLiteral("Hi"));
    EXPECT_TRUE(w->isModified());
    const qint32 size = w->message().getTotalSize({}, {}, {});
    EXPECT_EQ(ctl<QLabel>(w, "lblSize")->text(), QStringLiteral("I26 : %1bytes").arg(size));
    type(ctl<QPlainTextEdit>(w, "txtText"), QStringLiteral("!"));
    EXPECT_EQ(ctl<QLabel>(w, "lblSize")->text(), QStringLiteral("I26 : %1bytes").arg(size + 1));
    w->txtText_Click(); // a click into real text leaves it alone
    EXPECT_EQ(ctl<QPlainTextEdit>(w, "txtText")->toPlainText(), QStringLiteral("Hi!"));

    w->updateCurrentSlide(QStringLiteral("soundPath"),
                          home.write(QStringLiteral("tune.mid"), QByteArray(1000, 'x')));
    const qint32 withSound = w->message().getTotalSize({}, {}, {});
    EXPECT_EQ(ctl<QLabel>(w, "lblSize")->text(), QStringLiteral("I26 : %1bytes").arg(withSound));
    EXPECT_GE(withSound, size + 1001);
}

TEST_F(PanelTest, TheSoundLabelNamesAStoredSoundAfterItsMessage) {
    addSlides(QStringLiteral("AB"));
    w->messageState().currentFile = QStringLiteral("party");
    const std::pair<QString, QString> sounds[] = {
        {home.file(QStringLiteral("UserData/MMS/temp/sound2.mid")), QStringLiteral("party-sound2.mid")},
        {home.file(QStringLiteral("lib/sound1.amr")), QStringLiteral("sound1.amr")}};
    for (const auto& [path, shown] : sounds) {
        w->updateCurrentSlide(QStringLiteral("soundPath"), path);
        w->lstSlide_ItemClick();
        EXPECT_EQ(ctl<QLabel>(w, "lblSoundName")->text(), shown);
        EXPECT_TRUE(ctl<QToolButton>(w, "soundPlayCmd")->isEnabled());
    }
    pick(1);
    EXPECT_TRUE(ctl<QLabel>(w, "lblSoundName")->text().isEmpty());
    EXPECT_FALSE(ctl<QToolButton>(w, "soundPlayCmd")->isEnabled());
}

} // namespace
