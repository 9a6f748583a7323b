// The message as a whole: New, Open, Save, Save as, Delete and the close question.
//
// The store never loses a message: a save that fails leaves the stored copy as it was, the message
// in memory unchanged and isModified set, and says what failed (error 23); New and Open do not go on
// over a message whose save failed. Open reads and copies the chosen message before it clears the
// current one, so a message that cannot be opened changes nothing (error 24).

#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composerdocument.h"
#include "composer/composertexts.h"
#include "composer/workspacefolders.h"
#include "store/messagestore.h"

#include <QFileInfo>
#include <QUndoStack>

namespace mms {

MessageStore ComposerDocument::store() const {
    return MessageStore(options_.appFolder);
}

Answer ComposerDocument::ask(int prompt, int title, Buttons buttons, Answer defaultAnswer) {
    return sink_.show(Message{loc_.getMCrPromptStr(prompt), loc_.getMCrInterfaceStr(title), buttons,
                              Icon::Question, defaultAnswer});
}

void ComposerDocument::showError(int error, const QString& detail) {
    showWarning(loc_.getMCrErrStr(error).arg(detail));
}

void ComposerDocument::showWarning(const QString& text) {
    sink_.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
}

bool ComposerDocument::chooseName(DocumentWindows::NameDialog which) {
    return windows_.runNameDialog(which);
}

void ComposerDocument::clear() {
    state_.txtsubject.clear();
    message_.clear();
    current_ = 0;
    emit replaced();
}

// Slide 1 is shown first, as after every Open; `show` then, when it is another slide.
void ComposerDocument::load(const LoadedMessage& loaded, qint16 show) {
    state_.txtsubject = loaded.subject;
    QList<SlideContent> slides;
    slides.reserve(static_cast<qsizetype>(loaded.slides.size()));
    for (const LoadedSlide& s : loaded.slides)
        slides.append(SlideContent{s.duration, s.picturePath, s.text, s.soundPath});
    message_.load(slides);
    if (message_.isEmpty()) return;
    emit showSlide(1);
    if (show > 1 && show <= message_.count()) emit showSlide(show);
}

void ComposerDocument::newMessage() {
    if (state_.isModified) {
        switch (
            ask(composertext::kPromptSaveFirst, composertext::kAppTitle, Buttons::YesNoCancel, Answer::Yes)) {
        case Answer::Yes:
            // A save-as that was cancelled does not stop New; one that failed does.
            save();
            if (saveFailed_) return;
            break;
        case Answer::No:
            break;
        default:
            return;
        }
    }
    clear();
    // The working copy is scratch: should it resist, the next Open replaces it.
    if (QFileInfo::exists(workspace::workingCopyIndex(options_.appFolder))) (void)store().removeWorkingCopy();
    state_.currentFile.clear();
    state_.isOverwrite = false;
    state_.isCancel = false;
    setModified(false);
    messageReplaced();
}

void ComposerDocument::save() {
    saveFailed_ = false;
    if (state_.currentFile.isEmpty()) {
        saveAs();
        return;
    }
    remeasure();
    if (Status s = store().save(message_.slides(), state_.currentFile, state_.txtsubject); !s) {
        saveFailed_ = true;
        showError(composertext::kErrNotSaved, s.message());
        return;
    }
    setModified(false);
    messageStored();
}

void ComposerDocument::saveAs() {
    saveFailed_ = false;
    remeasure();
    const QString previousName = state_.currentFile;
    if (!chooseName(DocumentWindows::NameDialog::Save) || state_.isCancel) return;
    if (Status s = store().save(message_.slides(), state_.currentFile, state_.txtsubject); !s) {
        saveFailed_ = true;
        state_.currentFile = previousName;
        showError(composertext::kErrNotSaved, s.message());
        return;
    }
    sink_.show(Message{loc_.getMCrPromptStr(composertext::kPromptSaved),
                       loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::Ok});
    setModified(false);
    messageStored();
}

void ComposerDocument::remove() {
    const QString keep = state_.currentFile;
    const bool shown = chooseName(DocumentWindows::NameDialog::Delete);
    const QString chosen = state_.currentFile;
    state_.currentFile = keep;
    if (!shown || state_.isCancel) return;
    const MessageStore messages = store();
    if (ask(composertext::kPromptDeleteMessage, composertext::kDelete, Buttons::YesNo, Answer::No) !=
            Answer::Yes ||
        !messages.hasIndex(chosen))
        return;
    if (Status s = messages.remove(chosen); !s) {
        showError(composertext::kErrNotDeleted, s.message());
        return;
    }
    emit forgotten(chosen);
    sink_.show(Message{loc_.getMCrPromptStr(composertext::kPromptDeleted),
                       loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::Ok});
}

void ComposerDocument::open() {
    if (state_.isModified && ask(composertext::kPromptSaveFirst, composertext::kAppTitle, Buttons::YesNo,
                                 Answer::No) == Answer::Yes) {
        save();
        if (saveFailed_) return;
    }
    const QString previousName = state_.currentFile;
    if (!chooseName(DocumentWindows::NameDialog::Open) || state_.isCancel) return;
    openStored(state_.currentFile, previousName);
}

void ComposerDocument::openRecent(const QString& name) {
    if (!state_.currentFile.isEmpty() && name == state_.currentFile) {
        sink_.inform(loc_.getMCrErrStr(composertext::kErrAlreadyOpen));
        return;
    }
    if (!store().hasIndex(name)) {
        emit forgotten(name);
        showWarning(loc_.getMCrErrStr(composertext::kErrRecentMissing).replace(QStringLiteral("%1"), name));
        return;
    }
    if (state_.isModified && ask(composertext::kPromptSaveFirst, composertext::kAppTitle, Buttons::YesNo,
                                 Answer::No) == Answer::Yes) {
        save();
        if (saveFailed_) return;
    }
    openStored(name, state_.currentFile);
}

void ComposerDocument::openStored(const QString& name, const QString& previousName) {
    const MessageStore messages = store();
    state_.currentFile = name;
    // The index is read from the store first, so that a malformed one changes nothing; then the
    // message is copied to the working copy, which its slides will refer to.
    LoadedMessage loaded;
    Status s = messages.load(name, workspace::messageFolder(options_.appFolder, name), loaded);
    // The draft may point into the working copy about to be replaced: it goes first, so that a crash
    // after the swap never offers it with another message's files. A failed open writes it again.
    const bool replacing = s && state_.isModified;
    if (replacing) {
        removeDraft();
        draftWriter_.waitForDone();
    }
    if (s) s = messages.copyToWorkingCopy(name);
    if (s) s = messages.load(name, workspace::workingCopy(options_.appFolder), loaded);
    if (!s) {
        state_.currentFile = previousName;
        if (replacing) writeDraft();
        showError(composertext::kErrNotOpened, s.message());
        return;
    }
    clear();
    load(loaded, 1);
    setModified(false);
    messageReplaced();
    emit remembered(name);
    if (!loaded.missingFiles.isEmpty())
        showError(composertext::kErrStoredFilesMissing, loaded.missingFiles.join(QLatin1Char('\n')));
}

void ComposerDocument::messageStored() {
    emit remembered(state_.currentFile);
    emit titleChanged();
    history_->setClean();
    removeDraft();
}

void ComposerDocument::messageReplaced() {
    history_->clear();
    removeDraft();
}

bool ComposerDocument::queryClose() {
    if (state_.isModified) {
        switch (ask(composertext::kPromptSaveBeforeExit, composertext::kAppTitle, Buttons::YesNoCancel,
                    Answer::Yes)) {
        case Answer::Yes:
            save();
            if (state_.isModified) return false;
            break;
        case Answer::No:
            break;
        default:
            return false;
        }
    } else if (ask(composertext::kPromptExit, composertext::kAppTitle, Buttons::YesNo, Answer::Yes) !=
               Answer::Yes) {
        return false;
    }
    // A step that fails ends the clean-up quietly; the window closes all the same.
    (void)cleanUpWorkspace(options_.appFolder);
    // The close was confirmed: whatever was not saved was given up on purpose.
    removeDraft();
    return true;
}

} // namespace mms
