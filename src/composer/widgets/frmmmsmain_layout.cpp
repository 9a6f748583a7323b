// The composer window's controls and their layout: menus, the strip column, the slide panel and
// the library tabs.
#include "composer/widgets/frmmmsmain.h"

#include "composer/sizelimit.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/sizegauge.h"
#include "composer/widgets/slidestripview.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"

#include <QAction>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

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

void frmMMSMain::buildUi() {
    buildMenus();

    auto* splitter = mainSplitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("mainSplitter"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(buildStripColumn());
    splitter->addWidget(buildSlideColumn());

    MenuTab = new QTabWidget(splitter);
    MenuTab->setObjectName(QStringLiteral("MenuTab"));
    MenuTab->setDocumentMode(true);
    picturePanel = new PicturePanel(loc_, platform_, options_.appFolder, MenuTab);
    soundPanel = new SoundPanel(loc_, platform_, options_.appFolder, MenuTab);
    connect(picturePanel, &PicturePanel::pictureChosen, this,
            [this](const QString& path) { attachToCurrentSlide(QStringLiteral("imgPath"), path); });
    connect(soundPanel, &SoundPanel::soundChosen, this,
            [this](const QString& path) { attachToCurrentSlide(QStringLiteral("soundPath"), path); });
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
    buildMediaActions();
    installDropTargets();
    routeHistoryKeys();
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
    buildEditMenu();

    slide = menuBar()->addMenu(QString());
    slide->setObjectName(QStringLiteral("slide"));
    add_slide = menuAction(slide, "add_slide", "add", QKeySequence(Qt::Key_Insert));
    rm_slide = menuAction(slide, "rm_slide", "remove", QKeySequence(Qt::Key_Delete));
    slide->addSeparator();
    sendfront = menuAction(slide, "sendfront", "to-front", QKeySequence(Qt::CTRL | Qt::Key_Home));
    sendfwd = menuAction(slide, "sendfwd", "forward", QKeySequence(Qt::CTRL | Qt::Key_Up));
    sendbwd = menuAction(slide, "sendbwd", "backward", QKeySequence(Qt::CTRL | Qt::Key_Down));
    sendback = menuAction(slide, "sendback", "to-back", QKeySequence(Qt::CTRL | Qt::Key_End));
    buildSessionMenus();

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
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(8, 8, 4, 8);
    layout->addWidget(buildStripList(column), 1);
    layout->addLayout(buildStripButtons(column));
    layout->addLayout(buildCounters(column));
    return column;
}

QListView* frmMMSMain::buildStripList(QWidget* column) {
    stripModel_ = new SlideStripModel(this);
    lstSlide = new SlideStripView(column);
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
    return lstSlide;
}

QLayout* frmMMSMain::buildStripButtons(QWidget* column) {
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
    return buttons;
}

QLayout* frmMMSMain::buildCounters(QWidget* column) {
    Frame1 = new QGroupBox(column);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    lblSlide = new QLabel(Frame1);
    lblSlide->setObjectName(QStringLiteral("lblSlide"));
    (new QVBoxLayout(Frame1))->addWidget(lblSlide);
    Frame2 = new QGroupBox(column);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    lblSize = new QLabel(Frame2);
    lblSize->setObjectName(QStringLiteral("lblSize"));
    sizeGauge = new SizeGauge(loc_, platform_.dialogs, Frame2);
    connect(sizeGauge, &SizeGauge::limitChosen, this, [](qint64 bytes) { writeSizeLimitSetting(bytes); });
    auto* sizeLayout = new QVBoxLayout(Frame2);
    sizeLayout->addWidget(lblSize);
    sizeLayout->addWidget(sizeGauge);
    auto* counters = new QHBoxLayout;
    counters->addWidget(Frame1, 2);
    counters->addWidget(Frame2, 3);
    return counters;
}

QWidget* frmMMSMain::buildSlideColumn() {
    auto* column = new QWidget(this);
    column->setObjectName(QStringLiteral("slideColumn"));
    auto* stack = new QStackedWidget(column);
    stack->setObjectName(QStringLiteral("slideStack"));
    stack->addWidget(buildEmptyPage(stack));
    stack->addWidget(buildSlidePanel(stack));

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

// Shown while the message has no slide.
QWidget* frmMMSMain::buildEmptyPage(QWidget* stack) {
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
    return emptyPage;
}

QWidget* frmMMSMain::buildSlidePanel(QWidget* stack) {
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

    txtText = new QPlainTextEdit(frameSlide);
    txtText->setObjectName(QStringLiteral("txtText"));
    txtText->setTabChangesFocus(true);
    txtText->setMaximumHeight(90);
    txtText->installEventFilter(this);
    txtText->viewport()->installEventFilter(this);
    connect(txtText, &QPlainTextEdit::textChanged, this, [this] { txtText_Change(); });

    auto* slideLayout = new QVBoxLayout(frameSlide);
    slideLayout->setSpacing(10);
    slideLayout->addLayout(durationRow);
    slideLayout->addWidget(buildPhoneScreen(frameSlide), 0, Qt::AlignHCenter);
    slideLayout->addWidget(txtText);
    slideLayout->addLayout(buildSoundRow(frameSlide));
    slideLayout->addStretch(1);
    return frameSlide;
}

// The picture as the phone shows it, in the image region of its screen.
QWidget* frmMMSMain::buildPhoneScreen(QWidget* frame) {
    auto* phone = new QFrame(frame);
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
    return phone;
}

QLayout* frmMMSMain::buildSoundRow(QWidget* frame) {
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
    auto* soundRow = new QHBoxLayout;
    soundRow->addWidget(note);
    soundRow->addWidget(lblSoundName, 1);
    soundRow->addWidget(soundPlayCmd);
    return soundRow;
}

} // namespace mms
