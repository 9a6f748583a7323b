#include "store/widgets/frmmmsfileopen.h"

#include "common/storetexts.h"
#include <QPushButton>

namespace mms {

frmMMSFileOpen::frmMMSFileOpen(QWidget* parent, const Localisation& texts, MessageSink& sink,
                               const MessageStore& store, MessageState& state)
    : MessageNameDialog(parent, texts, sink, store, state, {storetext::kOpenTitle, storetext::kOpenButton},
                        true),
      cmdOpen(actionButton()) {
    cmdOpen->setObjectName(QStringLiteral("cmdOpen"));
    connect(cmdOpen, &QPushButton::clicked, this, &frmMMSFileOpen::cmdOpen_Click);
}

} // namespace mms
