// The draft: while the message has unsaved changes, a copy of it is kept in the workspace, so that
// a crash or a power cut loses at most the last moments of work. It is written a short pause after
// the last change, by a worker thread, through a safe write that never leaves half a file. A save,
// New, Open or a confirmed close removes it; the next start offers to restore one that is left.

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "composer/draftstore.h"
#include "composer/widgets/frmmmsmain.h"
#include "store/messagestore.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>
#include <QUndoStack>

namespace mms {

void frmMMSMain::scheduleDraft() {
    if (!draftHeld_) draftTimer_->start();
}

Draft frmMMSMain::currentDraft() const {
    Draft draft{state_.currentFile, state_.txtsubject, selectedSlide(), {}};
    for (NodePtr node = slides_.firstItem(); node; node = node->NextNode)
        draft.slides.append(contentOf(*node));
    return draft;
}

void frmMMSMain::writeDraft() {
    draftTimer_->stop();
    if (draftHeld_) return;
    if (!state_.isModified) {
        removeDraft();
        return;
    }
    // The message is copied here, on the window's thread; only the file is written elsewhere.
    const QByteArray bytes = encodeDraft(currentDraft());
    const QString folder = options_.appFolder;
    draftWriter_.start([this, bytes, folder] {
        const Status written = DraftStore(folder).write(bytes);
        QMetaObject::invokeMethod(
            this, [this, written] { onDraftWritten(written); }, Qt::QueuedConnection);
    });
}

void frmMMSMain::onDraftWritten(const Status& status) {
    if (status) {
        draftWarned_ = false;
        return;
    }
    // Said once, not at every pause, until a draft can be written again.
    if (draftWarned_) return;
    draftWarned_ = true;
    const QString text =
        loc_.getMCrErrStr(desktoptext::kErrDraftNotWritten).replace(QStringLiteral("%1"), status.message());
    platform_.dialogs.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
}

void frmMMSMain::removeDraft() {
    draftTimer_->stop();
    if (draftHeld_) return;
    const QString folder = options_.appFolder;
    // Queued behind any write still under way, so that no late write brings the draft back.
    draftWriter_.start([folder] { (void)DraftStore(folder).remove(); });
}

void frmMMSMain::flushDraft() {
    if (draftTimer_->isActive()) writeDraft();
    draftWriter_.waitForDone();
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void frmMMSMain::messageStored() {
    rememberRecent(state_.currentFile);
    undoStack_->setClean();
    removeDraft();
}

void frmMMSMain::messageReplaced() {
    undoStack_->clear();
    removeDraft();
}

void frmMMSMain::offerDraftRestore() {
    const DraftStore drafts(options_.appFolder);
    if (!drafts.exists()) {
        draftHeld_ = false;
        return;
    }
    QByteArray bytes;
    QString problem;
    std::optional<Draft> draft;
    if (Status s = drafts.read(bytes); !s) {
        problem = s.message();
    } else {
        draft = decodeDraft(bytes, &problem);
    }
    if (!draft) {
        // Kept for whoever wants to look at it, but never offered again nor written over.
        Status moved = Status::ok();
        const QString aside = drafts.setAside(platform_.clock.now(), moved);
        draftHeld_ = !moved;
        const QString where = QDir::toNativeSeparators(moved ? aside : drafts.path());
        const QString text =
            loc_.getMCrErrStr(desktoptext::kErrDraftDamaged)
                .replace(QStringLiteral("%1"), where + QStringLiteral("\n(") + problem + u')');
        platform_.dialogs.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
        return;
    }
    const Answer answer = platform_.dialogs.show(
        Message{loc_.getMCrPromptStr(desktoptext::kPromptRestoreDraft), loc_.getMCrInterfaceStr(0),
                Buttons::YesNo, Icon::Question, Answer::Yes});
    draftHeld_ = false;
    if (answer != Answer::Yes) {
        removeDraft();
        return;
    }
    restoreDraft(std::move(*draft));
}

void frmMMSMain::restoreDraft(Draft draft) {
    QStringList missing = dropMissingMedia(draft);
    clearMessage();
    LoadedMessage loaded;
    loaded.subject = draft.subject;
    for (const SlideContent& s : draft.slides)
        loaded.slides.push_back(LoadedSlide{s.duration, s.picture, s.text, s.sound});
    state_.currentFile = draft.currentFile;
    loadMessage(loaded);
    if (draft.current > 1 && draft.current <= stripCount()) {
        selectSlide(draft.current);
        lstSlide_ItemClick();
    }
    undoStack_->clear();
    // The restored message was never saved in this form.
    setModified(true);
    updateCaption();
    scheduleDraft();
    if (missing.isEmpty()) return;
    for (QString& path : missing)
        path = QDir::toNativeSeparators(path);
    const QString text = loc_.getMCrErrStr(desktoptext::kErrDraftFilesMissing)
                             .replace(QStringLiteral("%1"), missing.join(QLatin1Char('\n')));
    platform_.dialogs.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
}

} // namespace mms
