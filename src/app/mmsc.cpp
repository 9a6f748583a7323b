#include "app/mmsc.h"

#include "store/appfolder.h"

#include <QCoreApplication>
#include <map>

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
    for (const auto& [name, info] : registry()) out << info.usage << "\n";
    out << "Bad input gets a one-line message on stderr and exit status 2.\n";
}
} // namespace

Registrar::Registrar(const char* name, const char* usage, Command run) {
    registry()[QString::fromLatin1(name)] = {QString::fromLatin1(name), QString::fromUtf8(usage), std::move(run)};
}

int fail(Context& context, const QString& message) {
    context.err << "mmsc: " << message << Qt::endl;
    return kUsageError;
}

} // namespace mms::cli

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = app.arguments().mid(1);
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
