// The history of the message's changes (Edit menu). Each strip command and each commit of the
// slide panel records one step once it has changed the message; undo and redo replay the steps
// through the list's own operations and bring strip, thumbnails and panel in step as the commands
// do. New, Open and a restored draft start a fresh history.

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/mnemonics.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/frmmmsmain.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QUndoStack>

namespace mms {

namespace {

// The text boxes keep their own undo for typing; the Edit menu's keys must reach the message's
// history instead, so the boxes are not offered them first.
class HistoryKeysFilter final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const QKeySequence typed(key->keyCombination());
        return key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo) ||
               typed == QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z) ||
               typed == QKeySequence(Qt::CTRL | Qt::Key_Y);
    }
};

} // namespace

void frmMMSMain::routeHistoryKeys() {
    auto* filter = new HistoryKeysFilter(this);
    txtText->installEventFilter(filter);
    txtSlideDur->installEventFilter(filter);
}

void frmMMSMain::buildEditMenu() {
    edit = menuBar()->addMenu(QString());
    edit->setObjectName(QStringLiteral("edit"));
    mnu_undo = edit->addAction(QIcon(QStringLiteral(":/icons/undo.svg")), QString());
    mnu_undo->setObjectName(QStringLiteral("mnu_undo"));
    mnu_undo->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    mnu_redo = edit->addAction(QIcon(QStringLiteral(":/icons/redo.svg")), QString());
    mnu_redo->setObjectName(QStringLiteral("mnu_redo"));
    mnu_redo->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    connect(mnu_undo, &QAction::triggered, this, [this] { mnu_undo_Click(); });
    connect(mnu_redo, &QAction::triggered, this, [this] { mnu_redo_Click(); });
    connect(undoStack_, &QUndoStack::indexChanged, this, [this] { updateHistoryCaptions(); });
    connect(undoStack_, &QUndoStack::cleanChanged, this, [this] { updateHistoryCaptions(); });
}

void frmMMSMain::updateHistoryCaptions() {
    if (!mnu_undo || loc_.texts().interface.isEmpty()) return;
    const auto caption = [this](int plain, int named, const QString& step) {
        return step.isEmpty() ? loc_.getMCrInterfaceStr(plain)
                              : loc_.getMCrInterfaceStr(named).replace(QStringLiteral("%1"), step);
    };
    QString undo = caption(desktoptext::kUndo, desktoptext::kUndoNamed, undoStack_->undoText());
    QString redo = caption(desktoptext::kRedo, desktoptext::kRedoNamed, undoStack_->redoText());
    // The undo key lies beside Z; redo is the second item.
    const QStringList marked = withMnemonics({undo, redo}, QStringLiteral("UR"));
    mnu_undo->setText(marked.at(0));
    mnu_redo->setText(marked.at(1));
    mnu_undo->setEnabled(undoStack_->canUndo());
    mnu_redo->setEnabled(undoStack_->canRedo());
}

void frmMMSMain::mnu_undo_Click() {
    if (!undoStack_->canUndo()) return;
    {
        const QScopedValueRollback replaying(replayingHistory_, true);
        undoStack_->undo();
    }
    afterReplay();
}

void frmMMSMain::mnu_redo_Click() {
    if (!undoStack_->canRedo()) return;
    {
        const QScopedValueRollback replaying(replayingHistory_, true);
        undoStack_->redo();
    }
    afterReplay();
}

void frmMMSMain::afterReplay() {
    // Typing goes on where the step left the text box, not in front of its hint.
    if (txtText->hasFocus() && !IsEmpty()) txtText_Click();
    scheduleDraft();
}

void frmMMSMain::record(QUndoCommand* step) {
    std::unique_ptr<QUndoCommand> owned(step);
    if (!recording()) return;
    undoStack_->push(owned.release());
    scheduleDraft();
}

std::optional<SlideState> frmMMSMain::slideState(qint16 position) const {
    std::optional<SlideContent> content = contentAt(slides_, position);
    if (!content) return std::nullopt;
    return SlideState{std::move(*content), stripModel_->thumbnail(position)};
}

void frmMMSMain::recordInsert(qint16 position) {
    if (std::optional<SlideState> added = slideState(position))
        record(new InsertSlideStep(*this, loc_.getMCrInterfaceStr(desktoptext::kStepAddSlide), position,
                                   *added));
}

void frmMMSMain::recordChange(qint16 position, const SlideContent& before, const QImage& thumbnailBefore,
                              const QString& field, const QString& value) {
    const std::optional<SlideState> after = slideState(position);
    if (!after || after->content == before) return;
    using Burst = ChangeSlideStep::Burst;
    const Burst burst = field == QLatin1String("text")       ? Burst::Text
                        : field == QLatin1String("slideDur") ? Burst::Duration
                                                             : Burst::None;
    record(new ChangeSlideStep(*this, stepName(field, value), position, SlideState{before, thumbnailBefore},
                               *after, burst, platform_.clock.now()));
}

QString frmMMSMain::stepName(const QString& field, const QString& value) const {
    int name = desktoptext::kStepText;
    if (field == QLatin1String("slideDur")) {
        name = desktoptext::kStepDuration;
    } else if (field == QLatin1String("imgPath")) {
        name = value.isEmpty() ? desktoptext::kRemovePicture : desktoptext::kStepAttachPicture;
    } else if (field == QLatin1String("soundPath")) {
        // A tune from the crop window lies in the scratch folder of cropped tunes.
        const bool cropped =
            !value.isEmpty() &&
            QFileInfo(value).absolutePath() == QDir(workspace::tmpMid(options_.appFolder)).absolutePath();
        name = value.isEmpty() ? desktoptext::kRemoveSound
               : cropped       ? desktoptext::kStepAttachCrop
                               : desktoptext::kStepAttachSound;
    }
    return loc_.getMCrInterfaceStr(name);
}

QImage frmMMSMain::thumbnailFor(const QString& picture) const {
    const QImage image = picture.isEmpty() || isVideoClipPath(picture) ? QImage() : loadPicture(picture);
    return image.isNull() ? blankThumbnail() : fittedThumbnail(image);
}

void frmMMSMain::insertSlide(qint16 position, const SlideState& state) {
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    enableSlideCmds();
    insertSlideAt(slides_, position, state.content);
    stripModel_->insertSlide(position, state.thumbnail, state.content.duration);
    stripModel_->refreshLabels(slides_);
    finishStripCommand(position);
    updateAddCmds();
}

void frmMMSMain::removeSlide(qint16 position) {
    (void)removeFromStrip(position);
}

void frmMMSMain::moveSlide(qint16 from, qint16 to) {
    CounterBatch batch(*this);
    const QScopedValueRollback quiet(stripFromCode_, true);
    if (!moveSlideTo(slides_, from, to, static_cast<qint16>(stripCount()))) return;
    stripModel_->moveSlide(from, to);
    stripModel_->refreshLabels(slides_);
    finishStripCommand(to);
}

void frmMMSMain::setSlideContent(qint16 position, const SlideState& state) {
    const NodePtr node = slides_.nodeAt(position);
    if (!node) return;
    CounterBatch batch(*this);
    writeContent(slides_, *node, state.content);
    stripModel_->setThumbnail(position, state.thumbnail);
    stripModel_->setDuration(position, state.content.duration);
    refreshCounters();
    finishStripCommand(position);
}

} // namespace mms
