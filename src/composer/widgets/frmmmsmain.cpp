// The composer window: construction and wiring, captions, start-up and shutdown, and the windows the
// document asks for (the name dialogs, the subject prompt, the export chooser).

#include "composer/widgets/frmmmsmain.h"

#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composertexts.h"
#include "composer/qttranslations.h"
#include "composer/sizelimit.h"
#include "composer/widgets/composeractions.h"
#include "composer/widgets/sizegauge.h"
#include "composer/widgets/slideeditor.h"
#include "composer/widgets/slidestrip.h"
#include "composer/workspacefolders.h"
#include "image/widgets/picturepanel.h"
#include "package/widgets/frmmmspromptsubject.h"
#include "send/messagesender.h"
#include "sound/widgets/soundpanel.h"
#include "store/widgets/frmmmsfiledelete.h"
#include "store/widgets/frmmmsfileopen.h"
#include "store/widgets/frmmmsfilesave.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QMenuBar>
#include <QSettings>
#include <QSplitter>
#include <QTabWidget>
#include <QTimer>
#include <QUndoStack>
#include <stdexcept>

// Resources compiled into a static library must be registered by name, outside any namespace.
static void initComposerResources() {
    Q_INIT_RESOURCE(icons);
}

namespace mms {

frmMMSMain::frmMMSMain(Platform& platform, Localisation& localisation, Options options, QWidget* parent)
    : QMainWindow(parent), platform_(platform), loc_(localisation), options_(std::move(options)),
      qtTranslations_(std::make_unique<QtTranslations>()) {
    initComposerResources();
    DocumentWindows& windows = *this;
    document_ = std::make_unique<ComposerDocument>(
        platform.dialogs, platform.clock, loc_, windows,
        ComposerDocument::Options{options_.appFolder, options_.draftDelayMs});
    sender_ = std::make_unique<MessageSender>(options_.appFolder,
                                              options_.mmsBus.value_or(QDBusConnection::sessionBus()));
    if (!options_.settingsFile.isEmpty())
        settings_ = std::make_unique<QSettings>(options_.settingsFile, QSettings::IniFormat);
    setObjectName(QStringLiteral("frmMMSMain"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/app.svg")));
    buildUi();
    connectCommands();
    connectDocument();
    connectSender();
}

frmMMSMain::~frmMMSMain() {
    // The views go before the message they show.
    delete takeCentralWidget();
}

void frmMMSMain::buildUi() {
    actions_ = new ComposerActions(loc_, *menuBar(), *this);
    mainSplitter = new QSplitter(Qt::Horizontal, this);
    mainSplitter->setObjectName(QStringLiteral("mainSplitter"));
    mainSplitter->setChildrenCollapsible(false);
    strip_ = new SlideStrip(*document_, loc_, platform_.dialogs, *actions_, mainSplitter);
    editor_ = new SlideEditor(*document_, loc_, platform_, mainSplitter);
    editor_->setCommands(actions_->add_slide, actions_->mnu_upload, actions_->mnu_removePicture,
                         actions_->mnu_removeSound);
    MenuTab = new QTabWidget(mainSplitter);
    MenuTab->setObjectName(QStringLiteral("MenuTab"));
    MenuTab->setDocumentMode(true);
    picturePanel = new PicturePanel(loc_, platform_, options_.appFolder, MenuTab);
    soundPanel = new SoundPanel(loc_, platform_, options_.appFolder, MenuTab);
    MenuTab->addTab(picturePanel, QIcon(QStringLiteral(":/icons/picture.svg")), QString());
    MenuTab->addTab(soundPanel, QIcon(QStringLiteral(":/icons/sound.svg")), QString());
    for (QWidget* column :
         {static_cast<QWidget*>(strip_), static_cast<QWidget*>(editor_), static_cast<QWidget*>(MenuTab)})
        mainSplitter->addWidget(column);
    mainSplitter->setStretchFactor(0, 0);
    mainSplitter->setStretchFactor(1, 1);
    mainSplitter->setStretchFactor(2, 1);
    mainSplitter->setSizes({250, 380, 360});
    setCentralWidget(mainSplitter);
    resize(1020, 660);
}

void frmMMSMain::connectCommands() {
    const auto on = [this](QAction* action, void (frmMMSMain::*handler)()) {
        connect(action, &QAction::triggered, this, [this, handler] { (this->*handler)(); });
    };
    ComposerActions& a = *actions_;
    on(a.mnu_new, &frmMMSMain::mnu_new_Click);
    on(a.mnu_open, &frmMMSMain::mnu_open_Click);
    on(a.mnu_save, &frmMMSMain::mnu_save_Click);
    on(a.mnu_saveAs, &frmMMSMain::mnu_saveAs_Click);
    on(a.mnu_delete, &frmMMSMain::mnu_delete_Click);
    on(a.mnu_upload, &frmMMSMain::mnu_upload_Click);
    on(a.mnu_exportMms, &frmMMSMain::mnu_exportMms_Click);
    on(a.mnu_send, &frmMMSMain::mnu_send_Click);
    on(a.mnu_sent, &frmMMSMain::mnu_sent_Click);
    on(a.mnu_exit, &frmMMSMain::mnu_exit_Click);
    on(a.mnu_undo, &frmMMSMain::mnu_undo_Click);
    on(a.mnu_redo, &frmMMSMain::mnu_redo_Click);
    on(a.add_slide, &frmMMSMain::add_slide_Click);
    on(a.rm_slide, &frmMMSMain::rm_slide_Click);
    on(a.sendfront, &frmMMSMain::sendfront_Click);
    on(a.sendfwd, &frmMMSMain::sendfwd_Click);
    on(a.sendbwd, &frmMMSMain::sendbwd_Click);
    on(a.sendback, &frmMMSMain::sendback_Click);
    on(a.mnu_play, &frmMMSMain::mnu_play_Click);
    on(a.mnu_about, &frmMMSMain::mnu_about_Click);
    on(a.mnu_removePicture, &frmMMSMain::mnu_removePicture_Click);
    on(a.mnu_removeSound, &frmMMSMain::mnu_removeSound_Click);

    connect(strip_, &SlideStrip::slidePicked, this, [this](qint16 position) {
        document_->setCurrent(position);
        lstSlide_ItemClick();
    });
    connect(strip_, &SlideStrip::slideDragged, this, &frmMMSMain::lstSlide_DragDrop);
    connect(strip_, &SlideStrip::filesDropped, this, &frmMMSMain::dropFiles);
    connect(editor_, &SlideEditor::filesDropped, this,
            [this](const QStringList& paths) { dropFiles(paths); });
    connect(picturePanel, &PicturePanel::pictureChosen, this,
            [this](const QString& path) { attachToCurrentSlide(QStringLiteral("imgPath"), path); });
    connect(soundPanel, &SoundPanel::soundChosen, this,
            [this](const QString& path) { attachToCurrentSlide(QStringLiteral("soundPath"), path); });
}

void frmMMSMain::connectDocument() {
    ComposerDocument& d = *document_;
    connect(&d, &ComposerDocument::showSlide, this, &frmMMSMain::showSlide);
    connect(&d, &ComposerDocument::replaced, this, [this] {
        strip_->resetIconSize();
        refreshSlidePanel();
    });
    connect(&d, &ComposerDocument::titleChanged, this, &frmMMSMain::updateCaption);
    connect(&d, &ComposerDocument::historyReplayed, editor_, &SlideEditor::afterReplay);
    connect(&d, &ComposerDocument::remembered, this, &frmMMSMain::rememberRecent);
    connect(&d, &ComposerDocument::forgotten, this, &frmMMSMain::forgetRecent);
    // Whether a command can run follows the message, its current slide and its history.
    const MessageModel& m = d.message();
    const auto followCount = [this] {
        editor_->followMessage();
        updateCommands();
    };
    connect(&m, &MessageModel::inserted, this, followCount);
    connect(&m, &MessageModel::removed, this, followCount);
    connect(&m, &MessageModel::reset, this, followCount);
    connect(&m, &MessageModel::moved, this, &frmMMSMain::updateCommands);
    connect(&m, &MessageModel::fieldChanged, this, &frmMMSMain::updateCommands);
    connect(&d.history(), &QUndoStack::indexChanged, this, &frmMMSMain::updateCommands);
    connect(&d.history(), &QUndoStack::cleanChanged, this, &frmMMSMain::updateCommands);
}

void frmMMSMain::updateCommands() {
    actions_->update(*document_);
}

Status frmMMSMain::applyLanguage(int langIndex) {
    if (!options_.languageFolder.isEmpty()) {
        if (Status s = loc_.readLangFile(langIndex, options_.languageFolder); !s) return s;
    }
    try {
        actions_->applyLanguage();
        MenuTab->setTabText(0, loc_.getMCrInterfaceStr(composertext::kPicturesTab));
        MenuTab->setTabText(1, loc_.getMCrInterfaceStr(composertext::kSoundsTab));
        picturePanel->applyLanguage();
        soundPanel->applyLanguage();
        strip_->applyLanguage();
        editor_->applyLanguage();
        updateCommands();
        actions_->applyMnemonics();
    } catch (const std::out_of_range& e) {
        return Status::failure(QString::fromUtf8(e.what()));
    }
    // Without Qt's translations installed its own texts stay English; that is no reason to stop.
    qtTranslations_->install(langIndex);
    return Status::ok();
}

void frmMMSMain::updateCaption() {
    const MessageState& state = document_->state();
    QString name =
        state.currentFile.isEmpty() ? loc_.getMCrInterfaceStr(composertext::kUntitled) : state.currentFile;
    // "[*]" shows where the unsaved-changes marker goes; a name's own "[*]" is doubled to stay text.
    name.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    setWindowTitle(loc_.getMCrInterfaceStr(composertext::kAppTitle) + QStringLiteral(" - ") + name +
                   QStringLiteral("[*]"));
    setWindowModified(state.isModified);
}

Status frmMMSMain::Form_Load() {
    document_->state() = MessageState{};
    const QString code = options_.languageCode.isEmpty() ? readLanguageSetting() : options_.languageCode;
    if (Status s = applyLanguage(langIndexForCode(code)); !s) return s;
    if (Status s = createWorkspaceFolders(options_.appFolder); !s) return s;
    document_->setSizeLimit(readSizeLimitSetting());
    strip_->gauge().setLimit(document_->sizeLimit());

    // The random source is seeded from the clock where it is made (SystemRandom).
    document_->message().clear();
    try {
        refreshSlidePanel();
        picturePanel->clearThumbnails();
        picturePanel->setLibraryFolder(
            QDir::toNativeSeparators(workspace::pictureLibrary(options_.appFolder)));
        soundPanel->setLibraryFolder(QDir::toNativeSeparators(workspace::soundLibrary(options_.appFolder)));
        soundPanel->fillTypeCombo();
        picturePanel->fillTypeCombo();
        picturePanel->sizeTypeCombo();
        picturePanel->refreshImgList();
    } catch (const std::out_of_range& e) {
        return Status::failure(QString::fromUtf8(e.what()));
    }
    editor_->installPreviewHook();
    restoreRememberedState();
    document_->holdDraft();
    updateCaption();
    // The daemon may have sent or given up on messages while the program was not running; its
    // answers come back as signals, so the window does not wait for them.
    QTimer::singleShot(0, sender_.get(), [this] { sender_->refresh(); });
    return Status::ok();
}

void frmMMSMain::Form_QueryUnload(bool& cancel) {
    cancel = !document_->queryClose();
}

void frmMMSMain::Form_Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    // A tune must not play on after its window has gone.
    editor_->stopSoundPreview();
    editor_->removePreviewHook();
    keepRememberedState();
    document_->flushDraft();
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

// The window comes back to the front: a library file may have been edited meanwhile.
void frmMMSMain::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) document_->remeasure();
    QMainWindow::changeEvent(event);
}

bool frmMMSMain::runNameDialog(NameDialog which) {
    const MessageStore messages(options_.appFolder);
    MessageState& state = document_->state();
    std::unique_ptr<QDialog> dialog;
    switch (which) {
    case NameDialog::Save:
        dialog = std::make_unique<frmMMSFileSave>(this, loc_, platform_.dialogs, messages, state);
        break;
    case NameDialog::Open:
        dialog = std::make_unique<frmMMSFileOpen>(this, loc_, platform_.dialogs, messages, state);
        break;
    case NameDialog::Delete:
        dialog = std::make_unique<frmMMSFileDelete>(this, loc_, platform_.dialogs, messages, state);
        break;
    }
    if (!removeCloseCommand(*dialog)) return false;
    platform_.dialogs.runModal(*dialog);
    return true;
}

bool frmMMSMain::promptSubject(bool forMms, QStringList* recipients) {
    frmMMSPromptSubject prompt(loc_, platform_.dialogs, document_->state(), this, forMms);
    platform_.dialogs.runModal(prompt);
    if (recipients) *recipients = prompt.recipients;
    return prompt.validflag;
}

QString frmMMSMain::chooseSaveFile(const QString& title, const QString& initDir, const QString& filter) {
    return platform_.dialogs.chooseSaveFile(this, title, initDir, filter);
}

} // namespace mms
