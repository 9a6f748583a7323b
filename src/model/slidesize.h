#pragma once

#include "model/cslide.h"

#include <QHash>
#include <QString>

namespace mms {

// File lengths already measured in one pass over the message, by path.
using LengthCache = QHash<QString, qint64>;

// Measures what one slide adds to the size estimate: its media files' lengths (0 for a file that
// cannot be read) and its text's length in characters plus 2.
SizeShare measureShare(const CSlideNode& node, LengthCache* cache = nullptr);

} // namespace mms
