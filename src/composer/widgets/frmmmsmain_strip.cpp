// The slide strip: add, remove, the four moves, the selection handler and the move rule.
// Each command changes the list and the strip model in the same step and then shows the selected
// slide; the list is changed first, and the strip only when the list accepted the change, so a
// refusal never leaves the two out of step.

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "composer/composertext.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/frmmmsmain.h"

#include <QAction>
#include <QGroupBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QToolButton>
#include <exception>
#include <stdexcept>

namespace mms {

namespace {
const SlideDur kNewSlideDuration = SlideDur::fromText(QStringLiteral("3"));
const QString kLeft = QStringLiteral("LEFT");
const QString kRight = QStringLiteral("RIGHT");
} // namespace

int frmMMSMain::stripCount() const {
    return stripModel_->count();
}

qint16 frmMMSMain::selectedSlide() const {
    const QModelIndex current = lstSlide->currentIndex();
    return current.isValid() ? static_cast<qint16>(current.row() + 1) : qint16(0);
}

void frmMMSMain::selectSlide(qint16 position) {
    if (position < 1 || position > stripCount()) return;
    const QModelIndex index = stripModel_->index(position - 1);
    const QScopedValueRollback quiet(stripFromCode_, true);
    lstSlide->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    lstSlide->scrollTo(index);
}

void frmMMSMain::onStripCurrentChanged() {
    // Commands change the strip (which moves its current item along) and select from code, then
    // show the slide themselves; only the user's own choice is handled here.
    if (stripFromCode_ || !lstSlide->currentIndex().isValid()) return;
    lstSlide_ItemClick();
}

void frmMMSMain::finishStripCommand(qint16 select) {
    selectSlide(select);
    lstSlide_ItemClick();
    setModified(true);
}

void frmMMSMain::addCmd_Click() {
    if (stripCount() >= CSlide::kMaxSlides) return;
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    enableSlideCmds();
    const int count = stripCount();
    const qint16 cur = selectedSlide();
    if (count == 0 || cur < 1 || cur == count) {
        slides_.InsertAtBack(kNewSlideDuration, QString(), QString(), QString());
        stripModel_->appendSlide(blankThumbnail(), kNewSlideDuration);
        finishStripCommand(static_cast<qint16>(stripCount()));
    } else {
        slides_.InsertIntoList(cur, kNewSlideDuration, QString(), QString(), QString());
        stripModel_->insertSlide(cur + 1, blankThumbnail(), kNewSlideDuration);
        stripModel_->refreshLabels(slides_);
        finishStripCommand(static_cast<qint16>(cur + 1));
    }
    updateAddCmds();
    recordInsert(selectedSlide());
}

void frmMMSMain::updateAddCmds() {
    // At the limit the add commands rest.
    const bool canAdd = stripCount() < CSlide::kMaxSlides;
    addCmd->setEnabled(canAdd);
    add_slide->setEnabled(canAdd);
}

void frmMMSMain::removeCmd_Click() {
    const qint16 cur = selectedSlide();
    if (cur < 1) return;
    const std::optional<SlideState> removed = slideState(cur);
    if (removed && removeFromStrip(cur))
        record(new RemoveSlideStep(*this, loc_.getMCrInterfaceStr(desktoptext::kStepRemoveSlide), cur,
                                   *removed));
}

// Removes slide `cur` from the list and the strip and shows its neighbour; false when the list
// refused (error 5).
bool frmMMSMain::removeFromStrip(qint16 cur) {
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    if (!slides_.RemoveFromList(cur)) {
        platform_.dialogs.inform(loc_.getMCrErrStr(5));
        return false;
    }
    stripModel_->removeSlide(cur);
    addCmd->setEnabled(true);
    add_slide->setEnabled(true);
    const int remaining = stripCount();
    if (remaining > 0) {
        stripModel_->refreshLabels(slides_);
        selectSlide(static_cast<qint16>(cur > remaining ? remaining : cur));
    }
    lstSlide_ItemClick();
    setModified(true);
    return true;
}

void frmMMSMain::ffCmd_Click() {
    const qint16 cur = selectedSlide();
    const int count = stripCount();
    if (!moveCommandsFor(cur, count).towardsFront) return;
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    slides_.SwapAtFront(cur, static_cast<qint16>(count));
    stripModel_->moveSlide(cur, 1);
    stripModel_->refreshLabels(slides_);
    finishStripCommand(1);
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(desktoptext::kStepToFront), cur, 1));
}

void frmMMSMain::fCmd_Click() {
    moveOnePlace(true);
}

void frmMMSMain::rCmd_Click() {
    moveOnePlace(false);
}

// Forward and backward: the selected slide changes places with its neighbour. A refused swap shows
// error 4 (forward) or 3 (backward); the strip changes only when the list did.
void frmMMSMain::moveOnePlace(bool towardsFront) {
    const qint16 cur = selectedSlide();
    const MoveCommands allowed = moveCommandsFor(cur, stripCount());
    if (!(towardsFront ? allowed.towardsFront : allowed.towardsBack)) return;
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    const SwapResult result = slides_.SwapTwoNodes(cur, towardsFront ? kLeft : kRight);
    if (result == SwapResult::Refused) platform_.dialogs.inform(loc_.getMCrErrStr(towardsFront ? 4 : 3));
    if (result != SwapResult::Swapped) return;
    const qint16 target = static_cast<qint16>(towardsFront ? cur - 1 : cur + 1);
    stripModel_->moveSlide(cur, target);
    stripModel_->refreshLabels(slides_);
    finishStripCommand(target);
    const int name = towardsFront ? desktoptext::kStepForward : desktoptext::kStepBackward;
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(name), cur, target));
}

void frmMMSMain::rrCmd_Click() {
    const qint16 cur = selectedSlide();
    const int count = stripCount();
    if (!moveCommandsFor(cur, count).towardsBack) return;
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    slides_.SwapAtBack(cur);
    stripModel_->moveSlide(cur, count);
    stripModel_->refreshLabels(slides_);
    finishStripCommand(static_cast<qint16>(count));
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(desktoptext::kStepToBack), cur,
                             static_cast<qint16>(count)));
}

void frmMMSMain::lstSlide_ItemClick() {
    CounterBatch batch(*this);
    const QScopedValueRollback showing(showingSlide_, true);
    if (slides_.IsEmpty()) {
        lstSlide->setIconSize(kStripThumbnailSize);
        refreshSlidePanel();
        return;
    }
    const qint16 cur = selectedSlide();
    if (cur < 1) return;
    // Showing a slide is no edit: filling the boxes below commits what they show, and the flag
    // goes back to what it was so that earlier changes are still asked about when closing.
    const bool wasModified = state_.isModified;
    currentSlide_ = cur;
    updateMoveCmds(cur);

    bool pictureFailed = false;
    try {
        const NodePtr node = slides_.nodeAt(cur);
        if (!node) throw std::runtime_error("no node for the selected item");
        // Its files may have changed since they were measured; the counters below show them anew.
        slides_.remeasure(*node);
        setDurationText(node->DataSlideDur.toString());
        showPicture(node->DataImgPath, &pictureFailed);
        setTextBox(node->DataText);

        soundPlayCmd->setEnabled(true);
        stopSoundPreview();
        lblSoundName->setText(soundLabelText(node->DataSoundPath, cur, state_.currentFile));
        if (node->DataSoundPath.isEmpty()) soundPlayCmd->setEnabled(false);
        updateMediaActions();

        frameSlide->setTitle(loc_.getMCrInterfaceStr(9) + QLatin1Char(' ') + QString::number(cur));
        refreshCounters();
        setModified(wasModified);
        if (txtText->toPlainText().isEmpty()) setTextBox(textHint());
    } catch (const std::exception&) {
        platform_.dialogs.inform(loc_.getMCrErrStr(6));
        return;
    }
    // The rest of the slide is shown; the missing picture is reported once it is.
    if (pictureFailed) platform_.dialogs.inform(loc_.getMCrErrStr(6));
}

void frmMMSMain::updateMoveCmds(qint16 position) {
    const MoveCommands moves = moveCommandsFor(position, stripCount());
    for (QToolButton* button : {ffCmd, fCmd})
        button->setEnabled(moves.towardsFront);
    for (QAction* action : {sendfront, sendfwd})
        action->setEnabled(moves.towardsFront);
    for (QToolButton* button : {rCmd, rrCmd})
        button->setEnabled(moves.towardsBack);
    for (QAction* action : {sendbwd, sendback})
        action->setEnabled(moves.towardsBack);
}

} // namespace mms
