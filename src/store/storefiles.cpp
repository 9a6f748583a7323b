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
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

Status removeTree(const QString& path) {
    const QFileInfo info(path);
    if (!pathExists(path)) return Status::ok();
    if (isRealFolder(info)) {
        for (const QFileInfo& entry : entriesOf(path))
            if (Status s = removeTree(entry.filePath()); !s) return s;
        if (!QDir().rmdir(path))
            return Status::failure(QStringLiteral("Cannot remove \"%1\"").arg(native(path)));
        return Status::ok();
    }
    QFile file(path);
    if (!file.remove())
        return Status::failure(
            QStringLiteral("Cannot remove \"%1\": %2").arg(native(path), file.errorString()));
    return Status::ok();
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
    if (!QDir().rename(from, to))
        return Status::failure(
            QStringLiteral("Cannot rename \"%1\" to \"%2\"").arg(native(from), native(to)));
    return Status::ok();
}

QString freeHiddenName(const QString& messagesFolder, const QString& prefix) {
    for (int n = 1;; ++n) {
        const QString name = QLatin1Char('.') + prefix + QString::number(n);
        const QString path = messagesFolder + QLatin1Char('/') + name;
        if (!pathExists(path) && !pathExists(path + QStringLiteral(".mmt"))) return name;
    }
}

} // namespace mms::storefiles
