// Sending through the MMS service: File > Send, File > Sent Messages, and the sent log, which
// follows the daemon's reports for as long as the program runs.

#include "common/localisation.h"
#include "composer/composertexts.h"
#include "composer/widgets/frmmmsmain.h"
#include "send/messagesender.h"
#include "send/sendwording.h"
#include "send/widgets/frmmmssend.h"
#include "send/widgets/frmmmssent.h"

#include <QSettings>

namespace mms {

void frmMMSMain::connectSender() {
    // Whichever window is open, a log that cannot be read or written is said once, here.
    connect(sender_.get(), &MessageSender::logChanged, this, [this](const QString& problem) {
        if (problem.isEmpty()) return;
        platform_.dialogs.show(
            Message{loc_.getMCrErrStr(composertext::kErrSentLog).replace(QStringLiteral("%1"), problem),
                    loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::Ok, Icon::Warning});
    });
}

void frmMMSMain::mnu_send_Click() {
    if (!document_->readyToSend()) return;
    const QStringList recent = settings_ ? loadRecentNumbers(*settings_) : QStringList();
    frmMMSSend window(
        loc_, platform_.dialogs, *sender_,
        {options_.appFolder, document_->state().currentFile, document_->state().txtsubject, recent}, this);
    platform_.dialogs.runModal(window);
    if (window.handedOver() && settings_)
        saveRecentNumbers(*settings_, withRecentNumbers(recent, window.numbers()));
}

void frmMMSMain::mnu_sent_Click() {
    frmMMSSent window(loc_, platform_.dialogs, *sender_, this);
    platform_.dialogs.runModal(window);
}

} // namespace mms
