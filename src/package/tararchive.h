#pragma once

#include "common/libraryinfo.h"
#include "model/status.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QStringList>
#include <vector>

namespace mms {

// One member of an archive: its bare name, its bytes and its modification time (seconds since the
// epoch).
struct TarMember {
    QString name;
    QByteArray bytes;
    qint64 mtime = 0;
};

// The archive library the writer runs on.
LibraryInfo tarLibrary();

// Writes a plain tar (ustar) archive of `members`, in that order, with their bytes unchanged.
Status writeTarArchive(QIODevice& device, const std::vector<TarMember>& members);
// Creates or replaces the archive file at `archivePath`, renamed into place only when complete.
Status writeTarArchive(const QString& archivePath, const std::vector<TarMember>& members);

// Writes a plain tar (ustar) archive of `memberPaths`, in that order, each stored under its bare
// file name with its bytes unchanged. A failure names the member or the archive that failed.
Status writeTarArchive(QIODevice& device, const QStringList& memberPaths);

// Creates or replaces the archive file at `archivePath`. The file is written beside its final
// name and renamed into place only when complete, so a failure never leaves a partial archive.
Status writeTarArchive(const QString& archivePath, const QStringList& memberPaths);

} // namespace mms
