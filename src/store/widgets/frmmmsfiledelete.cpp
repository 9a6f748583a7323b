#include "store/widgets/frmmmsfiledelete.h"

#include "common/storetexts.h"
#include <QPushButton>

namespace mms {

frmMMSFileDelete::frmMMSFileDelete(QWidget* parent, const Localisation& texts, MessageSink& sink,
                                   const MessageStore& store, MessageState& state)
    : MessageNameDialog(parent, texts, sink, store, state,
                        {storetext::kDeleteTitle, storetext::kDeleteButton}, false),
      cmdDelete(actionButton()) {
    cmdDelete->setObjectName(QStringLiteral("cmdDelete"));
    connect(cmdDelete, &QPushButton::clicked, this, &frmMMSFileDelete::cmdDelete_Click);
}

} // namespace mms
