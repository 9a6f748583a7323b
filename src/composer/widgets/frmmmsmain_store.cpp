// The message commands of the File menu: New, Open, Save, Save as and Delete.

#include "composer/widgets/frmmmsmain.h"

namespace mms {

namespace {
void notAvailable(Dialogs& dialogs) {
    dialogs.inform(QStringLiteral("The message store is not available in this build yet."));
}
} // namespace

void frmMMSMain::mnu_new_Click() {
    notAvailable(platform_.dialogs);
}
void frmMMSMain::mnu_open_Click() {
    notAvailable(platform_.dialogs);
}
void frmMMSMain::mnu_save_Click() {
    notAvailable(platform_.dialogs);
}
void frmMMSMain::mnu_saveAs_Click() {
    notAvailable(platform_.dialogs);
}
void frmMMSMain::mnu_delete_Click() {
    notAvailable(platform_.dialogs);
}

} // namespace mms
