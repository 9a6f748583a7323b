#pragma once

#include "common/libraryinfo.h"

#include <QList>

namespace mms {

class Localisation;

// What the composer is built on, in the About box's order: Qt, the archive, JPEG, synthesiser and
// AMR libraries, and the General MIDI sound font, whose entry is worded in the interface language.
QList<LibraryInfo> usedLibraries(const Localisation& loc);

} // namespace mms
