#pragma once

#include <QString>

namespace mms {

// Length in bytes of a regular file; 0 when the path names no readable regular file.
qint64 fileLength(const QString& path);

} // namespace mms
