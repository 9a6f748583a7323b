// The slide panel: the commit rule, the duration and text boxes, the counters, reset and enable.
// Every edit is written into the selected slide's node at once; there is no apply step.

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "composer/composertext.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/frmmmsmain.h"
#include "composer/widgets/sizegauge.h"
#include "sound/widgets/soundpanel.h"

#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QUndoStack>
#include <exception>

namespace mms {

namespace {
const QString kSlideDur = QStringLiteral("slideDur");
const QString kImgPath = QStringLiteral("imgPath");
const QString kText = QStringLiteral("text");
const QString kSoundPath = QStringLiteral("soundPath");
} // namespace

frmMMSMain::CounterBatch::~CounterBatch() {
    if (--w_.counterBatchDepth_ == 0 && w_.countersDirty_) w_.recountNow();
}

void frmMMSMain::refreshCounters() {
    if (counterBatchDepth_ > 0) {
        countersDirty_ = true;
        return;
    }
    recountNow();
}

void frmMMSMain::recountNow() {
    countersDirty_ = false;
    const QString total = loc_.getMCrInterfaceStr(26) + QStringLiteral(" : ");
    if (slides_.IsEmpty()) {
        lblSlide->setText(total + QLatin1Char('0'));
        lblSize->setText(total + QStringLiteral("0 byte"));
        sizeGauge->setSize(0);
        return;
    }
    try {
        // Running figures: a keystroke neither walks the list nor measures a file (see
        // frmmmsmain_size.cpp for when files are measured).
        const qint64 count = slides_.runningSlideCount();
        const qint32 size = slides_.runningTotalSize(QString(), QString(), state_.txtsubject);
        lblSlide->setText(total + QString::number(count));
        lblSize->setText(total + QString::number(size) + QStringLiteral("bytes"));
        sizeGauge->setSize(size);
    } catch (const std::exception&) {
        // Beyond the counters' range: they keep their last values.
    }
}

void frmMMSMain::updateCurrentSlide(const QString& field, const QString& value) {
    const qint16 cur = selectedSlide();
    const std::optional<SlideState> before = recording() ? slideState(cur) : std::nullopt;
    commitField(field, value);
    if (before) recordChange(cur, before->content, before->thumbnail, field, value);
}

void frmMMSMain::commitField(const QString& field, const QString& value) {
    try {
        const qint16 cur = selectedSlide();
        currentSlide_ = cur;
        const NodePtr node = slides_.nodeAt(cur);
        if (!node) return;
        if (field == kSlideDur) {
            const QString d = mms::removeTxtOccurrence(txtSlideDur->text(), QStringLiteral("s"));
            if (isDurationNumeric(d)) {
                const std::optional<qint16> seconds = durationSeconds(d);
                if (!seconds) return; // does not fit: the node keeps its duration
                node->DataSlideDur = SlideDur::fromNumber(*seconds);
            }
            stripModel_->setDuration(cur, node->DataSlideDur);
        } else if (field == kImgPath) {
            if (value != node->DataImgPath) {
                slides_.setImgPath(*node, value);
                if (value.isEmpty()) {
                    stripModel_->setThumbnail(cur, blankThumbnail());
                } else if (!isVideoClipPath(value)) {
                    const QImage picture = loadPicture(value);
                    if (picture.isNull()) return;
                    stripModel_->setThumbnail(cur, fittedThumbnail(picture));
                }
            }
        } else if (field == kText) {
            slides_.setText(*node, txtText->toPlainText());
        } else if (field == kSoundPath) {
            slides_.setSoundPath(*node, value);
        }
        refreshCounters();
        setModified(true);
    } catch (const std::exception&) {
        // A commit that fails ends quietly; what was stored stays.
    }
}

void frmMMSMain::txtSlideDur_GotFocus() {
    durTextAtFocus_ = txtSlideDur->text();
}

bool frmMMSMain::txtSlideDur_KeyPress(int key, const QString& text) {
    if (key == Qt::Key_Backspace) return false;
    // Keys without text (arrows, Delete) and control characters (shortcuts) pass.
    if (text.isEmpty() || !text.at(0).isPrint()) return true;
    for (QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) return false;
    }
    return true;
}

void frmMMSMain::txtSlideDur_Change() {
    if (!txtSlideDur->isEnabled()) return;
    const QString t = txtSlideDur->text();
    const QString d = t.contains(QLatin1Char('s')) ? t.chopped(1) : t;
    if (!isDurationNumeric(d)) {
        platform_.dialogs.show(
            Message{loc_.getMCrInterfaceStr(9), applicationTitle(), Buttons::Ok, Icon::Warning});
        QString restore = durTextAtFocus_;
        // The text at focus is put back; should it be no duration either, the slide's own is.
        const QString r = restore.contains(QLatin1Char('s')) ? restore.chopped(1) : restore;
        if (!isDurationNumeric(r) || restore == t) {
            const NodePtr node = slides_.nodeAt(selectedSlide());
            restore = node ? node->DataSlideDur.toString() + QLatin1Char('s') : QString();
            if (restore == t) return;
        }
        setDurationText(restore);
        return;
    }
    updateCurrentSlide(kSlideDur, QString());
    if (!txtSlideDur->text().contains(QLatin1Char('s'))) {
        const qsizetype cursor = txtSlideDur->cursorPosition();
        setDurationText(txtSlideDur->text() + QLatin1Char('s'));
        // Typing goes on in front of the unit, so the next digit still makes a number.
        txtSlideDur->setCursorPosition(
            static_cast<int>(std::min<qsizetype>(cursor, txtSlideDur->text().size() - 1)));
    }
}

void frmMMSMain::setDurationText(const QString& text) {
    txtSlideDur->setText(text);
}

QString frmMMSMain::textHint() const {
    return loc_.getMCrInterfaceStr(36);
}

void frmMMSMain::setTextBox(const QString& text) {
    if (txtText->toPlainText() == text) return;
    txtText->setPlainText(text);
}

void frmMMSMain::styleTextHint() {
    const bool hint = txtText->toPlainText() == textHint();
    if (hint == textHintStyled_) return;
    textHintStyled_ = hint;
    QPalette palette = txtText->palette();
    palette.setColor(QPalette::Text,
                     hint ? palette.color(QPalette::PlaceholderText) : QPalette().color(QPalette::Text));
    txtText->setPalette(palette);
}

void frmMMSMain::txtText_Change() {
    styleTextHint();
    const QString t = txtText->toPlainText();
    if (t == textHint()) return;
    const bool macro = slides_.IsEmpty() && recording();
    if (slides_.IsEmpty()) {
        // The first keystroke on an empty message makes a slide for it; showing that slide empties
        // the box, so the typed text is put back before it is committed. Both are one step.
        if (macro)
            undoStack_->beginMacro(
                loc_.getMCrInterfaceStr(t.isEmpty() ? desktoptext::kStepAddSlide : desktoptext::kStepText));
        addCmd_Click();
        const QSignalBlocker quiet(txtText);
        txtText->setPlainText(t);
        txtText->moveCursor(QTextCursor::End);
        styleTextHint();
    }
    updateCurrentSlide(kText, QString());
    setModified(true);
    if (macro) undoStack_->endMacro();
}

void frmMMSMain::txtText_Click() {
    if (txtText->toPlainText() == textHint()) txtText->clear();
}

void frmMMSMain::showPicture(const QString& path, bool* failed) {
    *failed = false;
    if (path.isEmpty()) {
        picPanel->clear();
        return;
    }
    if (isVideoClipPath(path)) {
        // A clip is no picture: the panel shows that the slide carries one.
        picPanel->setPixmap(QIcon(QStringLiteral(":/icons/video.svg")).pixmap(48, 48));
        return;
    }
    const QImage picture = loadPicture(path);
    if (picture.isNull()) {
        picPanel->setPixmap(QIcon(QStringLiteral(":/icons/broken-picture.svg")).pixmap(48, 48));
        *failed = true;
        return;
    }
    picPanel->setPixmap(QPixmap::fromImage(fitToPhoneScreen(picture)));
}

void frmMMSMain::refreshSlidePanel() {
    for (QWidget* w : std::initializer_list<QWidget*>{txtSlideDur, frameSlide, removeCmd, createCmd})
        w->setEnabled(false);
    for (QAction* a : {rm_slide, mnu_upload, mnu_exportMms})
        a->setEnabled(false);

    stopSoundPreview();
    soundPlayCmd->setEnabled(false);
    soundPanel->disableFileCommands();

    setDurationText(QString());
    setTextBox(textHint());
    frameSlide->setTitle(loc_.getMCrInterfaceStr(9) + QLatin1Char(' '));
    lblSoundName->clear();
    picPanel->clear();
    updateMediaActions();
    const QString total = loc_.getMCrInterfaceStr(26) + QStringLiteral(" : ");
    lblSlide->setText(total + QLatin1Char('0'));
    lblSize->setText(total + QStringLiteral("0 byte"));
    sizeGauge->setSize(0);
    if (auto* stack = qobject_cast<QStackedWidget*>(frameSlide->parentWidget())) stack->setCurrentIndex(0);
}

void frmMMSMain::enableSlideCmds() {
    txtSlideDur->setEnabled(true);
    txtText->setEnabled(true);
    frameSlide->setEnabled(true);
    if (auto* stack = qobject_cast<QStackedWidget*>(frameSlide->parentWidget()))
        stack->setCurrentWidget(frameSlide);

    stopSoundPreview();
    soundPlayCmd->setEnabled(false);

    for (QWidget* w : std::initializer_list<QWidget*>{removeCmd, createCmd})
        w->setEnabled(true);
    for (QAction* a : {rm_slide, mnu_upload, mnu_exportMms})
        a->setEnabled(true);
}

void frmMMSMain::attachToCurrentSlide(const QString& field, const QString& path) {
    // A slide made for the attachment goes with it in one step.
    const bool macro = IsEmpty() && recording();
    if (macro) undoStack_->beginMacro(stepName(field, path));
    if (IsEmpty()) addCmd_Click();
    const qint16 current = selectedSlide();
    updateCurrentSlide(field, path);
    if (macro) undoStack_->endMacro();
    selectSlide(current);
    lstSlide_ItemClick();
    setModified(true);
    // A new sound ends the preview of the old one for good.
    if (field == QLatin1String("soundPath")) {
        platform_.device.stop();
        platform_.device.close();
    }
}

} // namespace mms
