#pragma once

#include <QDialog>

class QPushButton;
class QTreeWidget;

namespace mms {

class Localisation;
class MessageSender;
class MessageSink;

// File > Sent Messages: every hand-off in the sent log with its last status, kept in step with the
// daemon while the window is open. A failed message can be sent again to the same recipients, and
// entries can be removed.
class frmMMSSent final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMMSSent)

public:
    frmMMSSent(const Localisation& loc, MessageSink& sink, MessageSender& sender, QWidget* parent = nullptr);

    void cmdSendAgain_Click();
    void cmdRemove_Click();

private:
    void applyLanguage();
    void fill();
    void updateButtons();
    int selectedEntry() const;
    void showError(const QString& text);

    QTreeWidget* lstSent;
    QPushButton* cmdSendAgain;
    QPushButton* cmdRemove;
    QPushButton* cmdClose;

    const Localisation& loc_;
    MessageSink& sink_;
    MessageSender& sender_;
    bool sendingAgain_ = false;
};

} // namespace mms
