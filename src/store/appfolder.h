#pragma once

#include <QString>

namespace mms {

// Names both programs share: the organisation (its settings hold the language), the application
// (it names the user's data folder, so the composer and mmsc find the same workspace) and the
// version. Call before the first QStandardPaths or QSettings lookup.
void setProgramIdentity();
QString programVersion();

// What the choice of folders depends on. currentPlacement() reads it from the running program;
// tests fill it in.
struct Placement {
    QString programFolder; // the folder of the executable
    QString homeOption;    // --home DIR; empty when not given
    QString homeVariable;  // MMS_COMPOSER_HOME; empty when unset
    QString dataFolder;    // the user's data folder of the program (QStandardPaths::AppDataLocation)
};

struct ProgramFolders {
    QString appFolder;      // the workspace (UserData, Temp) and the export's upload.tpl
    QString languageFolder; // the .lng files
    bool installed = false;
};

// A program whose folder is writable and holds its language files (a build folder, an unpacked
// copy) is portable and keeps its workspace beside itself. Any other is installed: its language
// files lie in the shared data folder of the installation (share/mms-composer beside bin) unless
// they lie beside it, and its workspace is the user's data folder. --home, then MMS_COMPOSER_HOME,
// name the workspace in both cases. Paths come back absolute, without a trailing separator; the
// app folder is empty when an installed program has no data folder (no home folder).
ProgramFolders chooseProgramFolders(const Placement& placement);

Placement currentPlacement(const QString& homeOption);

} // namespace mms
