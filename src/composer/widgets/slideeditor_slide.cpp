// The slide panel's behaviour: showing a slide, the commit rule of the duration and text boxes,
// resetting and enabling the panel, and the sound preview of MIDI and AMR sounds.

#include "common/localisation.h"
#include "common/mediakind.h"
#include "composer/composerdocument.h"
#include "composer/composertext.h"
#include "composer/composertexts.h"
#include "composer/slidepicture.h"
#include "composer/widgets/slideeditor.h"
#include "composer/widgets/slideframe.h"
#include "sound/amrdecoder.h"

#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QToolButton>
#include <algorithm>
#include <exception>

namespace mms {

namespace {

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

} // namespace

// --- Showing a slide, resetting and enabling the panel ---

bool SlideEditor::showSlide(qint16 position, bool* pictureFailed) {
    *pictureFailed = false;
    try {
        const CSlideNode* node = document_.message().at(position);
        if (!node) return false;
        // Its files may have changed since they were measured; the counters show them anew.
        document_.message().remeasure(position);
        txtSlideDur->setText(node->DataSlideDur.toString());
        showPicture(node->DataImgPath, pictureFailed);
        // An empty text shows the hint at once rather than after an empty box.
        setTextBox(node->DataText.isEmpty() ? textHint() : node->DataText);

        soundPlayCmd->setEnabled(true);
        stopSoundPreview();
        lblSoundName->setText(soundLabelText(node->DataSoundPath, position, document_.state().currentFile));
        if (node->DataSoundPath.isEmpty()) soundPlayCmd->setEnabled(false);
        frameSlide->setSlideTitle(loc_.getMCrInterfaceStr(composertext::kSlide) + QLatin1Char(' ') +
                                  QString::number(position));
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

void SlideEditor::followMessage() {
    const bool hasSlides = !document_.message().isEmpty();
    txtSlideDur->setEnabled(hasSlides);
    txtText->setEnabled(true);
    frameSlide->setEnabled(hasSlides);
    slideStack->setCurrentIndex(hasSlides ? 1 : 0);
}

void SlideEditor::refreshSlidePanel() {
    followMessage();
    stopSoundPreview();
    soundPlayCmd->setEnabled(false);
    txtSlideDur->setText(QString());
    setTextBox(textHint());
    frameSlide->setSlideTitle(loc_.getMCrInterfaceStr(composertext::kSlide) + QLatin1Char(' '));
    lblSoundName->clear();
    clearPicture();
}

void SlideEditor::enableSlideCmds() {
    followMessage();
    stopSoundPreview();
    soundPlayCmd->setEnabled(false);
}

void SlideEditor::clearPicture() {
    picPanel->clear();
    shownPicture_ = {};
}

void SlideEditor::showPicture(const QString& path, bool* failed) {
    if (path.isEmpty()) {
        clearPicture();
        return;
    }
    const QFileInfo file(path);
    const ShownFile shown{path, file.lastModified(), file.size()};
    if (shown == shownPicture_) return;
    if (const ShownPicture* recent = recentPictures_.object(path); recent && recent->file == shown) {
        picPanel->setPixmap(recent->pixmap);
        shownPicture_ = shown;
        return;
    }
    const QImage picture = loadSlideVisual(path);
    if (picture.isNull() && isVideoClipPath(path)) {
        // A clip whose first picture cannot be read: the panel shows that the slide carries one.
        picPanel->setPixmap(icon("video").pixmap(48, 48));
        shownPicture_ = {};
        return;
    }
    if (picture.isNull()) {
        picPanel->setPixmap(icon("broken-picture").pixmap(48, 48));
        shownPicture_ = {};
        *failed = true;
        return;
    }
    const QPixmap pixmap = QPixmap::fromImage(fitToPhoneScreen(picture));
    picPanel->setPixmap(pixmap);
    shownPicture_ = shown;
    recentPictures_.insert(path, new ShownPicture{shown, pixmap});
}

// --- The commit rule and the boxes ---

void SlideEditor::updateCurrentSlide(const QString& field, const QString& value) {
    const std::optional<SlideField> f = slideFieldNamed(field);
    if (!f) {
        // Nothing to store; the message still counts as edited.
        if (document_.message().at(document_.current())) document_.setModified(true);
        return;
    }
    const QString shown = *f == SlideField::Duration ? txtSlideDur->text()
                          : *f == SlideField::Text   ? txtText->toPlainText()
                                                     : value;
    document_.commit(*f, shown);
}

void SlideEditor::txtSlideDur_GotFocus() {
    durTextAtFocus_ = txtSlideDur->text();
}

bool SlideEditor::txtSlideDur_KeyPress(int key, const QString& text) {
    if (key == Qt::Key_Backspace) return false;
    // Keys without text (arrows, Delete) and control characters (shortcuts) pass.
    if (text.isEmpty() || !text.at(0).isPrint()) return true;
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
}

void SlideEditor::txtSlideDur_Change() {
    if (!txtSlideDur->isEnabled()) return;
    const QString t = txtSlideDur->text();
    const QString d = t.contains(QLatin1Char('s')) ? t.chopped(1) : t;
    if (!isDurationNumeric(d)) {
        platform_.dialogs.show(Message{loc_.getMCrInterfaceStr(composertext::kSlide), applicationTitle(),
                                       Buttons::Ok, Icon::Warning});
        QString restore = durTextAtFocus_;
        // The text at focus is put back; should it be no duration either, the slide's own is.
        const QString r = restore.contains(QLatin1Char('s')) ? restore.chopped(1) : restore;
        if (!isDurationNumeric(r) || restore == t) {
            const CSlideNode* node = document_.message().at(document_.current());
            restore = node ? node->DataSlideDur.toString() + QLatin1Char('s') : QString();
            if (restore == t) return;
        }
        txtSlideDur->setText(restore);
        return;
    }
    updateCurrentSlide(QStringLiteral("slideDur"), QString());
    if (!txtSlideDur->text().contains(QLatin1Char('s'))) {
        const qsizetype cursor = txtSlideDur->cursorPosition();
        txtSlideDur->setText(txtSlideDur->text() + QLatin1Char('s'));
        // Typing goes on in front of the unit, so the next digit still makes a number.
        txtSlideDur->setCursorPosition(
            static_cast<int>(std::min<qsizetype>(cursor, txtSlideDur->text().size() - 1)));
    }
}

QString SlideEditor::textHint() const {
    return loc_.getMCrInterfaceStr(composertext::kTextHint);
}

void SlideEditor::setTextBox(const QString& text) {
    if (txtText->toPlainText() == text) return;
    txtText->setPlainText(text);
}

void SlideEditor::styleTextHint() {
    const bool hint = txtText->toPlainText() == textHint();
    if (hint == textHintStyled_) return;
    textHintStyled_ = hint;
    QPalette palette = txtText->palette();
    palette.setColor(QPalette::Text,
                     hint ? palette.color(QPalette::PlaceholderText) : QPalette().color(QPalette::Text));
    txtText->setPalette(palette);
}

void SlideEditor::txtText_Change() {
    styleTextHint();
    const QString t = txtText->toPlainText();
    if (t == textHint()) return;
    const bool first = document_.message().isEmpty();
    // The first keystroke on an empty message makes a slide for it; showing that slide empties the
    // box, so the typed text is put back before it is committed. Both are one step.
    const bool step = first && document_.beginFirstSlideStep(loc_.getMCrInterfaceStr(
                                   t.isEmpty() ? composertext::kStepAddSlide : composertext::kStepText));
    if (first) {
        document_.addSlide();
        const QSignalBlocker quiet(txtText);
        txtText->setPlainText(t);
        txtText->moveCursor(QTextCursor::End);
        styleTextHint();
    }
    updateCurrentSlide(QStringLiteral("text"), QString());
    document_.setModified(true);
    if (step) document_.endStep();
}

void SlideEditor::txtText_Click() {
    if (txtText->toPlainText() == textHint()) txtText->clear();
}

void SlideEditor::afterReplay() {
    if (txtText->hasFocus() && !document_.message().isEmpty()) txtText_Click();
}

// --- The sound preview of MIDI and AMR sounds: playing means the device has the sound open and
// playing and the button shows "stop".

void SlideEditor::soundPlayCmd_Click() {
    const CSlideNode* node = document_.message().at(document_.current());
    // Besides MIDI tunes, AMR sounds that decode are played; anything else is refused before the
    // device hears of it.
    if (!isPlaying_ && mediaKindOf(lblSoundName->text()) != MediaKind::Midi) {
        std::vector<qint16> samples;
        if (!node || !decodeAmrFile(node->DataSoundPath, samples)) {
            platform_.dialogs.inform(loc_.getMCrErrStr(composertext::kSoundNotPlayable));
            return;
        }
    }
    if (isPlaying_) {
        switchMCICtrl();
        return;
    }
    if (!node) return;
    // The device's answers are not examined: a tune that cannot be opened still shows "stop", and
    // the next click returns to "play".
    platform_.device.open(node->DataSoundPath);
    platform_.device.play();
    switchMCICtrl();
}

void SlideEditor::switchMCICtrl() {
    if (!isPlaying_) {
        soundPlayCmd->setIcon(stopIcon_);
        soundPlayCmd->setToolTip(loc_.getMCrInterfaceStr(composertext::kStopSound));
        isPlaying_ = true;
    } else {
        soundPlayCmd->setIcon(playIcon_);
        platform_.device.stop();
        platform_.device.close();
        soundPlayCmd->setToolTip(loc_.getMCrInterfaceStr(composertext::kPlaySound));
        isPlaying_ = false;
    }
}

void SlideEditor::stopSoundPreview() {
    if (!isPlaying_) return;
    platform_.device.stop();
    platform_.device.close();
    switchMCICtrl();
}

void SlideEditor::closeSoundPreview() {
    platform_.device.stop();
    platform_.device.close();
}

void SlideEditor::installPreviewHook() {
    isPlaying_ = false;
    connect(&platform_.device, &MultimediaDevice::playbackEnded, this, &SlideEditor::onPreviewNotify,
            Qt::UniqueConnection);
}

void SlideEditor::removePreviewHook() {
    disconnect(&platform_.device, &MultimediaDevice::playbackEnded, this, &SlideEditor::onPreviewNotify);
}

void SlideEditor::onPreviewNotify(MultimediaDevice::Notify result) {
    // Only a tune that played to its end flips the button. Aborted and failed playbacks (a stop
    // sends one) change nothing, and neither does a late end report once the preview was stopped.
    if (result == MultimediaDevice::Notify::Successful && isPlaying_) switchMCICtrl();
}

} // namespace mms
