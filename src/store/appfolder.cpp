#include "store/appfolder.h"

#include "common/localisation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

// Both come from the build: the project version, and where the installed data folder lies relative
// to the installed executables (GNUInstallDirs), so that an installation can be moved as a whole.
#ifndef MMS_VERSION
#define MMS_VERSION "0"
#endif
#ifndef MMS_DATA_FROM_BIN
#define MMS_DATA_FROM_BIN "../share/mms-composer"
#endif

namespace mms {

namespace {

QString absoluteClean(const QString& path) {
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

bool holdsLanguages(const QString& folder) {
    return QFileInfo(folder + QLatin1Char('/') + languageFileName(0)).isFile();
}

} // namespace

void setProgramIdentity() {
    QCoreApplication::setOrganizationName(QStringLiteral("Morvane"));
    QCoreApplication::setApplicationName(QStringLiteral("mms-composer"));
    QCoreApplication::setApplicationVersion(programVersion());
}

QString programVersion() {
    return QStringLiteral(MMS_VERSION);
}

ProgramFolders chooseProgramFolders(const Placement& placement) {
    const QString program = absoluteClean(placement.programFolder);
    const bool besideProgram = holdsLanguages(program);
    ProgramFolders folders;
    folders.installed = !besideProgram || !QFileInfo(program).isWritable();
    folders.languageFolder =
        besideProgram ? program : absoluteClean(program + QStringLiteral("/" MMS_DATA_FROM_BIN));

    QString app = placement.homeOption;
    if (app.isEmpty()) app = placement.homeVariable;
    if (app.isEmpty()) app = folders.installed ? placement.dataFolder : program;
    folders.appFolder = absoluteClean(app);
    return folders;
}

Placement currentPlacement(const QString& homeOption) {
    return {QCoreApplication::applicationDirPath(), homeOption, qEnvironmentVariable("MMS_COMPOSER_HOME"),
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)};
}

} // namespace mms
