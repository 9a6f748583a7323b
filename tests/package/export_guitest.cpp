#include "common/packagetexts.h"
#include "composer/composerfixture.h"
#include "package/archivereader.h"
#include "package/messageexport.h"
#include "package/widgets/frmmmspromptsubject.h"

#include <QClipboard>
#include <QDir>

using namespace mms;
using namespace mms::test;
using namespace Qt::StringLiterals;

namespace {

QLineEdit* box(QDialog& d, const char* name) {
    return d.findChild<QLineEdit*>(QLatin1String(name));
}

void confirm(QDialog& d) {
    d.findChild<QPushButton*>(u"cmdUpload"_s)->click();
}

TEST(SubjectPrompt, RefusesTypedForbiddenCharactersEmptyAndLongSubjects) {
    Localisation loc;
    loc.setTexts(numberedTexts());
    RecordingSink sink;
    MessageState state;
    state.txtsubject = u"old"_s;
    frmMMSPromptSubject prompt(loc, sink, state);
    QLineEdit* subject = box(prompt, "subject");
    EXPECT_EQ(box(prompt, "txtRecipients"), nullptr);
    // Typed: "a,b.", the 19 forbidden characters, "c d-_'".
    type(subject, u"a,b.~!@#$%^&*()+|\\?><,.c d-_'"_s);
    EXPECT_EQ(subject->text(), u"abc d-_'"_s);
    EXPECT_EQ(sink.texts(), QStringList(21, u"E10"_s));
    sink.shown.clear();
    // Empty, 26 characters and a comma set without an edit stay in the window; nothing is handed back.
    for (const QString& text : {QString(), QString(26, u'x'), u"a,b"_s}) {
        subject->setText(text);
        confirm(prompt);
        EXPECT_FALSE(prompt.validflag || prompt.result() == QDialog::Accepted);
    }
    EXPECT_EQ(sink.texts(), QStringList({u"E16"_s, u"E17"_s, u"E10"_s}));
    EXPECT_EQ(state.txtsubject, u"old"_s);
    // Pasted text is not filtered but for commas; a pasted line break becomes a space.
    subject->clear();
    QGuiApplication::clipboard()->setText(u"Hi, you.\nBye,"_s);
    subject->paste();
    EXPECT_EQ(subject->cursorPosition(), subject->text().size());
    confirm(prompt);
    EXPECT_TRUE(prompt.validflag && prompt.result() == QDialog::Accepted);
    EXPECT_EQ(state.txtsubject, u"Hi you. Bye"_s);
    EXPECT_EQ(sink.texts().last(), u"E10"_s);
    // A new prompt starts empty; 25 characters are accepted.
    frmMMSPromptSubject second(loc, sink, state);
    EXPECT_TRUE(box(second, "subject")->text().isEmpty());
    box(second, "subject")->setText(QString(25, u'y'));
    confirm(second);
    EXPECT_TRUE(second.validflag && state.txtsubject == QString(25, u'y') && sink.shown.size() == 4u);
}

class ExportTest : public ComposerTest {
protected:
    void SetUp() override {
        LanguageTexts texts = numberedTexts();
        texts.errors[29] = u"E29 %1"_s;
        texts.errors[30] = u"E30 %1"_s;
        texts.errors[packagetext::kErrNotAnAddress] = u"E32 %1"_s;
        loc.setTexts(texts);
        start();
    }
    // The next subject prompt is confirmed with `subject`, the save dialog then with `path` (none: cancel).
    void answer(const QString& subject, const QString& path = {}) {
        if (!path.isEmpty()) fake.dialogs.saveFileAnswers.push_back(path);
        fake.dialogs.modalHooks.push_back([subject, to = recipients](QDialog& d) {
            box(d, "subject")->setText(subject);
            if (QLineEdit* field = box(d, "txtRecipients")) field->setText(to);
            confirm(d);
        });
    }
    // Two slides: a picture, a text and an AMR sound; then a text and a MIDI sound.
    void fillMessage() {
        addSlides(u"A"_s);
        w->updateCurrentSlide(u"imgPath"_s, savePicture(u"p.jpg"_s, Qt::darkCyan));
        w->updateCurrentSlide(u"soundPath"_s, home.write(u"s.amr"_s, "#!AMR\n\x3c\x01\x02"));
        addSlides(u"B"_s);
        w->updateCurrentSlide(u"soundPath"_s, home.write(u"t.mid"_s, "MThd fake"));
    }
    QString upload() const { return home.file(u"upload.tpl"_s); }
    QString recipients; // typed into the recipients field of Export as MMS
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
    // Closing the prompt ends the command before anything is built.
    w->createCmd_Click();
    EXPECT_FALSE(QFile::exists(upload()));
    EXPECT_TRUE(fake.dialogs.saveFileRequests.isEmpty());

    // Cancel in the save dialog: the empty message's presentation and manifest stay in the application
    // folder, nothing is shown, and the modified flag stays clear.
    answer(u"Kept"_s);
    w->createCmd_Click();
    EXPECT_EQ(tarNames(upload()), u"main.smil texts.xml"_s);
    EXPECT_TRUE(fake.dialogs.shown.empty() && !w->isModified());
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
    recipients = u"+44 1234, a@b.c"_s;
    answer(u"Hi"_s, out);
    ctl<QAction>(w, "mnu_exportMms")->trigger();
    EXPECT_EQ(fake.dialogs.saveFileRequests.last(),
              u"I64|"_s + home.path() + u"/UserData/MMS/|I65 (*.mms)"_s);
    EXPECT_EQ(fake.dialogs.texts(), QStringList(u"P11"_s));
    EXPECT_TRUE(QDir(home.file(u"UserData/MMS"_s)).isEmpty()); // no stored copy, and no scratch left:
    EXPECT_TRUE(
        QDir(home.file(u"Temp"_s)).entryList({u"mms-*"_s}, QDir::AllEntries | QDir::Hidden).isEmpty());

    // The typed recipients, the subject and the window's slides reach the encoder; its bytes are its own.
    MmsRecipients to;
    to.to = QStringList{u"+441234/TYPE=PLMN"_s, u"a@b.c"_s};
    TempDir reference;
    ASSERT_TRUE(writeMmsFile(w->message(), reference.path(), u"Hi"_s, reference.file(u"r.mms"_s), to));
    EXPECT_EQ(TempDir::read(out), TempDir::read(reference.file(u"r.mms"_s)));
    EXPECT_TRUE(w->isModified());

    // A media file gone missing: the failure names it.
    QFile::remove(home.file(u"t.mid"_s));
    answer(u"Hi"_s, home.file(u"broken.mms"_s));
    w->mnu_exportMms_Click();
    EXPECT_TRUE(fake.dialogs.texts().last().startsWith(u"E29 "_s) &&
                fake.dialogs.texts().last().contains(u"t.mid"_s));

    // A recipient that is no address is named, and the prompt stays open.
    recipients = u"a@b.c; Bob Smith"_s;
    answer(u"Hi"_s);
    w->mnu_exportMms_Click();
    EXPECT_EQ(fake.dialogs.texts().last(), u"E32 Bob Smith"_s);
}

} // namespace
