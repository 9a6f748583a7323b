#pragma once

#include "common/localisation.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/frmmmsmain.h"
#include "support/controls.h"
#include "support/fakeplatform.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>
#include <gtest/gtest.h>
#include <memory>

namespace mms::test {

// Texts that name themselves ("I26", "P2", "E7"), so a test sees which entry was shown.
inline LanguageTexts numberedTexts() {
    LanguageTexts t;
    for (int i = 0; i < 89; ++i) {
        if (i < 14) t.prompts << QStringLiteral("P%1").arg(i);
        if (i < 36) t.errors << QStringLiteral("E%1").arg(i);
        t.interface << QStringLiteral("I%1").arg(i);
    }
    return t;
}

inline QString label(int position, int seconds) {
    return QStringLiteral("%1.             %2s").arg(position).arg(seconds);
}

// A started composer window on scripted seams, with a fresh application folder.
class ComposerTest : public ::testing::Test {
protected:
    void SetUp() override {
        loc.setTexts(numberedTexts());
        start();
    }

    void start() {
        frmMMSMain::Options options;
        options.appFolder = home.path();
        w = std::make_unique<frmMMSMain>(fake.platform, loc, options);
        const Status s = w->Form_Load();
        ASSERT_TRUE(s.isOk()) << s.message().toStdString();
    }

    // The user picks strip item `position`.
    void pick(int position) {
        ctl<QListView>(w, "lstSlide")
            ->selectionModel()
            ->setCurrentIndex(w->stripModel().index(position - 1), QItemSelectionModel::ClearAndSelect);
    }

    // Adds one slide per letter of `texts`, each with that letter as its text.
    void addSlides(const QString& texts) {
        for (QChar c : texts) {
            ctl<QToolButton>(w, "addCmd")->click();
            typeText(QString(c));
        }
    }

    static void type(QWidget* target, const QString& text) {
        for (QChar c : text) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
            QApplication::sendEvent(target, &press);
        }
    }
    static void pressKey(QWidget* target, int key) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(target, &press);
    }
    static void focusIn(QWidget* target) {
        QFocusEvent focus(QEvent::FocusIn, Qt::MouseFocusReason);
        QApplication::sendEvent(target, &focus);
    }
    // Clicks into the text box and types, as a user would.
    void typeText(const QString& text) {
        w->txtText_Click();
        ctl<QPlainTextEdit>(w, "txtText")->moveCursor(QTextCursor::End);
        type(ctl<QPlainTextEdit>(w, "txtText"), text);
    }
    // Selects the whole duration box and types `text` over it.
    void typeDuration(const QString& text) {
        focusIn(ctl<QLineEdit>(w, "txtSlideDur"));
        ctl<QLineEdit>(w, "txtSlideDur")->selectAll();
        type(ctl<QLineEdit>(w, "txtSlideDur"), text);
    }

    // A one-colour picture saved under the application folder.
    QString savePicture(const QString& name, Qt::GlobalColor colour) {
        QImage image(20, 10, QImage::Format_RGB32);
        image.fill(colour);
        const QString path = home.write(name, {});
        EXPECT_TRUE(image.save(path)) << path.toStdString();
        return path;
    }

    // The slide texts in list order, "_" for a slide without text.
    QString order() const {
        QString s;
        for (auto n = w->message().firstItem(); n; n = n->NextNode)
            s += n->DataText.isEmpty() ? QStringLiteral("_") : n->DataText;
        return s;
    }
    QStringList labels() const {
        QStringList out;
        for (int i = 1; i <= w->stripModel().count(); ++i)
            out << w->stripModel().label(i);
        return out;
    }
    // Strip items, thumbnails and nodes agree in number, and every label names its node's duration.
    void expectInStep() const {
        int position = 1;
        for (auto n = w->message().firstItem(); n; n = n->NextNode, ++position) {
            ASSERT_LE(position, w->stripModel().count());
            EXPECT_EQ(w->stripModel().label(position),
                      QStringLiteral("%1.             %2s").arg(position).arg(n->DataSlideDur.toString()));
            EXPECT_FALSE(w->stripModel().thumbnail(position).isNull());
        }
        EXPECT_EQ(position - 1, w->stripModel().count());
    }
    struct Moves {
        bool front, back;
        bool operator==(const Moves&) const = default;
    };
    Moves moves() const {
        const bool front = ctl<QToolButton>(w, "ffCmd")->isEnabled();
        const bool back = ctl<QToolButton>(w, "rrCmd")->isEnabled();
        EXPECT_EQ(ctl<QToolButton>(w, "fCmd")->isEnabled(), front);
        EXPECT_EQ(ctl<QAction>(w, "sendfront")->isEnabled(), front);
        EXPECT_EQ(ctl<QAction>(w, "sendfwd")->isEnabled(), front);
        EXPECT_EQ(ctl<QToolButton>(w, "rCmd")->isEnabled(), back);
        EXPECT_EQ(ctl<QAction>(w, "sendbwd")->isEnabled(), back);
        EXPECT_EQ(ctl<QAction>(w, "sendback")->isEnabled(), back);
        return {front, back};
    }

    TempDir home;
    FakePlatform fake;
    Localisation loc;
    std::unique_ptr<frmMMSMain> w;
};

} // namespace mms::test
