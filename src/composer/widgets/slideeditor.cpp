#include "composer/widgets/slideeditor.h"

#include "common/localisation.h"
#include "common/mediakind.h"
#include "composer/composerdocument.h"
#include "composer/composertext.h"
#include "composer/composertexts.h"
#include "composer/slidepicture.h"
#include "composer/widgets/slidestripview.h"
#include "sound/amrdecoder.h"

#include <QAction>
#include <QDropEvent>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <exception>

namespace mms {

namespace {

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

// Takes drags of local files for a widget and its children; anything else (text dragged into a text
// box) is left to the widget.
class FileDropFilter final : public QObject {
public:
    FileDropFilter(SlideEditor* editor) : QObject(editor), editor_(editor) {}

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        const QEvent::Type type = event->type();
        if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
        auto* drag = static_cast<QDropEvent*>(event);
        const QStringList files = localFiles(drag->mimeData());
        if (files.isEmpty()) return false;
        // Copied from where they are: a file manager must never take the file away.
        drag->setDropAction(Qt::CopyAction);
        drag->accept();
        if (type == QEvent::Drop) emit editor_->filesDropped(files);
        return true;
    }

private:
    SlideEditor* editor_;
};

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

SlideEditor::SlideEditor(ComposerDocument& document, const Localisation& loc, Platform& platform,
                         QWidget* parent)
    : QWidget(parent), document_(document), loc_(loc), platform_(platform), playIcon_(icon("play")),
      stopIcon_(icon("stop")) {
    setObjectName(QStringLiteral("slideColumn"));
    slideStack = new QStackedWidget(this);
    slideStack->setObjectName(QStringLiteral("slideStack"));
    slideStack->addWidget(buildEmptyPage());
    slideStack->addWidget(buildSlidePanel());

    createCmd = new QPushButton(this);
    createCmd->setObjectName(QStringLiteral("createCmd"));
    createCmd->setIcon(icon("export"));
    createCmd->setAutoDefault(false);
    auto* exportRow = new QHBoxLayout;
    exportRow->addStretch(1);
    exportRow->addWidget(createCmd);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 8, 4, 8);
    layout->addWidget(slideStack, 1);
    layout->addLayout(exportRow);

    // Files dropped anywhere on the panel go onto the slide; the text boxes keep dropped text.
    setAcceptDrops(true);
    auto* drops = new FileDropFilter(this);
    for (QObject* target : {static_cast<QObject*>(this), static_cast<QObject*>(txtText->viewport()),
                            static_cast<QObject*>(txtSlideDur)})
        target->installEventFilter(drops);
    auto* historyKeys = new HistoryKeysFilter(this);
    txtText->installEventFilter(historyKeys);
    txtSlideDur->installEventFilter(historyKeys);
}

SlideEditor::~SlideEditor() {
    removePreviewHook();
}

QWidget* SlideEditor::buildEmptyPage() {
    auto* page = new QWidget(slideStack);
    addBigCmd = new QPushButton(page);
    addBigCmd->setObjectName(QStringLiteral("addBigCmd"));
    addBigCmd->setIcon(icon("add"));
    addBigCmd->setIconSize(QSize(24, 24));
    addBigCmd->setMinimumHeight(44);
    auto* picture = new QLabel(page);
    picture->setPixmap(icon("app").pixmap(96, 96));
    auto* layout = new QVBoxLayout(page);
    layout->setSpacing(16);
    layout->addStretch(1);
    layout->addWidget(picture, 0, Qt::AlignHCenter);
    layout->addWidget(addBigCmd, 0, Qt::AlignHCenter);
    layout->addStretch(2);
    return page;
}

QWidget* SlideEditor::buildSlidePanel() {
    frameSlide = new QGroupBox(slideStack);
    frameSlide->setObjectName(QStringLiteral("frameSlide"));

    auto* clock = new QLabel(frameSlide);
    clock->setPixmap(icon("clock").pixmap(18, 18));
    txtSlideDur = new QLineEdit(frameSlide);
    txtSlideDur->setObjectName(QStringLiteral("txtSlideDur"));
    txtSlideDur->setMaximumWidth(90);
    txtSlideDur->installEventFilter(this);
    connect(txtSlideDur, &QLineEdit::textChanged, this, [this] { txtSlideDur_Change(); });
    auto* durationRow = new QHBoxLayout;
    durationRow->addWidget(clock);
    durationRow->addWidget(txtSlideDur);
    durationRow->addStretch(1);

    txtText = new QPlainTextEdit(frameSlide);
    txtText->setObjectName(QStringLiteral("txtText"));
    txtText->setTabChangesFocus(true);
    txtText->setMaximumHeight(90);
    txtText->installEventFilter(this);
    txtText->viewport()->installEventFilter(this);
    connect(txtText, &QPlainTextEdit::textChanged, this, [this] { txtText_Change(); });

    auto* layout = new QVBoxLayout(frameSlide);
    layout->setSpacing(10);
    layout->addLayout(durationRow);
    layout->addWidget(buildPhoneScreen(frameSlide), 0, Qt::AlignHCenter);
    layout->addWidget(txtText);
    layout->addLayout(buildSoundRow(frameSlide));
    layout->addStretch(1);
    return frameSlide;
}

// The picture as the phone shows it, in the image region of its screen.
QWidget* SlideEditor::buildPhoneScreen(QWidget* frame) {
    auto* phone = new QFrame(frame);
    phoneScreen = phone;
    phone->setObjectName(QStringLiteral("phoneScreen"));
    phone->setStyleSheet(QStringLiteral("#phoneScreen { background: #202124; border-radius: 14px; }"
                                        "#phoneScreen:focus { border: 2px solid #1a73e8; }"
                                        "#picPanel { background: #ffffff; border-radius: 2px; }"));
    picPanel = new QLabel(phone);
    picPanel->setObjectName(QStringLiteral("picPanel"));
    picPanel->setFixedSize(kPhonePictureSize);
    picPanel->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(phone);
    layout->setContentsMargins(12, 16, 12, 16);
    layout->addWidget(picPanel);
    return phone;
}

QLayout* SlideEditor::buildSoundRow(QWidget* frame) {
    auto* note = new QLabel(frame);
    note->setPixmap(icon("sound").pixmap(18, 18));
    lblSoundName = new QLabel(frame);
    lblSoundName->setObjectName(QStringLiteral("lblSoundName"));
    lblSoundName->setTextInteractionFlags(Qt::TextSelectableByMouse);
    soundPlayCmd = new QToolButton(frame);
    soundPlayCmd->setObjectName(QStringLiteral("soundPlayCmd"));
    soundPlayCmd->setIcon(playIcon_);
    soundPlayCmd->setIconSize(QSize(22, 22));
    soundPlayCmd->setAutoRaise(true);
    connect(soundPlayCmd, &QToolButton::clicked, this, [this] { soundPlayCmd_Click(); });
    auto* row = new QHBoxLayout;
    row->addWidget(note);
    row->addWidget(lblSoundName, 1);
    row->addWidget(soundPlayCmd);
    return row;
}

void SlideEditor::setCommands(QAction* add, QAction* exportPackage, QAction* removePicture,
                              QAction* removeSound) {
    // Push buttons cannot carry an action: they trigger it and follow whether it can run.
    for (auto [button, command] : {std::pair{addBigCmd, add}, std::pair{createCmd, exportPackage}}) {
        connect(button, &QPushButton::clicked, command, &QAction::trigger);
        connect(command, &QAction::enabledChanged, button, &QWidget::setEnabled);
        button->setEnabled(command->isEnabled());
    }
    // The phone frame around the picture and the sound's name carry the commands that clear them,
    // on their context menus and on the Delete key while they have the focus.
    for (auto [owner, command] : {std::pair<QWidget*, QAction*>{phoneScreen, removePicture},
                                  std::pair<QWidget*, QAction*>{lblSoundName, removeSound}}) {
        owner->addAction(command);
        owner->setContextMenuPolicy(Qt::ActionsContextMenu);
        owner->setFocusPolicy(Qt::StrongFocus);
    }
}

void SlideEditor::applyLanguage() {
    using namespace composertext;
    frameSlide->setTitle(loc_.getMCrInterfaceStr(kSlide));
    soundPlayCmd->setToolTip(loc_.getMCrInterfaceStr(isPlaying_ ? kStopSound : kPlaySound));
    txtSlideDur->setToolTip(loc_.getMCrInterfaceStr(kDurationTip));
    createCmd->setText(loc_.getMCrInterfaceStr(kExport));
    addBigCmd->setText(loc_.getMCrInterfaceStr(kAddSlide));
}

QWidget* SlideEditor::dropArea() const {
    return const_cast<SlideEditor*>(this);
}

QList<QWidget*> SlideEditor::textBoxes() const {
    return {txtText, txtSlideDur};
}

bool SlideEditor::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtSlideDur) {
        if (event->type() == QEvent::FocusIn) txtSlideDur_GotFocus();
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (!txtSlideDur_KeyPress(key->key(), key->text())) return true;
        }
    } else if (watched == txtText->viewport() && event->type() == QEvent::MouseButtonPress) {
        txtText_Click();
    } else if (watched == txtText && event->type() == QEvent::FocusIn) {
        // Tabbing into the box behaves like clicking into it: the hint makes way for typing.
        txtText_Click();
    }
    return QWidget::eventFilter(watched, event);
}

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
        setTextBox(node->DataText);

        soundPlayCmd->setEnabled(true);
        stopSoundPreview();
        lblSoundName->setText(soundLabelText(node->DataSoundPath, position, document_.state().currentFile));
        if (node->DataSoundPath.isEmpty()) soundPlayCmd->setEnabled(false);
        frameSlide->setTitle(loc_.getMCrInterfaceStr(composertext::kSlide) + QLatin1Char(' ') +
                             QString::number(position));
        if (txtText->toPlainText().isEmpty()) setTextBox(textHint());
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
    frameSlide->setTitle(loc_.getMCrInterfaceStr(composertext::kSlide) + QLatin1Char(' '));
    lblSoundName->clear();
    picPanel->clear();
}

void SlideEditor::enableSlideCmds() {
    followMessage();
    stopSoundPreview();
    soundPlayCmd->setEnabled(false);
}

void SlideEditor::showPicture(const QString& path, bool* failed) {
    if (path.isEmpty()) {
        picPanel->clear();
        return;
    }
    if (isVideoClipPath(path)) {
        // A clip is no picture: the panel shows that the slide carries one.
        picPanel->setPixmap(icon("video").pixmap(48, 48));
        return;
    }
    const QImage picture = loadPicture(path);
    if (picture.isNull()) {
        picPanel->setPixmap(icon("broken-picture").pixmap(48, 48));
        *failed = true;
        return;
    }
    picPanel->setPixmap(QPixmap::fromImage(fitToPhoneScreen(picture)));
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
