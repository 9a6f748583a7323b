#include "store/messagestore.h"

#include "common/workspace.h"

namespace mms {

bool isValidMessageName(const QString& name) {
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")) return false;
    // Case-blind, as a case-insensitive file system would also match the working copy.
    if (name.compare(workspace::kWorkingCopyName, Qt::CaseInsensitive) == 0) return false;
    for (QChar c : name) {
        if (c == QLatin1Char('/') || c == QLatin1Char('\\')) return false;
        if (c.category() == QChar::Other_Control) return false;
    }
    return true;
}

} // namespace mms
