#pragma once

#include "app/mmsc.h"
#include "model/status.h"
#include "store/messagestore.h"
#include "store/privatecopy.h"

namespace mms::cli {

// Reads the stored message `name` (a valid name) from a private copy, never the composer's working
// copy: "there is no stored message" when it has no index, or why it could not be read.
Status openStoredCopy(const MessageStore& store, const QString& name, PrivateCopy& copy,
                      LoadedMessage& message);

// A warning on stderr naming the files the stored message has lost; `how` says what became of them
// ("left empty", "left out").
void warnAboutMissingFiles(Context& context, const LoadedMessage& message, const char* how);

} // namespace mms::cli
