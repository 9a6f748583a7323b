#include "common/widgets/browsefolder.h"

#include "common/localisation.h"
#include "composer/widgets/composerhost.h"

#include <QFileInfo>

namespace mms {

QString browseFolder(ComposerHost& host, const QString& startPath) {
    const QString title = host.localisation().getMCrInterfaceStr(62);
    const QString chosen = host.platform().dialogs.chooseFolder(host.hostWindow(), title, startPath);
    // A choice without a place in the file system (a virtual location, a folder gone meanwhile)
    // counts as no choice.
    if (chosen.isEmpty() || !QFileInfo(chosen).isDir()) return QString();
    return chosen;
}

} // namespace mms
