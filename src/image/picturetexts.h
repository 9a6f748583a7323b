#pragma once

#include "common/imagetexts.h"
#include "image/picturecheck.h"

// The picture checks' texts: why a picture cannot be used, and the questions about a damaged JPEG
// and a GIF over the limit (numbered in common/imagetexts.h, where the language check finds them).
namespace mms::picturetext {

using namespace imagetext;

// The error text for a trouble (Unreadable has the general "could not be loaded").
int errorNumber(PictureTrouble::Kind kind);

} // namespace mms::picturetext
