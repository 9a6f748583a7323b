#pragma once

#include "model/cslide.h"
#include "model/status.h"

#include <QString>

namespace mms {

// Writes the presentation package of `slides`.
// Store mode (slides.folderPath() not empty): into appFolder/UserData/MMS/<folder path>/ with the
// slide text files, and the index appFolder/UserData/MMS/<folder path>.mmt; the folder must not exist.
// Export mode (empty folder path): into appFolder, archived as slides.fileName() + ".tpl", after
// which the loose files are removed.
// `subject` is the composer's txtsubject. A failure names the file and is returned, never half-claimed.
Status generateSMIL(const CSlide& slides, const QString& appFolder, const QString& subject);

} // namespace mms
