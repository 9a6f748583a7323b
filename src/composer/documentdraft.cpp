// The draft: while the message has unsaved changes, a copy of it is kept in the workspace, so that
// a crash or a power cut loses at most the last moments of work. It is written a short pause after
// the last change, by a worker thread, through a safe write that never leaves half a file. A save,
// New, Open or a confirmed close removes it; the next start offers to restore one that is left.

#include "common/localisation.h"
#include "composer/composerdocument.h"
#include "composer/composertexts.h"
#include "composer/draftstore.h"
#include "store/messagestore.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>
#include <QUndoStack>

namespace mms {

void ComposerDocument::holdDraft() {
    draftHeld_ = DraftStore(options_.appFolder).exists();
}

void ComposerDocument::scheduleDraft() {
    if (!draftHeld_) draftTimer_->start();
}

Draft ComposerDocument::currentDraft() const {
    Draft draft{state_.currentFile, state_.txtsubject, current_, {}};
    for (const CSlideNode* node = message_.slides().firstItem().get(); node; node = node->NextNode.get())
        draft.slides.append(contentOf(*node));
    return draft;
}

void ComposerDocument::writeDraft() {
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

void ComposerDocument::onDraftWritten(const Status& status) {
    if (status) {
        draftWarned_ = false;
        return;
    }
    // Said once, not at every pause, until a draft can be written again.
    if (draftWarned_) return;
    draftWarned_ = true;
    showWarning(
        loc_.getMCrErrStr(composertext::kErrDraftNotWritten).replace(QStringLiteral("%1"), status.message()));
}

void ComposerDocument::removeDraft() {
    draftTimer_->stop();
    if (draftHeld_) return;
    const QString folder = options_.appFolder;
    // Queued behind any write still under way, so that no late write brings the draft back.
    draftWriter_.start([folder] { (void)DraftStore(folder).remove(); });
}

void ComposerDocument::flushDraft() {
    if (draftTimer_->isActive()) writeDraft();
    draftWriter_.waitForDone();
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void ComposerDocument::offerDraftRestore() {
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
        const QString aside = drafts.setAside(clock_.now(), moved);
        draftHeld_ = !moved;
        const QString where = QDir::toNativeSeparators(moved ? aside : drafts.path());
        showWarning(loc_.getMCrErrStr(composertext::kErrDraftDamaged)
                        .replace(QStringLiteral("%1"), where + QStringLiteral("\n(") + problem + u')'));
        return;
    }
    const Answer answer = sink_.show(Message{loc_.getMCrPromptStr(composertext::kPromptRestoreDraft),
                                             loc_.getMCrInterfaceStr(composertext::kAppTitle), Buttons::YesNo,
                                             Icon::Question, Answer::Yes});
    draftHeld_ = false;
    if (answer != Answer::Yes) {
        removeDraft();
        return;
    }
    restoreDraft(std::move(*draft));
}

void ComposerDocument::restoreDraft(Draft draft) {
    QStringList missing = dropMissingMedia(draft);
    clear();
    LoadedMessage loaded;
    loaded.subject = draft.subject;
    for (const SlideContent& s : draft.slides)
        loaded.slides.push_back(LoadedSlide{s.duration, s.picture, s.text, s.sound});
    state_.currentFile = draft.currentFile;
    load(loaded, draft.current);
    history_->clear();
    // The restored message was never saved in this form.
    setModified(true);
    scheduleDraft();
    if (missing.isEmpty()) return;
    for (QString& path : missing)
        path = QDir::toNativeSeparators(path);
    showWarning(loc_.getMCrErrStr(composertext::kErrDraftFilesMissing)
                    .replace(QStringLiteral("%1"), missing.join(QLatin1Char('\n'))));
}

} // namespace mms
