// Stand-ins for the export commands until the export lands; delete this file then.

#include "composer/widgets/frmmmsmain.h"

namespace mms {

void frmMMSMain::createCmd_Click() {
    platform_.dialogs.inform(QStringLiteral("Export is not available in this build yet."));
}

void frmMMSMain::mnu_exportMms_Click() {
    platform_.dialogs.inform(QStringLiteral("Export as MMS is not available in this build yet."));
}

} // namespace mms
