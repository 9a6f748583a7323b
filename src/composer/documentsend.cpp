// Sending goes from the store, so the message on screen must be the stored one first.

#include "common/localisation.h"
#include "composer/composerdocument.h"
#include "composer/composertexts.h"

namespace mms {

bool ComposerDocument::readyToSend() {
    if (message_.isEmpty()) return false;
    if (!state_.isModified && !state_.currentFile.isEmpty()) return true;
    if (ask(composertext::kPromptSaveBeforeSend, composertext::kAppTitle, Buttons::YesNo, Answer::Yes) !=
        Answer::Yes)
        return false;
    save();
    // A failed save has said why; a cancelled name dialog says nothing.
    return !saveFailed_ && !state_.isModified && !state_.currentFile.isEmpty();
}

} // namespace mms
