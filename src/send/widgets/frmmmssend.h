#pragma once

#include "send/sendrequest.h"

#include <QDialog>
#include <QString>
#include <QStringList>
#include <optional>

class QCheckBox;
class QCompleter;
class QLabel;
class QLineEdit;
class QPushButton;

namespace mms {

class Localisation;
class MessageSender;
class MessageSink;

// File > Send: whom the stored message goes to, its subject, a delivery report, and its size against
// the service's limit. Everything the service answers comes back as a signal, so the window stays
// responsive while it asks; a refusal is shown and the window stays open, a hand-off closes it.
class frmMMSSend final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMMSSend)

public:
    struct Outgoing {
        QString appFolder;
        QString name; // the stored message
        QString subject;
        QStringList recentNumbers;
    };

    frmMMSSend(const Localisation& loc, MessageSink& sink, MessageSender& sender, Outgoing message,
               QWidget* parent = nullptr);

    void cmdSend_Click();
    bool handedOver() const { return handedOver_; }
    // The numbers it was handed over to.
    const QStringList& numbers() const { return numbers_; }

private:
    void applyLanguage();
    void showSize();
    void setSending(bool sending);
    void showError(const QString& text);
    void completeLastNumber(const QString& text);

    QLabel* lblRecipients;
    QLineEdit* txtRecipients;
    QLabel* lblSubject;
    QLineEdit* txtSubject;
    QCheckBox* chkDeliveryReport;
    QLabel* lblSize;
    QLabel* lblStatus;
    QPushButton* cmdSend;
    QPushButton* cmdCancel;
    QCompleter* completer_;

    const Localisation& loc_;
    MessageSink& sink_;
    MessageSender& sender_;
    Outgoing message_;
    std::optional<qint64> bytes_;
    std::optional<ServiceLimits> limits_;
    QStringList numbers_;
    bool sending_ = false;
    bool handedOver_ = false;
};

} // namespace mms
