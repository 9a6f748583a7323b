#include "model/filelength.h"

#include <QFileInfo>

namespace mms {

qint64 fileLength(const QString& path) {
    const QFileInfo info(path);
    return info.isFile() ? info.size() : 0;
}

} // namespace mms
