#pragma once

#include "common/storetexts.h"
#include "store/widgets/namedialog.h"

namespace mms {

// Asks for a stored message to open. Refuses the message already open, an empty name and a name
// that is not stored; on acceptance hands the name back through currentFile.
class frmMMSFileOpen final : public MessageNameDialog {
    Q_OBJECT

public:
    frmMMSFileOpen(QWidget* parent, const Localisation& texts, MessageSink& sink, const MessageStore& store,
                   MessageState& state);

    void cmdOpen_Click() { acceptExisting(storetext::kErrAlreadyOpen); }

private:
    QPushButton* cmdOpen;
};

} // namespace mms
