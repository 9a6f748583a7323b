#pragma once

#include "model/status.h"

#include <QByteArrayView>
#include <QFileDevice>
#include <QIODevice>
#include <QString>
#include <functional>

// File steps that say why they failed in the system's words ("No space left on device",
// "Permission denied", "No such file or directory") where Qt alone would report "Unknown error" or
// nothing at all.
namespace mms::fileio {

// Writes all of `bytes`. A device that takes only part of them (a full disk, a file size limit)
// is asked again for the rest, and that second attempt is what records the system's reason.
bool writeWhole(QIODevice& device, QByteArrayView bytes);
// Empties a file's write buffer, with the same second attempt after a partial flush.
bool flushWhole(QFileDevice& file);

// Creates the folder `path` (whose parent must exist) / with every missing parent. An existing
// folder counts as created for createPath only.
Status createFolder(const QString& path);
Status createPath(const QString& path);

// Renames a file or folder; an existing file at `to` is replaced (as rename(2) does). Fails naming
// both paths.
Status renamePath(const QString& from, const QString& to);
// Removes a file, a symbolic link (never what it points to) or a folder with everything in it, one
// entry at a time. A path that does not exist counts as removed.
Status removeTree(const QString& path);
// Removes the folder `path` only when it is empty.
Status removeEmptyFolder(const QString& path);
// True when a file, folder or (possibly dangling) symbolic link exists at `path`.
bool pathExists(const QString& path);

// Copies the file `from` to the new file `to` (which must not exist), with its permissions; a
// failure names the file that could not be read or written and why, and leaves no partial copy.
Status copyFile(const QString& from, const QString& to);

// Every step above and below passes faultPoint() (common/faultpoint.h) first.

// Writes a file whole or not at all: the bytes go to a temporary file beside `path`, which replaces
// the old file only once everything is on disk, so a failure leaves an existing file untouched and no
// partial one behind. A failure reads `Cannot write "<path>": <reason>`, the reason in the system's
// words or, when the writer gave up, the writer's message.
Status writeFileSafely(const QString& path, QByteArrayView bytes);
// The same for writers that stream: `write` fills the device it is handed. `mode` adds open flags
// (QIODevice::Unbuffered for writers that hand over whole blocks).
using DeviceWriter = std::function<Status(QIODevice& device)>;
Status writeFileSafely(const QString& path, const DeviceWriter& write, QIODevice::OpenMode mode = {});

} // namespace mms::fileio
