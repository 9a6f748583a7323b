#include "app/mmsc.h"

#include "store/appfolder.h"

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
           "A command-line front end of the MMS composer for scripted and batch use.\n\n"
           "  --home DIR   the application folder holding UserData/ and Temp/ (default: $MMS_COMPOSER_HOME,\n"
           "               else the folder of the executable)\n\n"
           "Commands:\n";
    for (const auto& [name, info] : registry())
        out << info.usage << "\n";
    out << "Bad input gets a one-line message on stderr and exit status 2.\n";
}
} // namespace

Registrar::Registrar(const char* name, const char* usage, Command run, bool drawsText) {
    registry()[QString::fromLatin1(name)] = {QString::fromLatin1(name), QString::fromUtf8(usage),
                                             std::move(run), drawsText};
}

int fail(Context& context, const QString& message) {
    context.err << "mmsc: " << message << Qt::endl;
    return kUsageError;
}

} // namespace mms::cli

namespace {

// Text can only be drawn under a QGuiApplication. A command that draws gets one on Qt's offscreen
// platform (unless QT_QPA_PLATFORM names another), so it needs no display; the others stay on a
// QCoreApplication.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    mms::takeHomeOption(args);
    const auto found = args.isEmpty() ? mms::cli::registry().end() : mms::cli::registry().find(args.first());
    if (found == mms::cli::registry().end() || !found->second.drawsText)
        return std::make_unique<QCoreApplication>(argc, argv);
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
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = QCoreApplication::arguments().mid(1);
    const QString home = mms::takeHomeOption(args);
    mms::cli::Context context{mms::resolveAppFolder(home), out, err};

    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        mms::cli::printHelp(args.isEmpty() ? err : out);
        return args.isEmpty() ? mms::cli::kUsageError : 0;
    }
    const QString name = args.takeFirst();
    const auto found = mms::cli::registry().find(name);
    if (found == mms::cli::registry().end())
        return mms::cli::fail(context, QStringLiteral("unknown command '%1' (see mmsc --help)").arg(name));
    const int status = found->second.run(context, args);
    out.flush();
    err.flush();
    return status;
}
