#pragma once

#include "model/messagesink.h"
#include "model/messagestate.h"

#include <QDialog>
#include <QString>
#include <QStringList>

class QLabel;
class QLineEdit;
class QPushButton;

namespace mms {

class Localisation;

// Asks for the subject of the message before an export. A valid subject is handed back through the
// composer's txtsubject, and validflag is true only then; any other way out leaves it false.
// Before Export as MMS it also asks whom the message goes to (the field may stay empty).
class frmMMSPromptSubject final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMMSPromptSubject)

public:
    // The longest subject accepted, in characters.
    static constexpr int kMaxSubjectLength = 25;

    frmMMSPromptSubject(const Localisation& texts, MessageSink& sink, MessageState& state,
                        QWidget* parent = nullptr, bool askRecipients = false);

    // The characters a subject may not be typed with.
    static bool isForbiddenSubjectChar(QChar c);

    void Form_Load();
    // Whether a typed character is kept; a forbidden one is refused with error text 10. Only typed
    // keys come here: text pasted into the box is taken as it is, except for commas (see below).
    bool subject_KeyPress(QChar typed);
    void cmdUpload_Click();

    bool validflag = false;
    // With askRecipients: the addresses the message goes to, in the form the send request carries
    // them; set together with validflag.
    QStringList recipients;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showError(int number, const QString& detail = QString()) const;
    // The message index keeps the subject on a line of comma-separated fields, so a comma pasted or
    // dropped into the box is taken out again, with the same error text as a typed one.
    void subject_Edited(const QString& text);

    QLineEdit* subject;
    QLabel* Label1;
    QPushButton* cmdUpload;
    QLabel* lblRecipients = nullptr;
    QLineEdit* txtRecipients = nullptr;

    const Localisation& texts_;
    MessageSink& sink_;
    MessageState& state_;
};

} // namespace mms
