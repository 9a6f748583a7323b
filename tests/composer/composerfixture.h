#pragma once

#include "common/localisation.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/frmmmsmain.h"
#include "image/picturefiles.h"
#include "support/controls.h"
#include "support/fakeplatform.h"
#include "support/qtprint.h"
#include "support/tempdir.h"

#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QToolButton>
#include <gtest/gtest.h>
#include <memory>

namespace mms::test {

using namespace Qt::StringLiterals;

// Texts that name themselves ("I26", "P2", "E7"), so a test sees which entry was shown.
inline LanguageTexts numberedTexts() {
    LanguageTexts t;
    for (int i = 0; i < 128; ++i) {
        if (i < 20) t.prompts << u"P%1"_s.arg(i);
        if (i < 45) t.errors << u"E%1"_s.arg(i);
        t.interface << u"I%1"_s.arg(i);
    }
    return t;
}

// A started composer window on scripted seams, with a fresh application folder.
class ComposerTest : public ::testing::Test {
protected:
    void SetUp() override {
        loc.setTexts(numberedTexts());
        options.settingsFile = home.file(u"settings.ini"_s);
        start();
    }

    // Starts a fresh window with `options`; the failure message, empty when it started.
    QString tryStart() {
        options.appFolder = home.path();
        w = std::make_unique<frmMMSMain>(fake.platform, loc, options);
        const Status s = w->Form_Load();
        return s.isOk() ? QString() : s.message();
    }
    void start() { ASSERT_EQ(tryStart(), QString()); }
    // Starts with the shipped language file for `code`.
    void startIn(const QString& code) {
        options.languageCode = code;
        options.languageFolder = QStringLiteral(MMS_BIN_DIR);
        start();
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
        return home.write(name,
                          encoded(filled(20, 10, colour), QFileInfo(name).suffix().toLatin1().constData()));
    }
    // The message most tests start from: "A" with `picture` and 5 seconds, "B" with `tune`, "C".
    void compose() {
        picture = savePicture(u"UserData/Picture/green.png"_s, Qt::green);
        tune = home.write(u"UserData/Sound/tune.mid"_s, QByteArray(300, 'm'));
        addSlides(u"ABC"_s);
        pick(1);
        typeDuration(u"5"_s);
        w->attachToCurrentSlide(u"imgPath"_s, picture);
        pick(2);
        w->attachToCurrentSlide(u"soundPath"_s, tune);
    }

    // The slides in list order as text and duration ("A3s", "_" for no text), the duration read from
    // the strip item at the same place: an item out of step with its slide shows as "?".
    QString strip() const {
        QStringList out;
        int row = 1;
        for (auto n = w->message().firstItem(); n; n = n->NextNode, ++row) {
            const QString label = w->stripModel().label(row);
            const bool numbered = label.startsWith(QString::number(row) + u'.');
            out << (n->DataText.isEmpty() ? u"_"_s : n->DataText) +
                       (numbered ? label.section(u' ', -1) : u"?"_s);
        }
        if (w->stripModel().count() != row - 1) out << u"?"_s;
        return out.join(u' ');
    }
    bool exists(const QString& relative) const { return QFileInfo::exists(home.file(relative)); }
    QString enabled(std::initializer_list<const char*> names) const { return test::enabled(*w, names); }
    // The forward and backward move commands, buttons and menu items alike: "1111 0000" when only
    // moving to the front is possible.
    QString moves() const {
        return enabled({"ffCmd", "fCmd", "sendfront", "sendfwd"}) + u' ' +
               enabled({"rrCmd", "rCmd", "sendbwd", "sendback"});
    }

    TempDir home;
    FakePlatform fake;
    Localisation loc;
    frmMMSMain::Options options;
    std::unique_ptr<frmMMSMain> w;
    QString picture, tune; // set by compose()
};

} // namespace mms::test
