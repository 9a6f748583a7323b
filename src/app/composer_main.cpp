// mms-composer: the composer window.
//
//   mms-composer [--home DIR] [--language CODE] [--quit-after SECONDS] [--help] [--version]
//
// --home puts the workspace elsewhere (see store/appfolder.h); --language overrides the language
// setting for this run; --quit-after ends the program on its own for start-up checks. A language
// file or workspace folder that fails stops start-up with one message (a message box when a
// display exists, always on stderr) and exit status 1; a bad argument gives exit status 2.

#include "common/localisation.h"
#include "common/widgets/qtdialogs.h"
#include "composer/widgets/frmmmsmain.h"
#include "model/clockrandom.h"
#include "sound/sounddevice.h"
#include "store/appfolder.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStyleFactory>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <optional>

namespace {

constexpr int kUsageError = 2;
constexpr int kStartFailed = 1;

void printError(const QString& text) {
    std::fprintf(stderr, "mms-composer: %s\n", qPrintable(text));
}

struct StartOptions {
    QString home;
    QString languageCode; // empty: the "Language" setting
    std::optional<int> quitAfterSeconds;
};

// The options and their help texts.
struct CommandLine {
    QCommandLineParser parser;
    const QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Shows this help and exits.")};
    const QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Shows the version and exits.")};
    const QCommandLineOption home{
        QStringLiteral("home"),
        QStringLiteral("The application folder holding UserData/ and Temp/. Default: $MMS_COMPOSER_HOME, "
                       "else the folder of the executable in a build folder or portable copy, else "
                       "the user's data folder (~/.local/share/Morvane/mms-composer)."),
        QStringLiteral("DIR")};
    const QCommandLineOption language{
        QStringLiteral("language"),
        QStringLiteral("The interface language for this run: en, fra, ger, it, spa, ru, sch (Simplified "
                       "Chinese) or tch (Traditional Chinese). Default: the \"Language\" setting of the "
                       "organisation \"Morvane\"."),
        QStringLiteral("CODE")};
    const QCommandLineOption quitAfter{
        QStringLiteral("quit-after"),
        QStringLiteral("Ends the program SECONDS seconds after the window opens, without the close "
                       "questions: changes are lost and the temporary folders stay. For start-up checks."),
        QStringLiteral("SECONDS")};

    CommandLine() {
        parser.setApplicationDescription(QStringLiteral("Composes multimedia phone messages (MMS)."));
        parser.addOptions({help, version, home, language, quitAfter});
    }
};

// Reads the command line into `options`; returns the exit status when the program ends here
// (--help, --version, a bad argument).
std::optional<int> parseCommandLine(StartOptions& options) {
    CommandLine line;
    QCommandLineParser& parser = line.parser;
    if (!parser.parse(QCoreApplication::arguments())) {
        QString text = parser.errorText();
        if (text.endsWith(QLatin1Char('.'))) text.chop(1);
        printError(text + QStringLiteral(" (see mms-composer --help)"));
        return kUsageError;
    }
    if (parser.isSet(line.help)) {
        std::fputs(qPrintable(parser.helpText()), stdout);
        return 0;
    }
    if (parser.isSet(line.version)) {
        std::printf("mms-composer %s\n", qPrintable(mms::programVersion()));
        return 0;
    }
    if (!parser.positionalArguments().isEmpty()) {
        printError(QStringLiteral("unknown argument \"%1\" (see mms-composer --help)")
                       .arg(parser.positionalArguments().front()));
        return kUsageError;
    }
    options.home = parser.value(line.home);
    if (parser.isSet(line.language)) {
        const QString code = parser.value(line.language);
        if (code != QLatin1String("en") && !mms::languageCodes().contains(code)) {
            printError(QStringLiteral("unknown language \"%1\"; known codes: en %2")
                           .arg(code, mms::languageCodes().join(QLatin1Char(' '))));
            return kUsageError;
        }
        options.languageCode = code;
    }
    if (parser.isSet(line.quitAfter)) {
        bool ok = false;
        const int seconds = parser.value(line.quitAfter).toInt(&ok);
        if (!ok || seconds < 0 || seconds > 86400) {
            printError(QStringLiteral("--quit-after needs a whole number of seconds from 0 to 86400"));
            return kUsageError;
        }
        options.quitAfterSeconds = seconds;
    }
    return std::nullopt;
}

// Without a display Qt cannot open its default platform and would abort; run on the offscreen
// platform instead, so that start-up errors are still reported, and say why no window appears.
bool displayConfigured() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

// Whether a person can see windows: not on the offscreen or minimal platforms.
bool onScreen() {
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

// The folders of this run, or an empty app folder (with the reason printed) when there is none.
mms::ProgramFolders programFolders(const QString& home) {
    const mms::ProgramFolders folders = mms::chooseProgramFolders(mms::currentPlacement(home));
    if (folders.appFolder.isEmpty()) {
        printError(QStringLiteral("no folder for the workspace: set HOME, or give --home DIR"));
        return folders;
    }
    // A home folder named by the user, or the user's data folder, is made when missing; the
    // workspace goes inside it.
    if (!QDir().mkpath(folders.appFolder)) {
        printError(QStringLiteral("cannot create the folder %1").arg(folders.appFolder));
        return {};
    }
    return folders;
}

} // namespace

int main(int argc, char** argv) {
    const bool displayGiven = displayConfigured();
    if (!displayGiven) qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    mms::setProgramIdentity();
    QApplication::setDesktopFileName(QStringLiteral("org.morvane.MmsComposer"));
    if (QStyle* fusion = QStyleFactory::create(QStringLiteral("Fusion"))) QApplication::setStyle(fusion);

    StartOptions start;
    if (const std::optional<int> status = parseCommandLine(start)) return *status;
    const mms::ProgramFolders folders = programFolders(start.home);
    if (folders.appFolder.isEmpty()) return kStartFailed;

    mms::QtDialogs dialogs;
    mms::SystemClock clock;
    mms::SystemRandom random;
    mms::SoundDevice device;
    mms::Platform platform{dialogs, clock, random, device};
    mms::Localisation localisation;

    mms::frmMMSMain::Options options;
    options.appFolder = folders.appFolder;
    options.languageFolder = folders.languageFolder;
    options.languageCode = start.languageCode;

    auto window = std::make_unique<mms::frmMMSMain>(platform, localisation, options);
    QApplication::setWindowIcon(window->windowIcon());
    dialogs.setParentWidget(window.get());
    dialogs.setLocalisation(&localisation);
    if (const mms::Status started = window->Form_Load(); !started) {
        printError(started.message());
        if (onScreen()) {
            dialogs.setParentWidget(nullptr);
            dialogs.show(mms::Message{started.message(), mms::applicationTitle(), mms::Buttons::Ok,
                                      mms::Icon::Critical});
        }
        return kStartFailed;
    }
    if (!displayGiven) {
        printError(QStringLiteral("no display found (set DISPLAY, or QT_QPA_PLATFORM=offscreen for a window "
                                  "nobody sees)"));
        return kStartFailed;
    }
    window->show();
    // exit(), not quit(): quit() would close the window through its close questions.
    if (start.quitAfterSeconds)
        QTimer::singleShot(*start.quitAfterSeconds * 1000, &app, [] { QCoreApplication::exit(0); });
    const int status = QApplication::exec();
    window.reset();
    return status;
}
