// The message commands of the File menu: New, Open, Save, Save as and Delete.
//
// The store never loses a message: a save that fails leaves the stored copy as it was, the message
// in memory unchanged and isModified set, and says what failed (error 23); New and Open do not go on
// over a message whose save failed. Open reads and copies the chosen message before it clears the
// current one, so a message that cannot be opened changes nothing (error 24).

#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/frmmmsmain.h"
#include "store/widgets/frmmmsfiledelete.h"
#include "store/widgets/frmmmsfileopen.h"
#include "store/widgets/frmmmsfilesave.h"

#include <QAction>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QToolButton>

namespace mms {

MessageStore frmMMSMain::store() const {
    return MessageStore(options_.appFolder);
}

Answer frmMMSMain::ask(int prompt, int title, Buttons buttons, Answer defaultAnswer) {
    return platform_.dialogs.show(Message{loc_.getMCrPromptStr(prompt), loc_.getMCrInterfaceStr(title),
                                          buttons, Icon::Question, defaultAnswer});
}

void frmMMSMain::showStoreError(int error, const QString& detail) {
    platform_.dialogs.show(
        Message{loc_.getMCrErrStr(error).arg(detail), applicationTitle(), Buttons::Ok, Icon::Warning});
}

void frmMMSMain::clearMessage() {
    state_.txtsubject.clear();
    slides_.Destory();
    {
        const QScopedValueRollback quiet(stripFromCode_, true);
        stripModel_->clear();
    }
    lstSlide->setIconSize(kStripThumbnailSize);
    for (QToolButton* b : {ffCmd, fCmd, rCmd, rrCmd})
        b->setEnabled(false);
    for (QAction* a : {sendfront, sendfwd, sendbwd, sendback})
        a->setEnabled(false);
    addCmd->setEnabled(true);
    add_slide->setEnabled(true);
    refreshSlidePanel();
}

void frmMMSMain::mnu_new_Click() {
    if (state_.isModified) {
        switch (ask(3, 0, Buttons::YesNoCancel, Answer::Yes)) {
        case Answer::Yes:
            // A save-as that was cancelled does not stop New; one that failed does.
            mnu_save_Click();
            if (saveFailed_) return;
            break;
        case Answer::No:
            break;
        default:
            return;
        }
    }
    clearMessage();
    // The working copy is scratch: should it resist, the next Open replaces it.
    if (QFileInfo::exists(workspace::workingCopyIndex(options_.appFolder))) (void)store().removeWorkingCopy();
    state_.currentFile.clear();
    state_.isOverwrite = false;
    state_.isCancel = false;
    setModified(false);
    updateCaption();
    messageReplaced();
}

void frmMMSMain::mnu_save_Click() {
    saveFailed_ = false;
    if (state_.currentFile.isEmpty()) {
        mnu_saveAs_Click();
        return;
    }
    remeasureMessage();
    if (Status s = store().save(slides_, state_.currentFile, state_.txtsubject); !s) {
        saveFailed_ = true;
        showStoreError(23, s.message());
        return;
    }
    setModified(false);
    messageStored();
}

void frmMMSMain::mnu_saveAs_Click() {
    saveFailed_ = false;
    remeasureMessage();
    const QString previousName = state_.currentFile;
    const MessageStore messages = store();
    {
        frmMMSFileSave dialog(this, loc_, platform_.dialogs, messages, state_);
        if (!removeCloseCommand(dialog)) return;
        platform_.dialogs.runModal(dialog);
    }
    if (state_.isCancel) return;
    if (Status s = messages.save(slides_, state_.currentFile, state_.txtsubject); !s) {
        saveFailed_ = true;
        state_.currentFile = previousName;
        showStoreError(23, s.message());
        return;
    }
    platform_.dialogs.show(Message{loc_.getMCrPromptStr(8), loc_.getMCrInterfaceStr(0), Buttons::Ok});
    setModified(false);
    updateCaption();
    messageStored();
}

void frmMMSMain::mnu_delete_Click() {
    const QString keep = state_.currentFile;
    const MessageStore messages = store();
    {
        frmMMSFileDelete dialog(this, loc_, platform_.dialogs, messages, state_);
        if (!removeCloseCommand(dialog)) return;
        platform_.dialogs.runModal(dialog);
    }
    const QString chosen = state_.currentFile;
    state_.currentFile = keep;
    if (state_.isCancel) return;
    if (ask(1, 7, Buttons::YesNo, Answer::No) != Answer::Yes || !messages.hasIndex(chosen)) return;
    if (Status s = messages.remove(chosen); !s) {
        showStoreError(26, s.message());
        return;
    }
    forgetRecent(chosen);
    platform_.dialogs.show(Message{loc_.getMCrPromptStr(7), loc_.getMCrInterfaceStr(0), Buttons::Ok});
}

void frmMMSMain::mnu_open_Click() {
    if (state_.isModified && ask(3, 0, Buttons::YesNo, Answer::No) == Answer::Yes) {
        mnu_save_Click();
        if (saveFailed_) return;
    }
    const QString previousName = state_.currentFile;
    const MessageStore messages = store();
    {
        frmMMSFileOpen dialog(this, loc_, platform_.dialogs, messages, state_);
        if (!removeCloseCommand(dialog)) return;
        platform_.dialogs.runModal(dialog);
    }
    if (state_.isCancel) return;
    openStored(state_.currentFile, previousName);
}

void frmMMSMain::openStored(const QString& name, const QString& previousName) {
    const MessageStore messages = store();
    state_.currentFile = name;
    // The index is read from the store first, so that a malformed one changes nothing; then the
    // message is copied to the working copy, which its slides will refer to.
    LoadedMessage loaded;
    Status s = messages.load(name, workspace::messageFolder(options_.appFolder, name), loaded);
    if (s) s = messages.copyToWorkingCopy(name);
    if (s) s = messages.load(name, workspace::workingCopy(options_.appFolder), loaded);
    if (!s) {
        state_.currentFile = previousName;
        showStoreError(24, s.message());
        return;
    }

    clearMessage();
    loadMessage(loaded);
    setModified(false);
    updateCaption();
    messageReplaced();
    rememberRecent(name);
    if (!loaded.missingFiles.isEmpty()) showStoreError(25, loaded.missingFiles.join(QLatin1Char('\n')));
}

void frmMMSMain::loadMessage(const LoadedMessage& loaded) {
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    state_.txtsubject = loaded.subject;
    enableSlideCmds();
    for (const LoadedSlide& slide : loaded.slides) {
        if (stripCount() >= CSlide::kMaxSlides) break;
        const QImage picture = slide.picturePath.isEmpty() || isVideoClipPath(slide.picturePath)
                                   ? QImage()
                                   : loadPicture(slide.picturePath);
        slides_.InsertAtBack(slide.duration, slide.picturePath, slide.text, slide.soundPath);
        stripModel_->appendSlide(picture.isNull() ? blankThumbnail() : fittedThumbnail(picture),
                                 slide.duration);
    }
    if (stripCount() > 0) {
        selectSlide(1);
        lstSlide_ItemClick();
    }
    setModified(false);
}

} // namespace mms
