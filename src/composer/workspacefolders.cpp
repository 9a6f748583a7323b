#include "composer/workspacefolders.h"

#include "common/workspace.h"
#include "store/messagestore.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace mms {

Status createWorkspaceFolders(const QString& appFolder, QStringList* created) {
    for (const QString& folder : workspace::folders(appFolder)) {
        if (QFileInfo(folder).isDir()) continue;
        if (!QDir().mkdir(folder)) {
            const QString reason = QFileInfo::exists(folder)
                                       ? QStringLiteral("a file of that name is in the way")
                                       : QStringLiteral("the folder could not be created");
            return Status::failure(QStringLiteral("Cannot create the workspace folder %1: %2.")
                                       .arg(QDir::toNativeSeparators(folder), reason));
        }
        if (created) created->append(folder);
    }
    // What a crash left of a save, an open or a deletion is put right before anything else runs.
    (void)MessageStore(appFolder).recover();
    return Status::ok();
}

namespace {

bool removeContents(const QString& path) {
    bool ok = true;
    QDirIterator it(path, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    while (it.hasNext()) {
        const QFileInfo entry(it.next());
        if (entry.isDir() && !entry.isSymLink()) {
            ok = removeContents(entry.filePath()) && QDir().rmdir(entry.filePath()) && ok;
        } else {
            ok = QFile::remove(entry.filePath()) && ok;
        }
    }
    return ok;
}

} // namespace

Status removeFolderTree(const QString& path) {
    const QFileInfo info(path);
    if (!info.isDir() || info.isSymLink())
        return Status::failure(
            QStringLiteral("The folder %1 does not exist.").arg(QDir::toNativeSeparators(path)));
    if (!removeContents(path) || !QDir().rmdir(path))
        return Status::failure(QStringLiteral("The folder %1 could not be removed completely.")
                                   .arg(QDir::toNativeSeparators(path)));
    return Status::ok();
}

Status cleanUpWorkspace(const QString& appFolder) {
    // Temp goes as a whole, so an interrupted operation's copy of a message is put back first.
    (void)MessageStore(appFolder).recover();
    const QString index = workspace::workingCopyIndex(appFolder);
    if (QFileInfo::exists(index)) {
        if (Status s = removeFolderTree(workspace::workingCopy(appFolder)); !s) return s;
        if (!QFile::remove(index))
            return Status::failure(
                QStringLiteral("The file %1 could not be removed.").arg(QDir::toNativeSeparators(index)));
    }
    for (const QString& folder :
         {workspace::tmpJpg(appFolder), workspace::tmpMid(appFolder), workspace::temp(appFolder)}) {
        if (Status s = removeFolderTree(folder); !s) return s;
    }
    return Status::ok();
}

} // namespace mms
