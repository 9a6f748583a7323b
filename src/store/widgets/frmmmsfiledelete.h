#pragma once

#include "common/storetexts.h"
#include "store/widgets/namedialog.h"

namespace mms {

// Asks for a stored message to delete. Refuses the current message, an empty name and a name that
// is not stored; on acceptance hands the name back through currentFile (the composer restores its own
// afterwards). Spaces can be typed here.
class frmMMSFileDelete final : public MessageNameDialog {
    Q_OBJECT

public:
    frmMMSFileDelete(QWidget* parent, const Localisation& texts, MessageSink& sink, const MessageStore& store,
                     MessageState& state);

    void cmdDelete_Click() { acceptExisting(storetext::kErrOpenNotDeletable); }

private:
    QPushButton* cmdDelete;
};

} // namespace mms
