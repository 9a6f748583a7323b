#include "package/widgets/frmmmspromptsubject.h"

#include "common/commontexts.h"
#include "common/localisation.h"
#include "common/packagetexts.h"
#include "package/mmsaddress.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace mms {

namespace {

constexpr QStringView kForbidden = u"~!@#$%^&*()+|\\?><,.";

// The subject becomes line 1 of the message index and a zero-terminated header field of an MMS, so
// a line break or other control character pasted into the box is taken as a space.
QString singleLine(QString text) {
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control) c = QLatin1Char(' ');
    return text;
}

// Characters as the user counts them: a character outside the Basic Multilingual Plane is one.
qsizetype characterCount(const QString& text) {
    return text.toUcs4().size();
}

} // namespace

frmMMSPromptSubject::frmMMSPromptSubject(const Localisation& texts, MessageSink& sink, MessageState& state,
                                         QWidget* parent, bool askRecipients)
    : QDialog(parent), subject(new QLineEdit(this)), Label1(new QLabel(this)),
      cmdUpload(new QPushButton(this)), texts_(texts), sink_(sink), state_(state) {
    setObjectName(QStringLiteral("frmMMSPromptSubject"));
    subject->setObjectName(QStringLiteral("subject"));
    Label1->setObjectName(QStringLiteral("Label1"));
    cmdUpload->setObjectName(QStringLiteral("cmdUpload"));
    setModal(true);

    Label1->setBuddy(subject);
    cmdUpload->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdUpload);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Label1);
    layout->addWidget(subject);
    if (askRecipients) {
        lblRecipients = new QLabel(this);
        txtRecipients = new QLineEdit(this);
        lblRecipients->setObjectName(QStringLiteral("lblRecipients"));
        txtRecipients->setObjectName(QStringLiteral("txtRecipients"));
        lblRecipients->setBuddy(txtRecipients);
        layout->addSpacing(6);
        layout->addWidget(lblRecipients);
        layout->addWidget(txtRecipients);
        setTabOrder(subject, txtRecipients); // the button was made first
        setTabOrder(txtRecipients, cmdUpload);
    }
    layout->addSpacing(6);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    // Room for a full-length subject.
    subject->setMinimumWidth(subject->fontMetrics().averageCharWidth() * (kMaxSubjectLength + 20));

    connect(cmdUpload, &QPushButton::clicked, this, [this] { cmdUpload_Click(); });
    connect(subject, &QLineEdit::textEdited, this, [this](const QString& text) { subject_Edited(text); });
    subject->installEventFilter(this);
    Form_Load();
    subject->setFocus();
}

bool frmMMSPromptSubject::isForbiddenSubjectChar(QChar c) {
    return kForbidden.contains(c);
}

void frmMMSPromptSubject::Form_Load() {
    subject->clear();
    setWindowTitle(texts_.getMCrInterfaceStr(commontext::kExport));
    Label1->setText(texts_.getMCrInterfaceStr(packagetext::kSubjectLabel));
    cmdUpload->setText(texts_.getMCrInterfaceStr(commontext::kExport));
    if (txtRecipients) {
        txtRecipients->clear();
        lblRecipients->setText(texts_.getMCrInterfaceStr(packagetext::kRecipientsLabel));
    }
    validflag = false;
    recipients.clear();
}

bool frmMMSPromptSubject::subject_KeyPress(QChar typed) {
    if (!isForbiddenSubjectChar(typed)) return true;
    showError(packagetext::kErrSubjectChar);
    return false;
}

void frmMMSPromptSubject::subject_Edited(const QString& text) {
    if (!text.contains(QLatin1Char(','))) return;
    const int cursor = subject->cursorPosition();
    const int before = int(QStringView(text).left(cursor).count(QLatin1Char(',')));
    subject->setText(QString(text).remove(QLatin1Char(',')));
    subject->setCursorPosition(cursor - before);
    showError(packagetext::kErrSubjectChar);
}

void frmMMSPromptSubject::cmdUpload_Click() {
    const QString text = singleLine(subject->text());
    if (text.isEmpty()) return showError(packagetext::kErrNoSubject);
    // Only text set without an edit of the box can still hold a comma here.
    if (text.contains(QLatin1Char(','))) return showError(packagetext::kErrSubjectChar);
    if (characterCount(text) > kMaxSubjectLength) return showError(packagetext::kErrSubjectTooLong);
    QStringList addresses;
    if (txtRecipients) {
        for (const QString& piece : splitAddressList(txtRecipients->text())) {
            const std::optional<QString> address = mmsAddress(piece);
            if (!address) return showError(packagetext::kErrNotAnAddress, piece);
            addresses << *address;
        }
    }
    state_.txtsubject = text;
    recipients = addresses;
    validflag = true;
    accept();
}

bool frmMMSPromptSubject::eventFilter(QObject* watched, QEvent* event) {
    if (watched == subject && event->type() == QEvent::KeyPress) {
        // Shortcuts such as Ctrl+V carry control characters, never a forbidden one, so pasting passes.
        for (QChar c : static_cast<QKeyEvent*>(event)->text())
            if (!subject_KeyPress(c)) return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmMMSPromptSubject::showError(int number, const QString& detail) const {
    QString text = texts_.getMCrErrStr(number);
    if (!detail.isEmpty()) text.replace(QStringLiteral("%1"), detail);
    sink_.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning, Answer::Ok});
}

} // namespace mms
