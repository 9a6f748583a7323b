#include "common/filesize.h"

#include "common/localisation.h"

namespace mms {

qint64 wholeKilobytes(qint64 bytes) {
    if (bytes <= 0) return 0;
    return qMax<qint64>(1, bytes / 1024);
}

QString sizeText(const Localisation& texts, qint64 bytes) {
    constexpr qint64 kMegabyte = 1024 * 1024;
    if (bytes >= kMegabyte && bytes % kMegabyte == 0)
        return texts.getMCrInterfaceStr(sizetext::kMegabytes)
            .replace(QStringLiteral("%1"), QString::number(bytes / kMegabyte));
    return texts.getMCrInterfaceStr(sizetext::kKilobytes)
        .replace(QStringLiteral("%1"), QString::number(wholeKilobytes(bytes)));
}

} // namespace mms
