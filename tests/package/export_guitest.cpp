#include "composer/composerfixture.h"
#include "package/archivereader.h"
#include "package/widgets/frmmmspromptsubject.h"
#include "support/controls.h"
#include "support/recordingsink.h"

#include <QClipboard>
#include <QDir>
#include <QLabel>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

TEST(SubjectPrompt, RefusesTypedForbiddenCharactersEmptyAndLongSubjects) {
    Localisation loc;
    loc.setTexts(numberedTexts());
    RecordingSink sink;
    MessageState state;
    frmMMSPromptSubject prompt(loc, sink, state);
    type(prompt.subject, u"a,b.~c d-_'"_s);
    EXPECT_EQ(prompt.subject->text(), u"abc d-_'"_s);
    // Empty and 26 characters stay in the window; 25 are handed back.
    for (const QString& text : {QString(), QString(26, u'x'), QString(25, u'y')}) {
        prompt.subject->setText(text);
        prompt.cmdUpload->click();
        EXPECT_EQ(prompt.validflag && prompt.result() == QDialog::Accepted, text.size() == 25) << text.size();
    }
    EXPECT_EQ(sink.texts(), (QStringList{u"E10"_s, u"E10"_s, u"E10"_s, u"E16"_s, u"E17"_s}));
    EXPECT_EQ(state.txtsubject, QString(25, u'y'));
    // A new prompt starts empty; pasted text is not filtered, and a pasted line break becomes a space.
    frmMMSPromptSubject second(loc, sink, state);
    EXPECT_TRUE(second.subject->text().isEmpty());
    QGuiApplication::clipboard()->setText(u"Hi, you.\nBye"_s);
    second.subject->paste();
    second.cmdUpload->click();
    EXPECT_EQ(state.txtsubject, u"Hi, you. Bye"_s);
}

class ExportTest : public ComposerTest {
protected:
    void SetUp() override {
        LanguageTexts texts = numberedTexts();
        texts.errors[29] = u"E29 %1"_s;
        texts.errors[30] = u"E30 %1"_s;
        loc.setTexts(texts);
        start();
    }
    // The next subject prompt is confirmed with `subject`, the save dialog then with `path` (none: cancel).
    void answer(const QString& subject, const QString& path = {}) {
        if (!path.isEmpty()) fake.dialogs.saveFileAnswers.push_back(path);
        fake.dialogs.modalHooks.push_back([subject](QDialog& d) {
            auto& prompt = dynamic_cast<frmMMSPromptSubject&>(d);
            prompt.subject->setText(subject);
            prompt.cmdUpload->click();
        });
    }
    // Two slides: a picture, a text and an AMR sound; then a text and a MIDI sound.
    void fillMessage() {
        picture = savePicture(u"p.jpg"_s, Qt::darkCyan);
        amr = home.write(u"s.amr"_s, "#!AMR\n\x3c\x01\x02");
        midi = home.write(u"t.mid"_s, "MThd fake");
        addSlides(u"AB"_s);
        pick(1);
        w->updateCurrentSlide(u"imgPath"_s, picture);
        w->updateCurrentSlide(u"soundPath"_s, amr);
        pick(2);
        w->updateCurrentSlide(u"soundPath"_s, midi);
    }
    QString upload() const { return home.file(u"upload.tpl"_s); }
    QString picture, amr, midi;
};

TEST_F(ExportTest, ExportWritesTheArchiveToTheChosenPathReplacingAFileThere) {
    fillMessage();
    const QString target = home.write(u"out/mine.tpl"_s, "an older file");
    answer(u"Holiday"_s, target);
    w->mnu_upload_Click();
    EXPECT_EQ(fake.dialogs.saveFileRequests,
              QStringList(u"I63|"_s + home.path() + u"/UserData/MMS/|MMS Files (*.tpl)"_s));
    ASSERT_EQ(tarNames(target), u"main.smil texts.xml pic1.jpg sound1.amr sound2.mid"_s);
    EXPECT_TRUE(readTar(target)[1].bytes.contains("<title>Holiday</title>"));
    EXPECT_FALSE(QFile::exists(upload()));
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_TRUE(fake.dialogs.shown[0].text == u"P10"_s && fake.dialogs.shown[0].title == u"I0"_s);
    EXPECT_EQ(w->messageState().txtsubject, u"Holiday"_s);
    EXPECT_TRUE(w->isModified());
}

TEST_F(ExportTest, EmptyMessageCancelAndFailure) {
    // An empty message exports the presentation and the manifest; the modified flag stays clear.
    answer(u"Empty"_s, home.file(u"empty.tpl"_s));
    w->createCmd_Click();
    EXPECT_EQ(tarNames(home.file(u"empty.tpl"_s)), u"main.smil texts.xml"_s);
    EXPECT_FALSE(w->isModified());

    // Closing the prompt ends the command before anything is built.
    fake.dialogs.shown.clear();
    w->createCmd_Click();
    EXPECT_FALSE(QFile::exists(upload()));
    EXPECT_EQ(fake.dialogs.saveFileRequests.size(), 1);

    // Cancel in the save dialog: the archive stays in the application folder, nothing is shown.
    answer(u"Kept"_s);
    w->createCmd_Click();
    EXPECT_EQ(tarNames(upload()), u"main.smil texts.xml"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty());
    EXPECT_EQ(w->messageState().txtsubject, u"Kept"_s);

    // A destination that cannot be written is reported; the archive stays too.
    answer(u"Again"_s, home.file(u"missing/folder/x.tpl"_s));
    w->createCmd_Click();
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_TRUE(fake.dialogs.shown[0].text.startsWith(u"E30 "_s) &&
                fake.dialogs.shown[0].text.contains(u"x.tpl"_s));
    EXPECT_TRUE(QFile::exists(upload()));
}

TEST_F(ExportTest, ExportAsMmsWritesOneSendRequestAndLeavesTheStoreAlone) {
    fillMessage();
    const QString out = home.file(u"hello.mms"_s);
    answer(u"Hi"_s, out);
    ctl<QAction>(w, "mnu_exportMms")->trigger();
    EXPECT_EQ(fake.dialogs.saveFileRequests.last(),
              u"I64|"_s + home.path() + u"/UserData/MMS/|I65 (*.mms)"_s);
    EXPECT_EQ(fake.dialogs.texts(), QStringList(u"P11"_s));
    EXPECT_TRUE(QDir(home.file(u"UserData/MMS"_s)).isEmpty()); // no stored copy, and no scratch left:
    EXPECT_TRUE(
        QDir(home.file(u"Temp"_s)).entryList({u"mms-*"_s}, QDir::AllEntries | QDir::Hidden).isEmpty());

    // The parts in slide order, each part's data right after its name (the rest is the encoder's).
    const QByteArray mms = TempDir::read(out);
    qsizetype at = 0;
    for (const QByteArray& part :
         {QByteArray("pic1.jpg\0", 9) + TempDir::read(picture), QByteArray("text1.txt\0A", 11),
          QByteArray("sound1.amr\0", 11) + TempDir::read(amr), QByteArray("text2.txt\0B", 11),
          QByteArray("sound2.mid\0", 11) + TempDir::read(midi)}) {
        at = mms.indexOf(part, at);
        ASSERT_GE(at, 0) << part.left(10).toStdString();
    }
    EXPECT_TRUE(w->isModified());

    // A media file gone missing: the failure names it and no file is written.
    QFile::remove(midi);
    answer(u"Hi"_s, home.file(u"broken.mms"_s));
    w->mnu_exportMms_Click();
    EXPECT_TRUE(fake.dialogs.texts().last().startsWith(u"E29 "_s) &&
                fake.dialogs.texts().last().contains(u"t.mid"_s));
    EXPECT_FALSE(QFile::exists(home.file(u"broken.mms"_s)));
}

} // namespace
