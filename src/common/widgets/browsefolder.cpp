#include "common/widgets/browsefolder.h"

#include "common/commontexts.h"
#include "common/localisation.h"
#include "common/widgets/platform.h"

#include <QFileInfo>
#include <QWidget>

namespace mms {

QString browseFolder(Dialogs& dialogs, const Localisation& texts, QWidget* parent, const QString& startPath) {
    const QString title = texts.getMCrInterfaceStr(commontext::kChooseFolder);
    const QString chosen = dialogs.chooseFolder(parent ? parent->window() : nullptr, title, startPath);
    // A choice without a place in the file system (a virtual location, a folder gone meanwhile)
    // counts as no choice.
    if (chosen.isEmpty() || !QFileInfo(chosen).isDir()) return QString();
    return chosen;
}

} // namespace mms
