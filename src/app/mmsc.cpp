#include "app/mmsc.h"

#include "store/appfolder.h"
#include "store/messagestore.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QGuiApplication>
#include <map>
#include <memory>

namespace mms::cli {

namespace {
std::map<QString, CommandInfo>& registry() {
    static std::map<QString, CommandInfo> commands;
    return commands;
}

void printHelp(QTextStream& out) {
    out << "Usage: mmsc [--home DIR] COMMAND [ARGS]\n"
           "       mmsc --help | --version\n"
           "A command-line front end of the MMS composer for scripted and batch use.\n\n"
           "  --home DIR     the application folder holding UserData/ and Temp/ (default: "
           "$MMS_COMPOSER_HOME,\n"
           "                 else the folder of the executable in a build folder or portable copy, else\n"
           "                 the user's data folder ~/.local/share/Morvane/mms-composer, as the composer)\n"
           "  -h, --help     prints this help\n"
           "  -v, --version  prints the version\n\n"
           "Commands:\n";
    for (const auto& [name, info] : registry())
        out << info.usage << "\n";
    out << "Bad input gets a one-line message on stderr and exit status 2.\n";
}

// The parser's message without its closing full stop, and where to look.
QString usageError(const QCommandLineParser& parser) {
    QString text = parser.errorText();
    if (text.endsWith(QLatin1Char('.'))) text.chop(1);
    return text + QStringLiteral(" (see mmsc --help)");
}

// Global options come before the command; what follows the command is the command's own.
int run(const QStringList& arguments, QTextStream& out, QTextStream& err) {
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QString());
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")}, QString());
    const QCommandLineOption home(QStringLiteral("home"), QString(), QStringLiteral("DIR"));
    parser.addOptions({help, version, home});

    Context context{QString(), QString(), out, err};
    if (!parser.parse(arguments)) return fail(context, usageError(parser));
    if (parser.isSet(help)) {
        printHelp(out);
        return 0;
    }
    if (parser.isSet(version)) {
        out << "mmsc " << programVersion() << "\n";
        return 0;
    }
    QStringList args = parser.positionalArguments();
    if (args.isEmpty()) {
        printHelp(err);
        return kUsageError;
    }
    const ProgramFolders folders = chooseProgramFolders(currentPlacement(parser.value(home)));
    if (folders.appFolder.isEmpty())
        return fail(context, QStringLiteral("no folder for the workspace: set HOME, or give --home DIR"));
    context.home = folders.appFolder;
    context.languageFolder = folders.languageFolder;
    // Every start puts right what a crashed save, open or deletion left, as the composer's does.
    (void)MessageStore(context.home).recover();

    const QString name = args.takeFirst();
    const auto found = registry().find(name);
    if (found == registry().end())
        return fail(context, QStringLiteral("unknown command '%1' (see mmsc --help)").arg(name));
    return found->second.run(context, args);
}
} // namespace

Registrar::Registrar(const char* name, const char* usage, Command run, bool drawsText) {
    registry()[QString::fromLatin1(name)] = {QString::fromLatin1(name), QString::fromUtf8(usage),
                                             std::move(run), drawsText};
}

namespace {

// Looks at the raw arguments before any application exists: the command is the first argument
// that is not a global option (or the folder of --home).
bool commandDrawsText(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        if (arg == QLatin1String("--home")) {
            ++i;
            continue;
        }
        if (arg.startsWith(QLatin1Char('-'))) continue;
        const auto found = registry().find(arg);
        return found != registry().end() && found->second.drawsText;
    }
    return false;
}

} // namespace

int fail(Context& context, const QString& message) {
    context.err << "mmsc: " << message << Qt::endl;
    return kUsageError;
}

Answer ErrSink::show(const Message& message) {
    // Message box texts may run over several lines; mmsc reports one line per message.
    context_.err << "mmsc: " << prefix_ << message.text.simplified() << Qt::endl;
    ++shown_;
    return message.defaultAnswer;
}

} // namespace mms::cli

namespace {

// Text can only be drawn under a QGuiApplication. A command that draws gets one on Qt's offscreen
// platform (unless QT_QPA_PLATFORM names another), so it needs no display; the others stay on a
// QCoreApplication.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    if (!mms::cli::commandDrawsText(argc, argv)) return std::make_unique<QCoreApplication>(argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform's start-up notices (such as a missing runtime folder) would precede every
    // command's own output on stderr; they say nothing about the command.
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    auto app = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(previous);
    return app;
}

} // namespace

int main(int argc, char* argv[]) {
    const std::unique_ptr<QCoreApplication> app = makeApplication(argc, argv);
    mms::setProgramIdentity();
    QTextStream out(stdout);
    QTextStream err(stderr);
    const int status = mms::cli::run(QCoreApplication::arguments(), out, err);
    out.flush();
    err.flush();
    return status;
}
