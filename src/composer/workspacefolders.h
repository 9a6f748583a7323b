#pragma once

#include "model/status.h"

#include <QString>
#include <QStringList>

namespace mms {

// Creates the seven workspace folders below `appFolder`, parents first, each only when no folder
// of that name exists; existing folders and their files are left alone. `created` receives the
// folders made. Fails, naming the folder, when one cannot be made (for example a file of that name
// is in the way); the folders before it stay. Then puts right whatever a crash left of a store
// operation (MessageStore::recover).
Status createWorkspaceFolders(const QString& appFolder, QStringList* created = nullptr);

// The clean-up of a confirmed close: the working copy (only when temp.mmt exists), then
// Temp/tmpJPG, Temp/tmpMID and Temp. Stops at the first step that fails (a folder already gone,
// a file that cannot be removed) and skips the rest.
Status cleanUpWorkspace(const QString& appFolder);

// Deletes a folder with everything in it, without changing any permission to get there, and
// without following symbolic links out of it. Fails when the folder does not exist or something
// in it could not be removed.
Status removeFolderTree(const QString& path);

} // namespace mms
