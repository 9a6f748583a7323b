#include "send/widgets/frmmmssend.h"

#include "common/commontexts.h"
#include "common/localisation.h"
#include "common/sendtexts.h"
#include "model/messagesink.h"
#include "package/mmsaddress.h"
#include "send/messagesender.h"
#include "send/sendwording.h"
#include "store/messagestore.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QCompleter>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringListModel>
#include <QTimer>
#include <QVBoxLayout>

namespace mms {

frmMMSSend::frmMMSSend(const Localisation& loc, MessageSink& sink, MessageSender& sender, Outgoing message,
                       QWidget* parent)
    : QDialog(parent), lblRecipients(new QLabel(this)), txtRecipients(new QLineEdit(this)),
      lblSubject(new QLabel(this)), txtSubject(new QLineEdit(this)), chkDeliveryReport(new QCheckBox(this)),
      lblSize(new QLabel(this)), lblStatus(new QLabel(this)), cmdSend(new QPushButton(this)),
      cmdCancel(new QPushButton(this)), loc_(loc), sink_(sink), sender_(sender),
      message_(std::move(message)) {
    setObjectName(QStringLiteral("frmMMSSend"));
    txtRecipients->setObjectName(QStringLiteral("txtRecipients"));
    txtSubject->setObjectName(QStringLiteral("txtSubject"));
    chkDeliveryReport->setObjectName(QStringLiteral("chkDeliveryReport"));
    lblSize->setObjectName(QStringLiteral("lblSize"));
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    cmdSend->setObjectName(QStringLiteral("cmdSend"));
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    setModal(true);

    auto* form = new QFormLayout;
    form->addRow(lblRecipients, txtRecipients);
    form->addRow(lblSubject, txtSubject);
    form->addRow(nullptr, chkDeliveryReport);
    lblRecipients->setBuddy(txtRecipients);
    lblSubject->setBuddy(txtSubject);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblStatus, 1);
    buttons->addWidget(cmdSend);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(lblSize);
    layout->addSpacing(6);
    layout->addLayout(buttons);
    txtRecipients->setMinimumWidth(txtRecipients->fontMetrics().averageCharWidth() * 48);
    cmdSend->setDefault(true);
    txtSubject->setText(message_.subject);

    // The completer offers recent numbers for the piece being typed, not the whole field.
    completer_ = new QCompleter(new QStringListModel(message_.recentNumbers, this), this);
    completer_->setWidget(txtRecipients);
    completer_->setCompletionMode(QCompleter::PopupCompletion);
    connect(txtRecipients, &QLineEdit::textEdited, this, &frmMMSSend::completeLastNumber);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this,
            [this](const QString& number) {
                QString text = txtRecipients->text();
                const qsizetype cut =
                    std::max(text.lastIndexOf(QLatin1Char(',')), text.lastIndexOf(QLatin1Char(';')));
                text = text.left(cut + 1) + (cut >= 0 ? QStringLiteral(" ") : QString()) + number;
                txtRecipients->setText(text);
            });

    connect(cmdSend, &QPushButton::clicked, this, &frmMMSSend::cmdSend_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(&sender_, &MessageSender::serviceFound, this, [this](const ServiceLimits& limits) {
        limits_ = limits;
        showSize();
    });
    connect(&sender_, &MessageSender::unavailable, this, [this](const QString&, bool running) {
        // Nothing can be sent without the service: say how to get it, and leave.
        showError(unavailableText(loc_, running));
        setSending(false);
        reject();
    });
    connect(&sender_, &MessageSender::refused, this, [this](const QString& reason) {
        if (!sending_) return;
        setSending(false);
        showError(loc_.getMCrErrStr(sendtext::kErrNotSent).replace(QStringLiteral("%1"), reason));
    });
    connect(&sender_, &MessageSender::handedOver, this, [this](const QString&) {
        if (!sending_) return;
        sending_ = false;
        handedOver_ = true;
        accept();
    });

    qint64 bytes = 0;
    if (memberBytes(MessageStore(message_.appFolder), message_.name, bytes)) bytes_ = bytes;
    applyLanguage();
    showSize();
    txtRecipients->setFocus();
    // Asked once the window runs, so that an answer at once still finds it open.
    QTimer::singleShot(0, this, [this] { sender_.findService(); });
}

void frmMMSSend::applyLanguage() {
    using namespace sendtext;
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    setWindowTitle(I(kSendTitle));
    lblRecipients->setText(I(kRecipientsLabel));
    lblSubject->setText(I(kSubjectLabel));
    txtRecipients->setPlaceholderText(I(kRecipientsHint));
    chkDeliveryReport->setText(I(kDeliveryReport));
    cmdSend->setText(I(kSendButton));
    cmdCancel->setText(I(commontext::kCancel));
}

void frmMMSSend::showSize() {
    lblSize->setText(sizeAgainstLimit(loc_, bytes_, limits_));
    const bool over = bytes_ && limits_ && isOverServiceLimit(*bytes_, *limits_);
    lblSize->setStyleSheet(over ? QStringLiteral("color: #b00020; font-weight: bold") : QString());
}

void frmMMSSend::setSending(bool sending) {
    sending_ = sending;
    for (QWidget* control : {static_cast<QWidget*>(txtRecipients), static_cast<QWidget*>(txtSubject),
                             static_cast<QWidget*>(chkDeliveryReport), static_cast<QWidget*>(cmdSend)})
        control->setEnabled(!sending);
    lblStatus->setText(sending ? loc_.getMCrInterfaceStr(sendtext::kHandingOver) : QString());
}

void frmMMSSend::showError(const QString& text) {
    sink_.show(
        mms::Message{text, loc_.getMCrInterfaceStr(commontext::kAppTitle), Buttons::Ok, Icon::Warning});
}

void frmMMSSend::completeLastNumber(const QString& text) {
    const QString piece =
        splitAddressList(text.section(QLatin1Char(','), -1).section(QLatin1Char(';'), -1)).value(0);
    completer_->setCompletionPrefix(piece);
    if (!piece.isEmpty() && completer_->completionCount() > 0)
        completer_->complete();
    else
        completer_->popup()->hide();
}

void frmMMSSend::cmdSend_Click() {
    if (sending_) return;
    QString problem;
    const std::optional<QStringList> numbers = typedNumbers(loc_, txtRecipients->text(), problem);
    if (!numbers) {
        showError(problem);
        txtRecipients->setFocus();
        return;
    }
    if (bytes_ && limits_ && isOverServiceLimit(*bytes_, *limits_)) {
        showError(tooLargeText(loc_, *bytes_, *limits_));
        return;
    }
    numbers_ = *numbers;
    setSending(true);
    sender_.send(message_.name, numbers_, chkDeliveryReport->isChecked(), txtSubject->text().trimmed());
}

} // namespace mms
