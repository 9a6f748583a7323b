#pragma once

#include <QString>

namespace mms {

// Where a file dropped on the composer goes: a picture to the slide's picture, a sound to its
// sound. Decided by the name's extension, in any letter case, as the library panels list files;
// the panels' attach rules then decide whether the file itself can be used.
enum class DropKind { Picture, Sound, Refused };

DropKind dropKindOf(const QString& path);

} // namespace mms
