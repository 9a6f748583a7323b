#pragma once

#include "model/status.h"

#include <QString>

// File-system steps of the message store. Each one either completes or says which path failed.
namespace mms::storefiles {

// Removes a file, a symbolic link (never what it points to) or a folder with everything in it.
// A path that does not exist counts as removed.
Status removeTree(const QString& path);

// The first folder of the tree at `path` (the folder itself included) whose entries cannot be
// removed, or an empty string when a removal of the whole tree can go through. Checked before
// deleting so that a read-only message is reported instead of being half deleted.
QString firstUndeletable(const QString& path);

// Copies the folder `from` with its files and subfolders to `to`, which must not exist yet.
// Symbolic links are not followed. On failure `to` is removed again.
Status copyTree(const QString& from, const QString& to);

// Copies one file to `to`, which must not exist yet.
Status copyFile(const QString& from, const QString& to);

// Renames within one folder; fails with a message naming both paths.
Status renamePath(const QString& from, const QString& to);

// Entries of `folder` can be created and removed.
bool entriesRemovable(const QString& folder);

// True when a file, folder or (possibly dangling) symbolic link exists at `path`.
bool pathExists(const QString& path);

} // namespace mms::storefiles
