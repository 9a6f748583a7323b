#include "common/folderpaths.h"

#include <QDir>
#include <QStorageInfo>

namespace mms {

namespace {

bool endsWithSeparator(const QString& path) {
#ifdef Q_OS_WIN
    return path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('\\'));
#else
    return path.endsWith(QLatin1Char('/'));
#endif
}

} // namespace

QStringList driveRoots() {
    QStringList roots{addTrailingSlash(QDir::rootPath())};
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        const QString root = addTrailingSlash(volume.rootPath());
        if (!roots.contains(root)) roots << root;
    }
    return roots;
}

bool isDriveRoot(const QString& path, const QStringList& roots) {
    return !path.isEmpty() && roots.contains(path, Qt::CaseInsensitive);
}

bool isDriveRoot(const QString& path) {
    return isDriveRoot(path, driveRoots());
}

QString addTrailingSlash(const QString& path) {
    return endsWithSeparator(path) ? path : path + QLatin1Char('/');
}

QString removeTrailingSlash(const QString& path) {
    return endsWithSeparator(path) ? path.chopped(1) : path;
}

QString browseStartPath(const QString& path, const QStringList& roots) {
    if (path.isEmpty()) return QDir::rootPath();
    if (isDriveRoot(path, roots)) return addTrailingSlash(path);
    return removeTrailingSlash(path);
}

QString browseStartPath(const QString& path) {
    // Only a path ending in a separator can be a root, so the volume list is read only then.
    if (path.isEmpty() || !endsWithSeparator(path)) return browseStartPath(path, QStringList());
    return browseStartPath(path, driveRoots());
}

} // namespace mms
