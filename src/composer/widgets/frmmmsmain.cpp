#include "composer/widgets/frmmmsmain.h"

#include "common/localisation.h"
#include "common/workspace.h"
#include "composer/composertext.h"
#include "composer/draftstore.h"
#include "composer/qttranslations.h"
#include "composer/sizelimit.h"
#include "composer/slidepicture.h"
#include "composer/slidestripmodel.h"
#include "composer/widgets/sizegauge.h"
#include "composer/workspacefolders.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"

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
#include <QSettings>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>
#include <stdexcept>

// Resources compiled into a static library must be registered by name, outside any namespace.
static void initComposerResources() {
    Q_INIT_RESOURCE(icons);
}

namespace mms {

frmMMSMain::frmMMSMain(Platform& platform, Localisation& localisation, Options options, QWidget* parent)
    : QMainWindow(parent), platform_(platform), loc_(localisation), options_(std::move(options)),
      slides_(&platform.dialogs), qtTranslations_(std::make_unique<QtTranslations>()) {
    initComposerResources();
    undoStack_ = new QUndoStack(this);
    draftTimer_ = new QTimer(this);
    draftTimer_->setSingleShot(true);
    draftTimer_->setInterval(options_.draftDelayMs);
    connect(draftTimer_, &QTimer::timeout, this, [this] { writeDraft(); });
    draftWriter_.setMaxThreadCount(1);
    if (!options_.settingsFile.isEmpty())
        settings_ = std::make_unique<QSettings>(options_.settingsFile, QSettings::IniFormat);
    setObjectName(QStringLiteral("frmMMSMain"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/app.svg")));
    playIcon_ = QIcon(QStringLiteral(":/icons/play.svg"));
    stopIcon_ = QIcon(QStringLiteral(":/icons/stop.svg"));
    buildUi();
}

frmMMSMain::~frmMMSMain() {
    if (hookInstalled_) disconnect(&platform_.device, &MultimediaDevice::playbackEnded, this, nullptr);
    draftWriter_.waitForDone();
    // The history clears itself as it goes, which must not reach a window that is no longer one.
    disconnect(undoStack_, nullptr, this, nullptr);
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
        sizeGauge->applyLanguage();
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
    // "[*]" shows where the unsaved-changes marker goes; a name's own "[*]" is doubled to stay text.
    QString shown = name;
    shown.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    setWindowTitle(loc_.getMCrInterfaceStr(0) + QStringLiteral(" - ") + shown + QStringLiteral("[*]"));
    setWindowModified(state_.isModified);
}

void frmMMSMain::setModified(bool modified) {
    state_.isModified = modified;
    setWindowModified(modified);
}

Status frmMMSMain::Form_Load() {
    state_ = MessageState{};

    const QString code = options_.languageCode.isEmpty() ? readLanguageSetting() : options_.languageCode;
    const int langIndex = langIndexForCode(code);
    if (Status s = applyLanguage(langIndex); !s) return s;
    if (Status s = applySessionCaptions(langIndex); !s) return s;

    if (Status s = createWorkspaceFolders(options_.appFolder); !s) return s;
    sizeGauge->setLimit(readSizeLimitSetting());

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
        picturePanel->sizeTypeCombo();
        picturePanel->refreshImgList();
    } catch (const std::out_of_range& e) {
        return Status::failure(QString::fromUtf8(e.what()));
    }

    isPlaying_ = false;
    // A play ended on another thread is handled on the window's.
    connect(&platform_.device, &MultimediaDevice::playbackEnded, this, &frmMMSMain::onPreviewNotify,
            Qt::UniqueConnection);
    hookInstalled_ = true;

    restoreRememberedState();
    draftHeld_ = DraftStore(options_.appFolder).exists();
    updateCaption();
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
    // The close was confirmed: whatever was not saved was given up on purpose.
    removeDraft();
}

void frmMMSMain::Form_Unload() {
    if (unloaded_) return;
    unloaded_ = true;
    // A tune must not play on after its window has gone.
    stopSoundPreview();
    if (hookInstalled_) disconnect(&platform_.device, &MultimediaDevice::playbackEnded, this, nullptr);
    hookInstalled_ = false;
    keepRememberedState();
    draftWriter_.waitForDone();
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
