#pragma once

#include "model/status.h"

#include <QIODevice>
#include <QString>
#include <QStringList>

namespace mms {

// Writes a plain tar (ustar) archive of `memberPaths`, in that order, each stored under its bare
// file name with its bytes unchanged. A failure names the member or the archive that failed.
Status writeTarArchive(QIODevice& device, const QStringList& memberPaths);

// Creates or replaces the archive file at `archivePath`. The file is written beside its final
// name and renamed into place only when complete, so a failure never leaves a partial archive.
Status writeTarArchive(const QString& archivePath, const QStringList& memberPaths);

} // namespace mms
