#pragma once

#include <QString>
#include <QStringList>

namespace mms {

// The application folder: where the workspace (UserData, Temp) and the export's upload.tpl live.
// An explicit --home wins, then the MMS_COMPOSER_HOME environment variable, then the folder of the
// running executable. The result is absolute and has no trailing separator.
QString resolveAppFolder(const QString& homeOption = QString());

// Takes "--home DIR" or "--home=DIR" out of the arguments; returns DIR or an empty string.
QString takeHomeOption(QStringList& arguments);

// The folder of the running executable, where the language files lie.
QString programFolder();

} // namespace mms
