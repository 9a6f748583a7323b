// The document's slide commands and their history. Each command changes the message through the
// list's own operations, asks for the slide it leaves selected to be shown, marks the message
// modified and records one step; undo and redo replay the steps through the same operations.

#include "composer/composerdocument.h"

#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composertext.h"
#include "composer/composertexts.h"
#include "composer/draftstore.h"
#include "composer/sizelimit.h"
#include "composer/slidepicture.h"

#include <QDir>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QTimer>
#include <QUndoStack>

namespace mms {

namespace {
const SlideDur kNewSlideDuration = SlideDur::fromText(QStringLiteral("3"));
} // namespace

ComposerDocument::ComposerDocument(MessageSink& sink, const Clock& clock, const Localisation& loc,
                                   DocumentWindows& windows, Options options, QObject* parent)
    : QObject(parent), sink_(sink), clock_(clock), loc_(loc), windows_(windows), options_(std::move(options)),
      message_(&sink), sizeLimit_(kDefaultSizeLimit), history_(new QUndoStack(this)),
      draftTimer_(new QTimer(this)) {
    draftTimer_->setSingleShot(true);
    draftTimer_->setInterval(options_.draftDelayMs);
    connect(draftTimer_, &QTimer::timeout, this, [this] { writeDraft(); });
    draftWriter_.setMaxThreadCount(1);
}

ComposerDocument::~ComposerDocument() {
    draftWriter_.waitForDone();
    // The history clears itself as it goes, which must not reach views that have gone.
    history_->disconnect();
}

void ComposerDocument::setModified(bool modified) {
    state_.isModified = modified;
    emit titleChanged();
}

void ComposerDocument::finishCommand(qint16 show) {
    emit showSlide(show);
    setModified(true);
}

bool ComposerDocument::addSlide() {
    if (message_.count() >= CSlide::kMaxSlides) return false;
    const qint16 added = message_.addSlide(current_, SlideContent{kNewSlideDuration, {}, {}, {}});
    finishCommand(added);
    // Recorded as shown, which has committed the duration box.
    if (std::optional<SlideState> state = stateAt(added))
        record(
            new InsertSlideStep(*this, loc_.getMCrInterfaceStr(composertext::kStepAddSlide), added, *state));
    return true;
}

bool ComposerDocument::removeSlide() {
    const qint16 cur = current_;
    const std::optional<SlideState> removed = stateAt(cur);
    if (!removed || !removeAt(cur)) return false;
    record(
        new RemoveSlideStep(*this, loc_.getMCrInterfaceStr(composertext::kStepRemoveSlide), cur, *removed));
    return true;
}

bool ComposerDocument::moveToFront() {
    const qint16 cur = current_;
    if (!moveCommandsFor(cur, message_.count()).towardsFront) return false;
    message_.swapAtFront(cur);
    finishCommand(1);
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(composertext::kStepToFront), cur, 1));
    return true;
}

// A refused swap says why (error 4 forward, 3 backward); nothing else changes then.
bool ComposerDocument::moveOnePlace(bool towardsFront) {
    const qint16 cur = current_;
    const MoveCommands allowed = moveCommandsFor(cur, message_.count());
    if (!(towardsFront ? allowed.towardsFront : allowed.towardsBack)) return false;
    const SwapResult result = message_.swapTwoNodes(cur, towardsFront);
    if (result == SwapResult::Refused)
        sink_.inform(loc_.getMCrErrStr(towardsFront ? composertext::kErrCannotMoveEarlier
                                                    : composertext::kErrCannotMoveLater));
    if (result != SwapResult::Swapped) return false;
    const qint16 target = static_cast<qint16>(towardsFront ? cur - 1 : cur + 1);
    finishCommand(target);
    const int name = towardsFront ? composertext::kStepForward : composertext::kStepBackward;
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(name), cur, target));
    return true;
}

bool ComposerDocument::moveToBack() {
    const qint16 cur = current_;
    const auto count = static_cast<qint16>(message_.count());
    if (!moveCommandsFor(cur, count).towardsBack) return false;
    message_.swapAtBack(cur);
    finishCommand(count);
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(composertext::kStepToBack), cur, count));
    return true;
}

bool ComposerDocument::dragSlide(qint16 from, qint16 to) {
    const int count = message_.count();
    if (from < 1 || to < 1 || from > count || to > count || from == to) return false;
    moveSlide(from, to);
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(composertext::kStepMoveSlide), from, to));
    return true;
}

void ComposerDocument::commit(SlideField field, const QString& value) {
    const qint16 cur = current_;
    const std::optional<SlideState> before = recording() ? stateAt(cur) : std::nullopt;
    if (!writeField(cur, field, value)) return;
    if (before) recordChange(cur, *before, field, value);
}

// A commit that cannot be carried out ends quietly: what was stored stays, and the message is not
// marked modified.
bool ComposerDocument::writeField(qint16 position, SlideField field, const QString& value) {
    if (!message_.at(position)) return false;
    if (field == SlideField::Duration) {
        const QString d = removeTxtOccurrence(value, QStringLiteral("s"));
        if (isDurationNumeric(d)) {
            const std::optional<qint16> seconds = durationSeconds(d);
            if (!seconds) return false; // does not fit: the slide keeps its duration
            message_.setDuration(position, SlideDur::fromNumber(*seconds));
        }
    } else {
        message_.setField(position, field, value);
        if (field == SlideField::Picture && !value.isEmpty() && !isVideoClipPath(value) &&
            loadPicture(value).isNull())
            return false;
    }
    setModified(true);
    return true;
}

bool ComposerDocument::beginFirstSlideStep(const QString& name) {
    if (!message_.isEmpty() || !recording()) return false;
    history_->beginMacro(name);
    return true;
}

void ComposerDocument::endStep() {
    history_->endMacro();
}

void ComposerDocument::undo() {
    if (history_->canUndo()) replay(&QUndoStack::undo);
}

void ComposerDocument::redo() {
    if (history_->canRedo()) replay(&QUndoStack::redo);
}

// A step replayed is carried out like a command but records nothing.
void ComposerDocument::replay(void (QUndoStack::*step)()) {
    {
        const QScopedValueRollback replaying(replaying_, true);
        (history_->*step)();
    }
    emit historyReplayed();
    scheduleDraft();
}

void ComposerDocument::record(QUndoCommand* step) {
    std::unique_ptr<QUndoCommand> owned(step);
    if (!recording()) return;
    history_->push(owned.release());
    scheduleDraft();
}

std::optional<SlideState> ComposerDocument::stateAt(qint16 position) const {
    const CSlideNode* node = message_.at(position);
    if (!node) return std::nullopt;
    return SlideState{contentOf(*node), node->id};
}

void ComposerDocument::recordChange(qint16 position, const SlideState& before, SlideField field,
                                    const QString& value) {
    const std::optional<SlideState> after = stateAt(position);
    if (!after || after->content == before.content) return;
    using Burst = ChangeSlideStep::Burst;
    const Burst burst = field == SlideField::Text       ? Burst::Text
                        : field == SlideField::Duration ? Burst::Duration
                                                        : Burst::None;
    record(new ChangeSlideStep(*this, stepName(field, value), position, before, *after, burst, clock_.now()));
}

QString ComposerDocument::stepName(SlideField field, const QString& value) const {
    int name = composertext::kStepText;
    if (field == SlideField::Duration) {
        name = composertext::kStepDuration;
    } else if (field == SlideField::Picture) {
        name = value.isEmpty() ? composertext::kRemovePicture : composertext::kStepAttachPicture;
    } else if (field == SlideField::Sound) {
        // A tune from the crop window lies in the scratch folder of cropped tunes.
        const bool cropped =
            !value.isEmpty() &&
            QFileInfo(value).absolutePath() == QDir(workspace::tmpMid(options_.appFolder)).absolutePath();
        name = value.isEmpty() ? composertext::kRemoveSound
               : cropped       ? composertext::kStepAttachCrop
                               : composertext::kStepAttachSound;
    }
    return loc_.getMCrInterfaceStr(name);
}

void ComposerDocument::insertSlide(qint16 position, const SlideState& state) {
    message_.insertSlide(position, state.content, state.id);
    finishCommand(position);
}

// Removes slide `position` and shows its neighbour; a refusal of the list says so (error 5).
bool ComposerDocument::removeAt(qint16 position) {
    if (!message_.removeSlide(position)) {
        sink_.inform(loc_.getMCrErrStr(composertext::kErrSlideNotRemoved));
        return false;
    }
    finishCommand(static_cast<qint16>(std::min<int>(position, message_.count())));
    return true;
}

void ComposerDocument::removeSlide(qint16 position) {
    (void)removeAt(position);
}

void ComposerDocument::moveSlide(qint16 from, qint16 to) {
    if (!message_.moveSlide(from, to)) return;
    finishCommand(to);
}

void ComposerDocument::setSlideContent(qint16 position, const SlideState& state) {
    if (!message_.at(position)) return;
    message_.setContent(position, state.content);
    finishCommand(position);
}

} // namespace mms
