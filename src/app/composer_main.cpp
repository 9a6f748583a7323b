// mms-composer: the composer window.
//
//   mms-composer [--home DIR] [--language CODE]
//
// --home puts the workspace elsewhere (see store/appfolder.h); --language overrides the language
// setting for this run. A language file or workspace folder that fails stops start-up with one
// message (a message box when a display exists, always on stderr) and exit status 1.

#include "common/localisation.h"
#include "composer/widgets/frmmmsmain.h"
#include "common/widgets/qtdialogs.h"
#include "model/clockrandom.h"
#include "sound/fluidsynthdevice.h"
#include "store/appfolder.h"

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QStyleFactory>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kUsageError = 2;
constexpr int kStartFailed = 1;

void printError(const QString& text) {
    std::fprintf(stderr, "mms-composer: %s\n", qPrintable(text));
}

// Takes "--language CODE" or "--language=CODE" out of the arguments. `given` tells whether the
// option was present at all (an empty code is an error, not "no option").
QString takeLanguageOption(QStringList& arguments, bool& given) {
    QString code;
    given = false;
    for (qsizetype i = 0; i < arguments.size();) {
        const QString& arg = arguments.at(i);
        if (arg == QLatin1String("--language")) {
            given = true;
            code = i + 1 < arguments.size() ? arguments.at(i + 1) : QString();
            arguments.remove(i, std::min<qsizetype>(2, arguments.size() - i));
        } else if (arg.startsWith(QLatin1String("--language="))) {
            given = true;
            code = arg.mid(11);
            arguments.remove(i);
        } else {
            ++i;
        }
    }
    return code;
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

} // namespace

int main(int argc, char** argv) {
    const bool displayGiven = displayConfigured();
    if (!displayGiven) qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication app(argc, argv);
    const bool hasDisplay = onScreen();
    QApplication::setApplicationName(QStringLiteral("MMS Composer"));
    QApplication::setOrganizationName(QStringLiteral("Morvane"));
    QApplication::setApplicationVersion(QStringLiteral(MMS_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("mms-composer"));
    if (QStyle* fusion = QStyleFactory::create(QStringLiteral("Fusion"))) QApplication::setStyle(fusion);

    QStringList arguments = QApplication::arguments();
    arguments.removeFirst();
    const QString home = mms::takeHomeOption(arguments);
    bool languageGiven = false;
    const QString languageCode = takeLanguageOption(arguments, languageGiven);
    if (arguments == QStringList{QStringLiteral("--help")}) {
        std::fprintf(stdout, "%s\n",
                     "Usage: mms-composer [--home DIR] [--language CODE]\n"
                     "  --home DIR       the application folder holding UserData/ and Temp/ (default:\n"
                     "                   $MMS_COMPOSER_HOME, else the folder of the executable)\n"
                     "  --language CODE  the interface language for this run: en, fra, ger, it, spa, ru,\n"
                     "                   sch (Simplified Chinese) or tch (Traditional Chinese); by default\n"
                     "                   the \"Language\" setting of the organisation \"Morvane\"");
        return 0;
    }
    if (!arguments.isEmpty()) {
        printError(
            QStringLiteral("unknown argument \"%1\"; usage: mms-composer [--home DIR] [--language CODE]")
                .arg(arguments.front()));
        return kUsageError;
    }
    if (languageGiven && languageCode != QLatin1String("en") &&
        !mms::languageCodes().contains(languageCode)) {
        printError(QStringLiteral("unknown language \"%1\"; known codes: en %2")
                       .arg(languageCode, mms::languageCodes().join(QLatin1Char(' '))));
        return kUsageError;
    }

    mms::QtDialogs dialogs;
    mms::SystemClock clock;
    mms::SystemRandom random;
    mms::FluidSynthDevice device;
    mms::Platform platform{dialogs, clock, random, device};
    mms::Localisation localisation;

    mms::frmMMSMain::Options options;
    options.appFolder = mms::resolveAppFolder(home);
    // A home folder named on the command line is made when missing; the workspace goes inside it.
    if (!home.isEmpty()) QDir().mkpath(options.appFolder);
    options.languageFolder = mms::programFolder();
    options.languageCode = languageCode;
    // Window state and recent messages: the user's "Morvane/MMS Composer" settings.
    options.settingsFile = QSettings(QSettings::IniFormat, QSettings::UserScope, QApplication::organizationName(),
                                     QApplication::applicationName())
                               .fileName();

    auto window = std::make_unique<mms::frmMMSMain>(platform, localisation, options);
    dialogs.setParentWidget(window.get());
    dialogs.setLocalisation(&localisation);
    if (const mms::Status started = window->Form_Load(); !started) {
        printError(started.message());
        if (hasDisplay) {
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
    window->offerDraftRestore();
    const int status = QApplication::exec();
    window.reset();
    return status;
}
