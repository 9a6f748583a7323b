#include "app/mmsc_stored.h"

namespace mms::cli {

Status openStoredCopy(const MessageStore& store, const QString& name, PrivateCopy& copy,
                      LoadedMessage& message) {
    if (!store.hasIndex(name))
        return Status::failure(QStringLiteral("there is no stored message '%1'").arg(name));
    return copy.open(store, name, message);
}

void warnAboutMissingFiles(Context& context, const LoadedMessage& message, const char* how) {
    if (message.missingFiles.isEmpty()) return;
    context.err << "mmsc: warning: missing files " << how << ": "
                << message.missingFiles.join(QStringLiteral(", ")) << Qt::endl;
}

} // namespace mms::cli
