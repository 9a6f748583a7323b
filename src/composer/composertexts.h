#pragma once

#include "common/commontexts.h"
#include "common/desktoptexts.h"
#include "common/filesize.h"
#include "common/playbacktexts.h"
#include "common/sendtexts.h"
#include "common/storetexts.h"

// Every language entry the composer window shows, by name: composertext::kSave,
// composertext::kAppTitle, composertext::kPromptExportOverLimit... The numbers are defined in
// common, where the language lookups require each one of a language file.
namespace mms::composertext {
using namespace commontext;
using namespace desktoptext;
using namespace playbacktext;
using namespace sendtext;
using namespace sizetext;
using namespace storetext;
} // namespace mms::composertext
