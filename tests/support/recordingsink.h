#pragma once

#include "model/messagesink.h"

#include <QStringList>
#include <deque>
#include <vector>

namespace mms::test {

// Records every message and answers from a queue (the default answer when the queue is empty).
class RecordingSink : public MessageSink {
public:
    Answer show(const Message& message) override {
        shown.push_back(message);
        if (answers.empty()) return message.defaultAnswer;
        Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    QStringList texts() const {
        QStringList out;
        for (const auto& m : shown) out << m.text;
        return out;
    }
    std::vector<Message> shown;
    std::deque<Answer> answers;
};

} // namespace mms::test
