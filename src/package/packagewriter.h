#pragma once

#include "model/cslide.h"
#include "model/status.h"

#include <QString>

namespace mms {

// Writes the presentation package of `slides`.
// Store mode (slides.folderPath() not empty): into appFolder/UserData/MMS/<folder path>/ with the
// slide text files, and the index appFolder/UserData/MMS/<folder path>.mmt; the folder must not exist.
// On failure the new folder is removed again and the index is left as it was.
// Export mode (empty folder path): archived as slides.fileName() + ".tpl" (the caller passes
// appFolder + "/upload"); the loose files are staged in a private folder inside appFolder and removed
// again, also after a failure. An existing archive is replaced only by a complete one.
// `subject` is the composer's txtsubject. A failure names the file and is returned, never half-claimed.
Status generateSMIL(const CSlide& slides, const QString& appFolder, const QString& subject);

} // namespace mms
