#include "model/filelength.h"

#include <QFile>
#include <sys/stat.h>

namespace mms {

// The size counter recounts every media file on each keystroke, so this is one stat call and no
// more: QFileInfo's path parsing and caching cost several times the system call itself.
qint64 fileLength(const QString& path) {
    if (path.isEmpty()) return 0;
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) != 0 || !S_ISREG(info.st_mode)) return 0;
    return static_cast<qint64>(info.st_size);
}

} // namespace mms
