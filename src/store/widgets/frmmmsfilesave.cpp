#include "store/widgets/frmmmsfilesave.h"

#include "common/commontexts.h"
#include "common/localisation.h"
#include "common/storetexts.h"

#include <QLineEdit>
#include <QPushButton>

namespace mms {

frmMMSFileSave::frmMMSFileSave(QWidget* parent, const Localisation& texts, MessageSink& sink,
                               const MessageStore& store, MessageState& state)
    : MessageNameDialog(parent, texts, sink, store, state, {storetext::kSaveAsTitle, commontext::kSave},
                        true),
      cmdSave(actionButton()) {
    cmdSave->setObjectName(QStringLiteral("cmdSave"));
    connect(cmdSave, &QPushButton::clicked, this, &frmMMSFileSave::cmdSave_Click);
}

void frmMMSFileSave::cmdSave_Click() {
    state_.isOverwrite = false;
    const QString name = txtName->text();
    // Hidden names are refused too: the store stages its saves under them.
    if (!isStorableMessageName(name)) return showError(storetext::kErrBadName);
    // A folder of that name without an index is replaced as well, so it is asked about too.
    if (store_.hasIndex(name) || store_.exists(name)) {
        const Answer answer = sink_.show(Message{texts_.getMCrPromptStr(storetext::kPromptReplace),
                                                 texts_.getMCrErrStr(storetext::kReplaceTitle),
                                                 Buttons::YesNo, Icon::Question, Answer::No});
        if (answer != Answer::Yes) return;
        state_.isOverwrite = true;
    }
    state_.currentFile = name;
    accept();
}

} // namespace mms
