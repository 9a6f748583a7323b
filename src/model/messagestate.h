#pragma once

#include <QString>

namespace mms {

// The composer's notion of the current message, shared with the name dialogs: they hand their result
// back by writing currentFile, isOverwrite and isCancel before they close.
struct MessageState {
    QString txtsubject;
    QString currentFile; // empty while the message has never been saved or opened
    bool isModified = false;
    bool isOverwrite = false;
    bool isCancel = false;
};

} // namespace mms
