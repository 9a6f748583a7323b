#include "model/messagesink.h"

#include <cstdio>

namespace mms {

void MessageSink::inform(const QString& text) {
    show(Message{text, applicationTitle()});
}

QString applicationTitle() {
    return QStringLiteral("MMS Composer");
}

Answer StderrSink::show(const Message& message) {
    std::fprintf(stderr, "%s\n", qPrintable(message.text));
    return message.defaultAnswer;
}

} // namespace mms
