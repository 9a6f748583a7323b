#include "store/storefiles.h"

#include "common/fileio.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace mms::storefiles {

namespace {

QString native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

QFileInfoList entriesOf(const QString& folder) {
    return QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                      QDir::Name);
}

bool isRealFolder(const QFileInfo& info) {
    return info.isDir() && !info.isSymLink();
}

} // namespace

// Removing an entry takes write and search permission on the folder that holds it.
bool entriesRemovable(const QString& folder) {
#ifdef Q_OS_UNIX
    return ::access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
#else
    return QFileInfo(folder).isWritable();
#endif
}

bool pathExists(const QString& path) {
    return fileio::pathExists(path);
}

Status removeTree(const QString& path) {
    return fileio::removeTree(path);
}

QString firstUndeletable(const QString& path) {
    const QFileInfo info(path);
    if (!isRealFolder(info)) return QString();
    if (!entriesRemovable(path)) return path;
    for (const QFileInfo& entry : entriesOf(path)) {
#ifndef Q_OS_UNIX
        // Elsewhere a read-only file cannot be deleted without forcing it, which we never do.
        if (!entry.isDir() && !entry.isWritable()) return entry.filePath();
#endif
        const QString inner = firstUndeletable(entry.filePath());
        if (!inner.isEmpty()) return inner;
    }
    return QString();
}

Status copyFile(const QString& from, const QString& to) {
    return fileio::copyFile(from, to);
}

namespace {
Status copyInto(const QString& from, const QString& to) {
    if (Status s = fileio::createFolder(to); !s) return s;
    for (const QFileInfo& entry : entriesOf(from)) {
        const QString target = to + QLatin1Char('/') + entry.fileName();
        if (entry.isSymLink()) continue;
        if (entry.isDir()) {
            if (Status s = copyInto(entry.filePath(), target); !s) return s;
        } else if (Status s = copyFile(entry.filePath(), target); !s) {
            return s;
        }
    }
    return Status::ok();
}
} // namespace

Status copyTree(const QString& from, const QString& to) {
    if (!isRealFolder(QFileInfo(from)))
        return Status::failure(QStringLiteral("\"%1\" is not a folder").arg(native(from)));
    if (pathExists(to)) return Status::failure(QStringLiteral("\"%1\" already exists").arg(native(to)));
    Status result = copyInto(from, to);
    if (!result) (void)removeTree(to);
    return result;
}

Status renamePath(const QString& from, const QString& to) {
    return fileio::renamePath(from, to);
}

} // namespace mms::storefiles
