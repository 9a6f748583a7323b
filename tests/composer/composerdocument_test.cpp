// The document without a window: its commands and history.
#include "common/localisation.h"
#include "composer/composerdocument.h"
#include "composer/workspacefolders.h"
#include "support/qtprint.h"
#include "support/recordingsink.h"
#include "support/scriptedtime.h"
#include "support/tempdir.h"

#include <QUndoStack>
#include <gtest/gtest.h>

namespace mms::test {
namespace {

using namespace Qt::StringLiterals;

// No dialog is used here: every one is cancelled.
class ScriptedWindows final : public DocumentWindows {
public:
    bool runNameDialog(NameDialog) override { return false; }
    bool promptSubject(bool, QStringList*) override { return false; }
    QString chooseSaveFile(const QString&, const QString&, const QString&) override { return {}; }
};

class DocumentTest : public ::testing::Test {
protected:
    DocumentTest() {
        LanguageTexts texts;
        for (int i = 0; i < 110; ++i)
            texts.prompts << u"P%1"_s.arg(i), texts.errors << u"E%1"_s.arg(i),
                texts.interface << u"I%1"_s.arg(i);
        loc.setTexts(texts);
        EXPECT_TRUE(createWorkspaceFolders(home.path()).isOk());
        // As the window does: the slide a command shows becomes the selected one.
        QObject::connect(&document, &ComposerDocument::showSlide, [this](qint16 p) {
            shown << p;
            document.setCurrent(p);
        });
    }
    // The slides' texts in order.
    QString texts() const {
        QStringList out;
        for (int p = 1; p <= document.message().count(); ++p)
            out << document.message().at(p)->DataText;
        return out.join(u' ');
    }
    void add(const QString& text) {
        document.addSlide();
        document.commit(SlideField::Text, text);
    }

    TempDir home;
    RecordingSink sink;
    FixedClock clock;
    Localisation loc;
    ScriptedWindows windows;
    QList<qint16> shown;
    ComposerDocument document{sink, clock, loc, windows, {home.path(), 1}};
};

TEST_F(DocumentTest, CommandsShowWhatTheyLeaveSelectedAndTheHistoryReplaysThem) {
    for (const QString& t : {u"A"_s, u"B"_s, u"C"_s})
        add(t);
    document.setCurrent(1);
    document.addSlide(); // after the selected slide
    document.commit(SlideField::Duration, u"7s"_s);
    document.setCurrent(4);
    EXPECT_TRUE(document.moveToFront());
    EXPECT_TRUE(document.moveOnePlace(false));
    EXPECT_TRUE(document.moveToBack());
    EXPECT_FALSE(document.moveToBack()); // already there
    EXPECT_EQ(texts(), u"A  B C"_s);
    EXPECT_EQ(shown.mid(3), (QList<qint16>{2, 1, 2, 4}));
    document.setCurrent(2);
    EXPECT_TRUE(document.removeSlide());
    EXPECT_EQ(texts(), u"A B C"_s);
    EXPECT_TRUE(document.isModified());

    // Every step undoes to where the message began and redoes to where it is.
    const int steps = document.history().count();
    for (int i = 0; i < steps; ++i)
        document.undo();
    EXPECT_EQ(document.message().count(), 0);
    for (int i = 0; i < steps; ++i)
        document.redo();
    EXPECT_EQ(texts(), u"A B C"_s);
    EXPECT_EQ(document.message().count(), 3);
    EXPECT_TRUE(sink.texts().isEmpty()) << sink.texts().join(u'|').toStdString();
}

} // namespace
} // namespace mms::test
