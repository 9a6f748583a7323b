#pragma once

#include <QString>
#include <QStringList>

namespace mms {

// The roots of the mounted volumes, each with a trailing separator ("/" always among them).
QStringList driveRoots();

// True when path is one of the roots, compared without regard to case. A root is written with its
// trailing separator ("/media/usb/"), as the volume list gives it.
bool isDriveRoot(const QString& path, const QStringList& roots);
bool isDriveRoot(const QString& path);

// Adds one "/" when the path does not end in a separator; removes one when it does.
QString addTrailingSlash(const QString& path);
QString removeTrailingSlash(const QString& path);

// Where the folder chooser starts: the platform's root ("/" here) for an empty path; a volume root
// keeps (or gets) its trailing separator; any other folder loses one trailing separator.
QString browseStartPath(const QString& path, const QStringList& roots);
QString browseStartPath(const QString& path);

} // namespace mms
