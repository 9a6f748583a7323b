#pragma once

#include "model/messagesink.h"
#include "store/messagestore.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace mms {

class Localisation;

// Takes the close command out of a dialog's title bar, so that it can be left only through its own
// buttons (and Escape, which counts as Cancel). Returns whether the window can be shown that way.
bool removeCloseCommand(QWidget& dialog);

// What the three message name dialogs share: the list of stored messages with the dates of their
// index files, the name box, the action button and Cancel. The result is handed back through the
// composer's MessageState: isCancel is false from construction and true after any way of leaving
// other than the action button.
class MessageNameDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MessageNameDialog)

public:
    QLineEdit* txtName;

    // Cancel, Escape and a close request all land here.
    void reject() override;

protected:
    struct Captions {
        int window;
        int action;
    };
    MessageNameDialog(QWidget* parent, const Localisation& texts, MessageSink& sink,
                      const MessageStore& store, MessageState& state, Captions captions, bool dropSpaces);
    bool eventFilter(QObject* watched, QEvent* event) override;

    QPushButton* actionButton() const { return action_; }
    // Shows error text `number` with an OK button under the application's title.
    void showError(int number) const;
    // The checks of Open and Delete: not the current message (error `currentError`), not empty,
    // a plain name, and present in the store. On success hands the name back and closes.
    void acceptExisting(int currentError);

    QTreeWidget* lstFile;
    QLabel* Label1;
    QPushButton* cmdCancel;

    const Localisation& texts_;
    MessageSink& sink_;
    const MessageStore& store_;
    MessageState& state_;

private:
    void fillList();

    QPushButton* action_;
    bool dropSpaces_;
};

} // namespace mms
