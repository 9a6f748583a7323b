#include "model/messagesink.h"

namespace mms {

void MessageSink::inform(const QString& text) {
    show(Message{text, applicationTitle()});
}

QString applicationTitle() {
    return QStringLiteral("MMS Composer");
}

} // namespace mms
