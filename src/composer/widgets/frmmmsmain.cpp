#include "composer/widgets/frmmmsmain.h"

#include "composer/composertext.h"
#include "common/localisation.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/workspacefolders.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include "common/workspace.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QFontMetrics>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QThread>
#include <QToolButton>
#include <QVBoxLayout>
#include <stdexcept>

// Resources compiled into a static library must be registered by name, outside any namespace.
static void initComposerResources() {
    Q_INIT_RESOURCE(icons);
}

namespace mms {

namespace {

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

QToolButton* stripButton(QWidget* parent, const char* objectName, const char* iconName) {
    auto* button = new QToolButton(parent);
    button->setObjectName(QLatin1String(objectName));
    button->setIcon(icon(iconName));
    button->setIconSize(QSize(20, 20));
    button->setAutoRaise(true);
    return button;
}

QAction* menuAction(QMenu* menu, const char* objectName, const char* iconName, const QKeySequence& shortcut) {
    auto* action = menu->addAction(QString());
    action->setObjectName(QLatin1String(objectName));
    if (iconName) action->setIcon(icon(iconName));
    if (!shortcut.isEmpty()) action->setShortcut(shortcut);
    return action;
}

} // namespace

frmMMSMain::frmMMSMain(Platform& platform, Localisation& localisation, Options options, QWidget* parent)
    : QMainWindow(parent), platform_(platform), loc_(localisation), options_(std::move(options)),
      slides_(&platform.dialogs) {
    initComposerResources();
    setObjectName(QStringLiteral("frmMMSMain"));
    setWindowIcon(icon("app"));
    playIcon_ = icon("play");
    stopIcon_ = icon("stop");
    buildUi();
}

frmMMSMain::~frmMMSMain() {
    if (hookInstalled_) platform_.device.setNotifyHandler({});
}

void frmMMSMain::buildUi() {
    buildMenus();

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("mainSplitter"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(buildStripColumn());
    splitter->addWidget(buildSlideColumn());

    MenuTab = new QTabWidget(splitter);
    MenuTab->setObjectName(QStringLiteral("MenuTab"));
    MenuTab->setDocumentMode(true);
    picturePanel = new PicturePanel(*this, MenuTab);
    soundPanel = new SoundPanel(*this, MenuTab);
    MenuTab->addTab(picturePanel, icon("picture"), QString());
    MenuTab->addTab(soundPanel, icon("sound"), QString());
    splitter->addWidget(MenuTab);

    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setStretchFactor(2, 1);
    splitter->setSizes({250, 380, 360});
    setCentralWidget(splitter);
    installPlayerCommands();
    resize(1020, 660);
}

void frmMMSMain::buildMenus() {
    file = menuBar()->addMenu(QString());
    file->setObjectName(QStringLiteral("file"));
    mnu_new = menuAction(file, "mnu_new", "new", QKeySequence(Qt::CTRL | Qt::Key_N));
    mnu_open = menuAction(file, "mnu_open", "open", QKeySequence(Qt::CTRL | Qt::Key_O));
    mnu_save = menuAction(file, "mnu_save", "save", QKeySequence(Qt::CTRL | Qt::Key_S));
    mnu_saveAs = menuAction(file, "mnu_saveAs", nullptr, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    mnu_delete = menuAction(file, "mnu_delete", nullptr, {});
    file->addSeparator();
    mnu_upload = menuAction(file, "mnu_upload", "export", QKeySequence(Qt::CTRL | Qt::Key_E));
    mnu_exportMms = menuAction(file, "mnu_exportMms", nullptr, {});
    file->addSeparator();
    mnu_exit = menuAction(file, "mnu_exit", nullptr, QKeySequence(Qt::CTRL | Qt::Key_Q));
    mnu_exit->setMenuRole(QAction::QuitRole);

    slide = menuBar()->addMenu(QString());
    slide->setObjectName(QStringLiteral("slide"));
    add_slide = menuAction(slide, "add_slide", "add", QKeySequence(Qt::Key_Insert));
    rm_slide = menuAction(slide, "rm_slide", "remove", QKeySequence(Qt::Key_Delete));
    slide->addSeparator();
    sendfront = menuAction(slide, "sendfront", "to-front", QKeySequence(Qt::CTRL | Qt::Key_Home));
    sendfwd = menuAction(slide, "sendfwd", "forward", QKeySequence(Qt::CTRL | Qt::Key_Up));
    sendbwd = menuAction(slide, "sendbwd", "backward", QKeySequence(Qt::CTRL | Qt::Key_Down));
    sendback = menuAction(slide, "sendback", "to-back", QKeySequence(Qt::CTRL | Qt::Key_End));

    connect(mnu_new, &QAction::triggered, this, [this] { mnu_new_Click(); });
    connect(mnu_open, &QAction::triggered, this, [this] { mnu_open_Click(); });
    connect(mnu_save, &QAction::triggered, this, [this] { mnu_save_Click(); });
    connect(mnu_saveAs, &QAction::triggered, this, [this] { mnu_saveAs_Click(); });
    connect(mnu_delete, &QAction::triggered, this, [this] { mnu_delete_Click(); });
    connect(mnu_upload, &QAction::triggered, this, [this] { mnu_upload_Click(); });
    connect(mnu_exportMms, &QAction::triggered, this, [this] { mnu_exportMms_Click(); });
    connect(mnu_exit, &QAction::triggered, this, [this] { mnu_exit_Click(); });
    connect(add_slide, &QAction::triggered, this, [this] { add_slide_Click(); });
    connect(rm_slide, &QAction::triggered, this, [this] { rm_slide_Click(); });
    connect(sendfront, &QAction::triggered, this, [this] { sendfront_Click(); });
    connect(sendfwd, &QAction::triggered, this, [this] { sendfwd_Click(); });
    connect(sendbwd, &QAction::triggered, this, [this] { sendbwd_Click(); });
    connect(sendback, &QAction::triggered, this, [this] { sendback_Click(); });
}

QWidget* frmMMSMain::buildStripColumn() {
    auto* column = new QWidget(this);
    column->setObjectName(QStringLiteral("stripColumn"));

    stripModel_ = new SlideStripModel(this);
    lstSlide = new QListView(column);
    lstSlide->setObjectName(QStringLiteral("lstSlide"));
    lstSlide->setModel(stripModel_);
    lstSlide->setViewMode(QListView::ListMode);
    lstSlide->setIconSize(kStripThumbnailSize);
    lstSlide->setUniformItemSizes(true);
    lstSlide->setSpacing(2);
    lstSlide->setSelectionMode(QAbstractItemView::SingleSelection);
    lstSlide->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstSlide->setMinimumWidth(200);
    lstSlide->setStyleSheet(
        QStringLiteral("QListView#lstSlide { background: #ffffff; outline: 0; }"
                       "QListView#lstSlide::item { padding: 3px; border-radius: 6px; }"
                       "QListView#lstSlide::item:hover { background: #f1f3f4; }"
                       "QListView#lstSlide::item:selected { background: #d2e3fc; color: #174ea6; }"));
    connect(lstSlide->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { onStripCurrentChanged(); });
    // A Ctrl-click can deselect the only selected item; the strip always keeps one.
    connect(lstSlide->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const QModelIndex current = lstSlide->currentIndex();
        if (current.isValid() && !lstSlide->selectionModel()->isSelected(current))
            lstSlide->selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
    });
    // Insert, Delete and the moves act on the strip while it has the focus.
    for (QAction* action : {add_slide, rm_slide, sendfront, sendfwd, sendbwd, sendback}) {
        action->setShortcutContext(Qt::WidgetShortcut);
        lstSlide->addAction(action);
    }

    addCmd = stripButton(column, "addCmd", "add");
    removeCmd = stripButton(column, "removeCmd", "remove");
    ffCmd = stripButton(column, "ffCmd", "to-front");
    fCmd = stripButton(column, "fCmd", "forward");
    rCmd = stripButton(column, "rCmd", "backward");
    rrCmd = stripButton(column, "rrCmd", "to-back");
    connect(addCmd, &QToolButton::clicked, this, [this] { addCmd_Click(); });
    connect(removeCmd, &QToolButton::clicked, this, [this] { removeCmd_Click(); });
    connect(ffCmd, &QToolButton::clicked, this, [this] { ffCmd_Click(); });
    connect(fCmd, &QToolButton::clicked, this, [this] { fCmd_Click(); });
    connect(rCmd, &QToolButton::clicked, this, [this] { rCmd_Click(); });
    connect(rrCmd, &QToolButton::clicked, this, [this] { rrCmd_Click(); });

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    buttons->addWidget(addCmd);
    buttons->addWidget(removeCmd);
    buttons->addStretch(1);
    buttons->addWidget(ffCmd);
    buttons->addWidget(fCmd);
    buttons->addWidget(rCmd);
    buttons->addWidget(rrCmd);

    Frame1 = new QGroupBox(column);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    lblSlide = new QLabel(Frame1);
    lblSlide->setObjectName(QStringLiteral("lblSlide"));
    (new QVBoxLayout(Frame1))->addWidget(lblSlide);
    Frame2 = new QGroupBox(column);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    lblSize = new QLabel(Frame2);
    lblSize->setObjectName(QStringLiteral("lblSize"));
    (new QVBoxLayout(Frame2))->addWidget(lblSize);
    auto* counters = new QHBoxLayout;
    counters->addWidget(Frame1, 2);
    counters->addWidget(Frame2, 3);

    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(8, 8, 4, 8);
    layout->addWidget(lstSlide, 1);
    layout->addLayout(buttons);
    layout->addLayout(counters);
    return column;
}

QWidget* frmMMSMain::buildSlideColumn() {
    auto* column = new QWidget(this);
    column->setObjectName(QStringLiteral("slideColumn"));
    auto* stack = new QStackedWidget(column);
    stack->setObjectName(QStringLiteral("slideStack"));

    // Shown while the message has no slide.
    auto* emptyPage = new QWidget(stack);
    addBigCmd = new QPushButton(emptyPage);
    addBigCmd->setObjectName(QStringLiteral("addBigCmd"));
    addBigCmd->setIcon(icon("add"));
    addBigCmd->setIconSize(QSize(24, 24));
    addBigCmd->setMinimumHeight(44);
    connect(addBigCmd, &QPushButton::clicked, this, [this] { addBigCmd_Click(); });
    auto* emptyPicture = new QLabel(emptyPage);
    emptyPicture->setPixmap(icon("app").pixmap(96, 96));
    auto* emptyLayout = new QVBoxLayout(emptyPage);
    emptyLayout->setSpacing(16);
    emptyLayout->addStretch(1);
    emptyLayout->addWidget(emptyPicture, 0, Qt::AlignHCenter);
    emptyLayout->addWidget(addBigCmd, 0, Qt::AlignHCenter);
    emptyLayout->addStretch(2);

    frameSlide = new QGroupBox(stack);
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

    // The picture as the phone shows it, in the image region of its screen.
    auto* phone = new QFrame(frameSlide);
    phone->setObjectName(QStringLiteral("phoneScreen"));
    phone->setStyleSheet(QStringLiteral("#phoneScreen { background: #202124; border-radius: 14px; }"
                                        "#picPanel { background: #ffffff; border-radius: 2px; }"));
    picPanel = new QLabel(phone);
    picPanel->setObjectName(QStringLiteral("picPanel"));
    picPanel->setFixedSize(kPhonePictureSize);
    picPanel->setAlignment(Qt::AlignCenter);
    auto* phoneLayout = new QVBoxLayout(phone);
    phoneLayout->setContentsMargins(12, 16, 12, 16);
    phoneLayout->addWidget(picPanel);

    txtText = new QPlainTextEdit(frameSlide);
    txtText->setObjectName(QStringLiteral("txtText"));
    txtText->setTabChangesFocus(true);
    txtText->setMaximumHeight(90);
    txtText->installEventFilter(this);
    txtText->viewport()->installEventFilter(this);
    connect(txtText, &QPlainTextEdit::textChanged, this, [this] { txtText_Change(); });

    auto* note = new QLabel(frameSlide);
    note->setPixmap(icon("sound").pixmap(18, 18));
    lblSoundName = new QLabel(frameSlide);
    lblSoundName->setObjectName(QStringLiteral("lblSoundName"));
    lblSoundName->setTextInteractionFlags(Qt::TextSelectableByMouse);
    soundPlayCmd = new QToolButton(frameSlide);
    soundPlayCmd->setObjectName(QStringLiteral("soundPlayCmd"));
    soundPlayCmd->setIcon(playIcon_);
    soundPlayCmd->setIconSize(QSize(22, 22));
    soundPlayCmd->setAutoRaise(true);
    connect(soundPlayCmd, &QToolButton::clicked, this, [this] { soundPlayCmd_Click(); });
    auto* soundRow = new QHBoxLayout;
    soundRow->addWidget(note);
    soundRow->addWidget(lblSoundName, 1);
    soundRow->addWidget(soundPlayCmd);

    auto* slideLayout = new QVBoxLayout(frameSlide);
    slideLayout->setSpacing(10);
    slideLayout->addLayout(durationRow);
    slideLayout->addWidget(phone, 0, Qt::AlignHCenter);
    slideLayout->addWidget(txtText);
    slideLayout->addLayout(soundRow);
    slideLayout->addStretch(1);

    stack->addWidget(emptyPage);
    stack->addWidget(frameSlide);

    createCmd = new QPushButton(column);
    createCmd->setObjectName(QStringLiteral("createCmd"));
    createCmd->setIcon(icon("export"));
    createCmd->setDefault(false);
    createCmd->setAutoDefault(false);
    connect(createCmd, &QPushButton::clicked, this, [this] { createCmd_Click(); });
    auto* exportRow = new QHBoxLayout;
    exportRow->addStretch(1);
    exportRow->addWidget(createCmd);

    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(4, 8, 4, 8);
    layout->addWidget(stack, 1);
    layout->addLayout(exportRow);
    return column;
}

Status frmMMSMain::applyLanguage(int langIndex) {
    if (!options_.languageFolder.isEmpty()) {
        if (Status s = loc_.readLangFile(langIndex, options_.languageFolder); !s) return s;
    }
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    try {
        setWindowTitle(I(0) + QStringLiteral(" - ") + I(1));
        file->setTitle(I(2));
        mnu_new->setText(I(3));
        mnu_open->setText(I(4));
        mnu_save->setText(I(5));
        mnu_saveAs->setText(I(6));
        mnu_delete->setText(I(7));
        mnu_exit->setText(I(8));
        slide->setTitle(I(9));
        add_slide->setText(I(10));
        rm_slide->setText(I(11));
        sendfront->setText(I(12));
        sendback->setText(I(13));
        sendfwd->setText(I(14));
        sendbwd->setText(I(15));
        mnu_upload->setText(I(63));
        MenuTab->setTabText(0, I(17));
        MenuTab->setTabText(1, I(18));
        picturePanel->applyLanguage();
        soundPanel->applyLanguage();
        createCmd->setText(I(63));
        Frame1->setTitle(I(24));
        Frame2->setTitle(I(25));
        frameSlide->setTitle(I(9));
        soundPlayCmd->setToolTip(I(28));
        ffCmd->setToolTip(I(12));
        fCmd->setToolTip(I(14));
        addCmd->setToolTip(I(10));
        removeCmd->setToolTip(I(11));
        rCmd->setToolTip(I(15));
        rrCmd->setToolTip(I(13));
        txtSlideDur->setToolTip(I(61));
        // Beyond the captions of the original window: the second add button, the MMS export.
        addBigCmd->setText(I(10));
        mnu_exportMms->setText(I(64));
        applyPlayerLanguage();
    } catch (const std::out_of_range& e) {
        return Status::failure(QString::fromUtf8(e.what()));
    }
    return Status::ok();
}

void frmMMSMain::updateCaption() {
    const QString name = state_.currentFile.isEmpty() ? loc_.getMCrInterfaceStr(1) : state_.currentFile;
    setWindowTitle(loc_.getMCrInterfaceStr(0) + QStringLiteral(" - ") + name);
}

Status frmMMSMain::Form_Load() {
    state_ = MessageState{};

    const QString code = options_.languageCode.isEmpty() ? readLanguageSetting() : options_.languageCode;
    if (Status s = applyLanguage(langIndexForCode(code)); !s) return s;

    if (Status s = createWorkspaceFolders(options_.appFolder); !s) return s;

    // The random source is seeded from the clock where it is made (SystemRandom).
    slides_.Destory();
    stripModel_->clear();

    ffCmd->setEnabled(false);
    fCmd->setEnabled(false);
    rCmd->setEnabled(false);
    rrCmd->setEnabled(false);
    add_slide->setEnabled(true);
    for (QAction* action : {rm_slide, sendback, sendbwd, sendfront, sendfwd, mnu_upload})
        action->setEnabled(false);

    try {
        refreshSlidePanel();
        picturePanel->clearThumbnails();
        picturePanel->setLibraryFolder(
            QDir::toNativeSeparators(workspace::pictureLibrary(options_.appFolder)));
        soundPanel->setLibraryFolder(QDir::toNativeSeparators(workspace::soundLibrary(options_.appFolder)));
        soundPanel->fillTypeCombo();
        picturePanel->fillTypeCombo();
        SizeCombo(picturePanel->imgTypeCombo);
        picturePanel->refreshImgList();
    } catch (const std::out_of_range& e) {
        return Status::failure(QString::fromUtf8(e.what()));
    }

    isPlaying_ = false;
    platform_.device.setNotifyHandler([this](MultimediaDevice::Notify result) {
        if (QThread::currentThread() == thread()) {
            onPreviewNotify(result);
        } else {
            QMetaObject::invokeMethod(
                this, [this, result] { onPreviewNotify(result); }, Qt::QueuedConnection);
        }
    });
    hookInstalled_ = true;
    return Status::ok();
}

void frmMMSMain::Form_QueryUnload(bool& cancel) {
    const auto question = [this](int prompt, Buttons buttons) {
        return platform_.dialogs.show(Message{loc_.getMCrPromptStr(prompt), loc_.getMCrInterfaceStr(0),
                                              buttons, Icon::Question, Answer::Yes});
    };
    if (state_.isModified) {
        switch (question(2, Buttons::YesNoCancel)) {
        case Answer::Yes:
            mnu_save_Click();
            if (state_.isModified) {
                cancel = true;
                return;
            }
            break;
        case Answer::No:
            break;
        default:
            cancel = true;
            return;
        }
    } else if (question(4, Buttons::YesNo) != Answer::Yes) {
        cancel = true;
        return;
    }
    // A step that fails ends the clean-up quietly; the window closes all the same.
    (void)cleanUpWorkspace(options_.appFolder);
}

void frmMMSMain::Form_Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    // A tune must not play on after its window has gone.
    stopSoundPreview();
    if (hookInstalled_) platform_.device.setNotifyHandler({});
    hookInstalled_ = false;
}

void frmMMSMain::closeEvent(QCloseEvent* event) {
    if (unloaded_) {
        event->accept();
        return;
    }
    bool cancel = false;
    Form_QueryUnload(cancel);
    if (cancel) {
        event->ignore();
        return;
    }
    Form_Unload();
    event->accept();
}

void frmMMSMain::mnu_exit_Click() {
    close();
}

int frmMMSMain::SizeCombo(QComboBox* combo) {
    const QFontMetrics metrics(combo->font());
    int width = 10;
    for (int i = 0; i < combo->count(); ++i)
        width = std::max(width, metrics.horizontalAdvance(combo->itemText(i)));
    combo->view()->setMinimumWidth(width);
    return width;
}

QString frmMMSMain::extractFileName(const QString& path) {
    return CSlide::extractFileName(path);
}
QString frmMMSMain::extractFileType(const QString& path) {
    return CSlide::extractFileType(path);
}
QString frmMMSMain::removeTxtOccurrence(const QString& text, const QString& find) {
    return mms::removeTxtOccurrence(text, find);
}

bool frmMMSMain::eventFilter(QObject* watched, QEvent* event) {
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
    return QMainWindow::eventFilter(watched, event);
}

} // namespace mms
