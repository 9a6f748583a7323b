#pragma once

#include <QString>

namespace mms {

// Everything the user is told or asked goes through a MessageSink, so that the model and the
// windows can report without knowing whether a real message box, stderr or a test is listening.
enum class Buttons { Ok, YesNo, YesNoCancel };
enum class Answer { Ok, Yes, No, Cancel };
enum class Icon { None, Information, Question, Warning, Critical };

struct Message {
    QString text;
    QString title;
    Buttons buttons = Buttons::Ok;
    Icon icon = Icon::None;
    Answer defaultAnswer = Answer::Ok;
};

class MessageSink {
public:
    virtual ~MessageSink() = default;
    virtual Answer show(const Message& message) = 0;

    // The common case: a text with an OK button under the application's title.
    void inform(const QString& text);
};

// The application's own title, used for plain OK messages that carry no localised title.
QString applicationTitle();

} // namespace mms
