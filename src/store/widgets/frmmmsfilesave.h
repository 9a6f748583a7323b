#pragma once

#include "store/widgets/namedialog.h"

namespace mms {

// Asks for the name to save the current message under. The Save button hands the name back through
// currentFile, with isOverwrite set when the user agreed to replace a stored message of that name.
class frmMMSFileSave final : public MessageNameDialog {
    Q_OBJECT

public:
    frmMMSFileSave(QWidget* parent, const Localisation& texts, MessageSink& sink, const MessageStore& store,
                   MessageState& state);

    void cmdSave_Click();

private:
    QPushButton* cmdSave;
};

} // namespace mms
