// The composer's export commands: Export (the message as a .tpl package archive) and Export as MMS
// (the message as one binary MMS send request).

#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/widgets/frmmmsmain.h"
#include "package/messageexport.h"
#include "package/packagewriter.h"
#include "package/widgets/frmmmspromptsubject.h"

#include <exception>

namespace mms {

namespace {

// A menu caption as a window title: without its trailing ellipsis.
QString titleOf(QString caption) {
    if (caption.endsWith(QStringLiteral("...")))
        caption.chop(3);
    else if (caption.endsWith(QChar(0x2026)))
        caption.chop(1);
    return caption.trimmed();
}

void showFailure(Dialogs& dialogs, const QString& text, const QString& detail) {
    dialogs.show(Message{QString(text).replace(QStringLiteral("%1"), detail), applicationTitle(), Buttons::Ok,
                         Icon::Warning});
}

} // namespace

// The subject prompt is shown for each export; a valid subject lands in txtsubject and stays there,
// so a later save stores it. Exporting does not change whether the message counts as modified.
void frmMMSMain::createCmd_Click() {
    if (!goOnDespiteSize()) return;
    frmMMSPromptSubject prompt(loc_, platform_.dialogs, state_, this);
    platform_.dialogs.runModal(prompt);
    if (!prompt.validflag) return;

    const QString& a = options_.appFolder;
    const QString archive = uploadArchiveBase(a) + QStringLiteral(".tpl");
    slides_.setfolderpath(QString());
    slides_.setfilename(uploadArchiveBase(a));
    Status result = generateSMIL(slides_, a, state_.txtsubject);
    if (result) {
        const QString destination = platform_.dialogs.chooseSaveFile(
            this, loc_.getMCrInterfaceStr(63), workspace::messages(a) + QLatin1Char('/'),
            QStringLiteral("MMS Files (*.tpl)"));
        // Cancel ends the command quietly; the archive stays until the next export replaces it.
        if (destination.isEmpty()) return;
        result = moveArchive(archive, destination);
    }
    if (!result) {
        showFailure(platform_.dialogs, loc_.getMCrErrStr(30), result.message());
        return;
    }
    platform_.dialogs.show(
        Message{loc_.getMCrPromptStr(10), loc_.getMCrInterfaceStr(0), Buttons::Ok, Icon::Information});
}

void frmMMSMain::mnu_exportMms_Click() {
    if (!goOnDespiteSize()) return;
    frmMMSPromptSubject prompt(loc_, platform_.dialogs, state_, this, true);
    platform_.dialogs.runModal(prompt);
    if (!prompt.validflag) return;

    const QString& a = options_.appFolder;
    const QString destination = platform_.dialogs.chooseSaveFile(
        this, titleOf(loc_.getMCrInterfaceStr(64)), workspace::messages(a) + QLatin1Char('/'),
        loc_.getMCrInterfaceStr(65) + QStringLiteral(" (*.mms)"));
    if (destination.isEmpty()) return;

    Status result = Status::ok();
    try {
        MmsRecipients recipients;
        recipients.to = prompt.recipients;
        result = writeMmsFile(slides_, a, state_.txtsubject, destination, recipients);
    } catch (const std::exception& e) {
        result = Status::failure(QString::fromUtf8(e.what()));
    }
    if (!result) {
        showFailure(platform_.dialogs, loc_.getMCrErrStr(29), result.message());
        return;
    }
    platform_.dialogs.show(
        Message{loc_.getMCrPromptStr(11), loc_.getMCrInterfaceStr(0), Buttons::Ok, Icon::Information});
}

} // namespace mms
