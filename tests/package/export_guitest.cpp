#include "composer/composerfixture.h"
#include "package/archivereader.h"
#include "package/widgets/frmmmspromptsubject.h"
#include "support/recordingsink.h"

#include <QClipboard>
#include <QDir>
#include <QImage>
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
    state.txtsubject = u"old"_s;
    frmMMSPromptSubject prompt(loc, sink, state);
    EXPECT_EQ(QStringList({prompt.windowTitle(), prompt.Label1->text(), prompt.cmdUpload->text()}),
              QStringList({u"I63"_s, u"I60"_s, u"I63"_s}));

    const QString forbidden = u"~!@#$%^&*()+|\\?><,."_s;
    ASSERT_EQ(forbidden.size(), 19);
    const auto type = [&](const QString& keys) {
        for (QChar c : keys) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
            QApplication::sendEvent(prompt.subject, &press);
        }
    };
    type(u"a,b."_s + forbidden + u"c d-_'"_s);
    EXPECT_EQ(prompt.subject->text(), u"abc d-_'"_s);
    EXPECT_EQ(sink.texts(), QStringList(21, u"E10"_s));
    sink.shown.clear();

    // Empty and 26 characters stay in the window; nothing is handed back.
    for (const QString& text : {QString(), QString(26, u'x')}) {
        prompt.subject->setText(text);
        prompt.cmdUpload->click();
        EXPECT_FALSE(prompt.validflag || prompt.result() == QDialog::Accepted);
    }
    EXPECT_EQ(sink.texts(), QStringList({u"E16"_s, u"E17"_s}));
    EXPECT_EQ(state.txtsubject, u"old"_s);

    // Pasted text is not filtered; a pasted line break becomes a space.
    prompt.subject->clear();
    QGuiApplication::clipboard()->setText(u"Hi, you.\nBye"_s);
    prompt.subject->paste();
    prompt.cmdUpload->click();
    EXPECT_TRUE(prompt.validflag && prompt.result() == QDialog::Accepted);
    EXPECT_EQ(state.txtsubject, u"Hi, you. Bye"_s);

    frmMMSPromptSubject second(loc, sink, state);
    EXPECT_TRUE(second.subject->text().isEmpty() && !second.validflag);
    second.subject->setText(QString(25, u'y'));
    second.cmdUpload->click();
    EXPECT_TRUE(second.validflag && state.txtsubject == QString(25, u'y'));
    EXPECT_EQ(sink.shown.size(), 2u);
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
    // The next subject prompt is confirmed with `subject`.
    void answerSubject(const QString& subject) {
        fake.dialogs.modalHooks.push_back([subject](QDialog& d) {
            auto& prompt = dynamic_cast<frmMMSPromptSubject&>(d);
            prompt.subject->setText(subject);
            prompt.cmdUpload->click();
        });
    }
    // Two slides: a picture, a text and an AMR sound; then a text and a MIDI sound.
    void fillMessage() {
        QImage picture(40, 30, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        ASSERT_TRUE(picture.save(home.file(u"p.jpg"_s)));
        amr = home.write(u"s.amr"_s, "#!AMR\n\x3c\x01\x02");
        midi = home.write(u"t.mid"_s, "MThd fake");
        addSlides(u"AB"_s);
        pick(1);
        w->updateCurrentSlide(u"imgPath"_s, home.file(u"p.jpg"_s));
        w->updateCurrentSlide(u"soundPath"_s, amr);
        pick(2);
        w->updateCurrentSlide(u"soundPath"_s, midi);
    }
    QString upload() const { return home.file(u"upload.tpl"_s); }
    QStringList names(const std::vector<TarMember>& members) const {
        QStringList out;
        for (const TarMember& m : members)
            out << m.name;
        return out;
    }
    QString amr, midi;
};

TEST_F(ExportTest, ExportWritesTheArchiveToTheChosenPathReplacingAFileThere) {
    fillMessage();
    const QString target = home.write(u"out/mine.tpl"_s, "an older file");
    answerSubject(u"Holiday"_s);
    fake.dialogs.saveFileAnswers.push_back(target);
    w->mnu_upload_Click();

    EXPECT_EQ(fake.dialogs.saveFileRequests,
              QStringList(u"I63|"_s + home.path() + u"/UserData/MMS/|MMS Files (*.tpl)"_s));
    const auto members = readTar(target);
    EXPECT_EQ(names(members),
              QStringList({u"main.smil"_s, u"texts.xml"_s, u"pic1.jpg"_s, u"sound1.amr"_s, u"sound2.mid"_s}));
    ASSERT_EQ(members.size(), 5u);
    EXPECT_TRUE(members[1].bytes.contains("<title>Holiday</title>"));
    EXPECT_EQ(members[2].bytes, TempDir::read(home.file(u"p.jpg"_s)));
    EXPECT_EQ(members[4].bytes, TempDir::read(midi));
    EXPECT_FALSE(QFile::exists(upload()));
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_TRUE(fake.dialogs.shown[0].text == u"P10"_s && fake.dialogs.shown[0].title == u"I0"_s);
    EXPECT_EQ(w->messageState().txtsubject, u"Holiday"_s);
    EXPECT_TRUE(w->isModified());
}

TEST_F(ExportTest, EmptyMessageCancelAndFailure) {
    // An empty message exports the presentation and the manifest; the modified flag stays clear.
    answerSubject(u"Empty"_s);
    fake.dialogs.saveFileAnswers.push_back(home.file(u"empty.tpl"_s));
    w->createCmd_Click();
    EXPECT_EQ(names(readTar(home.file(u"empty.tpl"_s))), QStringList({u"main.smil"_s, u"texts.xml"_s}));
    EXPECT_FALSE(w->isModified());

    // Closing the prompt ends the command before anything is built.
    fake.dialogs.shown.clear();
    w->createCmd_Click();
    EXPECT_FALSE(QFile::exists(upload()));
    EXPECT_EQ(fake.dialogs.saveFileRequests.size(), 1);

    // Cancel in the save dialog: the archive stays in the application folder, nothing is shown.
    answerSubject(u"Kept"_s);
    w->createCmd_Click();
    EXPECT_EQ(names(readTar(upload())), QStringList({u"main.smil"_s, u"texts.xml"_s}));
    EXPECT_TRUE(fake.dialogs.shown.empty());
    EXPECT_EQ(w->messageState().txtsubject, u"Kept"_s);

    // A destination that cannot be written is reported; the archive stays too.
    answerSubject(u"Again"_s);
    fake.dialogs.saveFileAnswers.push_back(home.file(u"missing/folder/x.tpl"_s));
    w->createCmd_Click();
    ASSERT_EQ(fake.dialogs.shown.size(), 1u);
    EXPECT_TRUE(fake.dialogs.shown[0].text.startsWith(u"E30 "_s));
    EXPECT_TRUE(fake.dialogs.shown[0].text.contains(u"x.tpl"_s));
    EXPECT_TRUE(QFile::exists(upload()));
}

// Reads an MMS send request back field by field.
struct MmsReader {
    QByteArray b;
    int p = 0;
    quint8 byte() { return quint8(b.at(p++)); }
    QByteArray take(int n) {
        p += n;
        return b.mid(p - n, n);
    }
    quint64 uintvar() {
        quint64 v = 0;
        quint8 c;
        do
            v = (v << 7) | ((c = byte()) & 0x7F);
        while (c & 0x80);
        return v;
    }
    QByteArray text() { // up to and without the 00
        const int end = b.indexOf('\0', p);
        return take(end - p + 1).chopped(1);
    }
    // "type;param;..." with well-known values as hex; the field's length must match what was read.
    QString contentType() {
        quint64 v = byte();
        if (v == 0x1F) v = uintvar();
        const int end = p + int(v);
        QString out = b.at(p) & 0x80 ? QString::number(byte(), 16) : QString::fromUtf8(text());
        while (p < end) {
            const quint8 param = byte();
            out += u';' + QString::number(param, 16) + u'=' +
                   (param == 0x81 ? QString::number(byte(), 16) : QString::fromUtf8(text()));
        }
        EXPECT_EQ(p, end);
        return out;
    }
};

TEST_F(ExportTest, ExportAsMmsWritesOneSendRequestAndLeavesTheStoreAlone) {
    fillMessage();
    const QString out = home.file(u"hello.mms"_s);
    answerSubject(u"Hi"_s);
    fake.dialogs.saveFileAnswers.push_back(out);
    w->mnu_exportMms->trigger();
    EXPECT_EQ(fake.dialogs.saveFileRequests.last(),
              u"I64|"_s + home.path() + u"/UserData/MMS/|I65 (*.mms)"_s);
    EXPECT_EQ(fake.dialogs.texts(), QStringList(u"P11"_s));
    EXPECT_TRUE(QDir(home.file(u"UserData/MMS"_s)).isEmpty());
    EXPECT_TRUE(
        QDir(home.file(u"Temp"_s)).entryList({u"mms-*"_s}, QDir::AllEntries | QDir::Hidden).isEmpty());

    MmsReader r{TempDir::read(out)};
    EXPECT_EQ(r.take(2).toHex(), "8c80");
    EXPECT_TRUE(r.byte() == 0x98 && r.text() == "B1127540881");
    EXPECT_EQ(r.take(5).toHex(), "8d90890181");
    EXPECT_EQ(r.take(7).toHex(), "9605ea7f486900"); // subject "Hi"
    EXPECT_EQ(r.take(8).toHex(), "8a808f8186819081");
    EXPECT_EQ(r.take(4).toHex(), "841bb389");
    EXPECT_TRUE(r.text() == "application/smil" && r.byte() == 0x8A && r.text() == "<AAAA>");
    ASSERT_EQ(r.uintvar(), 6u); // main.smil, picture, text, sound; text, sound

    struct Part {
        QString type, id, location;
        QByteArray data;
    };
    const std::vector<Part> expected = {
        {u"application/smil;85=main.smil;81=ea"_s, u"<AAAA>"_s, {}, {}},
        {u"image/jpeg;85=pic1.jpg"_s, u"<pic1.jpg>"_s, u"pic1.jpg"_s, TempDir::read(home.file(u"p.jpg"_s))},
        {u"83;81=ea;85=text1.txt"_s, u"<text1.txt>"_s, u"text1.txt"_s, "A"},
        {u"audio/amr;85=sound1.amr"_s, u"<sound1.amr>"_s, u"sound1.amr"_s, TempDir::read(amr)},
        {u"83;81=ea;85=text2.txt"_s, u"<text2.txt>"_s, u"text2.txt"_s, "B"},
        {u"audio/midi;85=sound2.mid"_s, u"<sound2.mid>"_s, u"sound2.mid"_s, TempDir::read(midi)},
    };
    for (const Part& part : expected) {
        SCOPED_TRACE(part.id.toStdString());
        const quint64 headers = r.uintvar();
        const quint64 length = r.uintvar();
        const int start = r.p;
        EXPECT_EQ(r.contentType(), part.type);
        EXPECT_TRUE(r.byte() == 0xC0 && r.byte() == 0x22);
        EXPECT_EQ(QString::fromUtf8(r.text()), part.id);
        if (!part.location.isEmpty()) {
            EXPECT_TRUE(r.byte() == 0x8E && r.text() == part.location.toUtf8());
        }
        EXPECT_EQ(quint64(r.p - start), headers);
        const QByteArray data = r.take(int(length));
        if (part.data.isEmpty())
            EXPECT_TRUE(data.startsWith("<smil>") && data.contains("<img src=\"pic1.jpg\""));
        else
            EXPECT_EQ(data, part.data);
    }
    EXPECT_EQ(r.p, r.b.size());
    EXPECT_TRUE(w->isModified());

    // A media file gone missing: the failure names it and no file is written.
    QFile::remove(midi);
    answerSubject(u"Hi"_s);
    fake.dialogs.saveFileAnswers.push_back(home.file(u"broken.mms"_s));
    w->mnu_exportMms_Click();
    EXPECT_TRUE(fake.dialogs.texts().last().startsWith(u"E29 "_s));
    EXPECT_TRUE(fake.dialogs.texts().last().contains(u"t.mid"_s));
    EXPECT_FALSE(QFile::exists(home.file(u"broken.mms"_s)));
}

} // namespace
