#pragma once

#include "common/scratchfolder.h"
#include "model/status.h"
#include "store/messagestore.h"

#include <QString>
#include <memory>

namespace mms {

// A working copy of a stored message of its own, for tools that read a message as Open does but must
// leave the composer's working copy (UserData/MMS/temp) alone. It lies in the workspace's Temp folder
// (the system's temporary folder when that cannot be written) and is removed with the object.
class PrivateCopy {
public:
    // Copies the stored message `name` and reads it back from the copy.
    Status open(const MessageStore& store, const QString& name, LoadedMessage& out);
    QString folder() const { return folder_; }

private:
    std::unique_ptr<ScratchFolder> dir_;
    QString folder_;
};

// The slides of a loaded message appended to `slides`, as Open rebuilds them.
void appendLoadedSlides(const LoadedMessage& message, CSlide& slides);

} // namespace mms
