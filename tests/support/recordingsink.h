#pragma once

#include "model/messagesink.h"

#include <QStringList>
#include <deque>
#include <vector>

namespace mms::test {

// Records every message and answers from a queue (the message's default answer when it is empty).
template <class Sink = MessageSink> class Recording : public Sink {
public:
    Answer show(const Message& message) override {
        shown.push_back(message);
        if (answers.empty()) return message.defaultAnswer;
        const Answer a = answers.front();
        answers.pop_front();
        return a;
    }
    QStringList texts() const {
        QStringList out;
        for (const Message& m : shown)
            out << m.text;
        return out;
    }
    std::vector<Message> shown;
    std::deque<Answer> answers;
};

using RecordingSink = Recording<>;

} // namespace mms::test
