#include "store/appfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace mms {

QString programFolder() {
    return QDir::cleanPath(QCoreApplication::applicationDirPath());
}

QString resolveAppFolder(const QString& homeOption) {
    QString folder = homeOption;
    if (folder.isEmpty()) folder = qEnvironmentVariable("MMS_COMPOSER_HOME");
    if (folder.isEmpty()) folder = programFolder();
    return QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
}

QString takeHomeOption(QStringList& arguments) {
    QString home;
    for (qsizetype i = 0; i < arguments.size();) {
        const QString& arg = arguments.at(i);
        if (arg == QLatin1String("--home") && i + 1 < arguments.size()) {
            home = arguments.at(i + 1);
            arguments.remove(i, 2);
        } else if (arg.startsWith(QLatin1String("--home="))) {
            home = arg.mid(7);
            arguments.remove(i);
        } else {
            ++i;
        }
    }
    return home;
}

} // namespace mms
