// The slide panel's controls and their layout, and the filters that take dropped files, the keys
// of the duration box and the Edit menu's keys.

#include "composer/widgets/slideeditor.h"
#include "composer/widgets/slideframe.h"

#include "common/localisation.h"
#include "composer/composerdocument.h"
#include "composer/composertexts.h"
#include "composer/slidepicture.h"
#include "composer/widgets/slidestripview.h"

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
    frameSlide = new SlideFrame(slideStack);
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
    // A long name must not widen the panel's column.
    lblSoundName->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
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
    frameSlide->setSlideTitle(loc_.getMCrInterfaceStr(kSlide));
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

} // namespace mms
