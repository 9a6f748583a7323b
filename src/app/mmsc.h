#pragma once

#include "model/messagesink.h"

#include <QString>
#include <QStringList>
#include <QTextStream>
#include <functional>

namespace mms::cli {

// What every mmsc command gets: the application folder, the folder of the language files and the
// output streams.
struct Context {
    QString home;
    QString languageFolder;
    QTextStream& out;
    QTextStream& err;
};

// Exit status for bad input: a clear one-line message on stderr, nothing written.
constexpr int kUsageError = 2;

using Command = std::function<int(Context&, const QStringList& args)>;

struct CommandInfo {
    QString name;
    QString usage; // one or more lines for --help
    Command run;
    bool drawsText = false; // runs under a QGuiApplication (fonts), on the offscreen platform
};

// Each mmsc_*.cpp registers its commands with a static Registrar.
struct Registrar {
    Registrar(const char* name, const char* usage, Command run, bool drawsText = false);
};

// Prints "mmsc: MESSAGE" on stderr and returns kUsageError.
int fail(Context& context, const QString& message);

// What the core's rules would show in a message box, printed as mmsc's own one-line messages
// ("mmsc: PREFIX TEXT") and answered with the default button.
class ErrSink final : public MessageSink {
public:
    ErrSink(Context& context, QString prefix) : context_(context), prefix_(std::move(prefix)) {}
    Answer show(const Message& message) override;
    int shown() const { return shown_; }

private:
    Context& context_;
    QString prefix_;
    int shown_ = 0;
};

} // namespace mms::cli
