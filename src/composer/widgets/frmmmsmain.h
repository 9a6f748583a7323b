#pragma once

#include "common/widgets/platform.h"
#include "composer/rememberedstate.h"
#include "composer/undocommands.h"
#include "model/cslide.h"
#include "model/status.h"
#include "sound/multimediadevice.h"
#include "store/messagestore.h"

#include <QIcon>
#include <QMainWindow>
#include <QString>
#include <QThreadPool>
#include <memory>

class QAction;
class QComboBox;
class QGroupBox;
class QLayout;
class QLabel;
class QLineEdit;
class QListView;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QSettings;
class QSplitter;
class QTabWidget;
class QTimer;
class QToolButton;
class QUndoStack;

namespace mms {

class Localisation;
class PicturePanel;
class QtTranslations;
class SizeGauge;
class SlideStripModel;
class SoundPanel;
struct Draft;

// The composer window: the program's one long-lived object. It owns the message (one CSlide list)
// and its state (name, subject, modified flag), shows the slides in the strip lstSlide and the
// selected slide in the slide panel, and hosts the picture and sound panels in MenuTab.
//
// Every user action is a handler named after its control and event. A handler changes the list
// through CSlide and brings the view in step: strip item k, thumbnail k and node k are slide k
// after every command; the panel shows the selected slide through lstSlide_ItemClick; every edit
// of the panel is written into the node at once through updateCurrentSlide. Menu commands forward
// to the button handlers. Message boxes, choosers, modal windows and the preview device are
// reached only through the Platform seams, so tests drive every handler without a modal window.
//
// The handlers live in several files by area:
//   frmmmsmain.cpp          construction, captions, start-up and shutdown
//   frmmmsmain_layout.cpp   controls, menus and their layout
//   frmmmsmain_strip.cpp    strip commands, selection, move rule
//   frmmmsmain_panel.cpp    slide panel: commit rule, duration and text boxes, reset and enable
//   frmmmsmain_preview.cpp  sound preview
//   frmmmsmain_player.cpp   Play Message
//   frmmmsmain_store.cpp    New, Open, Save, Save as, Delete
//   frmmmsmain_export.cpp   Export, Export as MMS
//   frmmmsmain_undo.cpp     Edit menu: the history of the message's changes
//   frmmmsmain_dragdrop.cpp slides dragged in the strip, files dropped on the window, media removed
//   frmmmsmain_draft.cpp    the draft kept while the message has unsaved changes
//   frmmmsmain_session.cpp  remembered state, Open Recent, About, Qt's texts, mnemonics
//   frmmmsmain_size.cpp     the size gauge, media lengths measured again, the over-limit question
class frmMMSMain final : public QMainWindow, private SlideEditTarget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmMMSMain)

public:
    struct Options {
        // Where the workspace lies (UserData, Temp).
        QString appFolder;
        // Where the language files lie. Empty: the Localisation already holds its texts (tests).
        QString languageFolder;
        // A language code that overrides the "Language" setting for this run; empty: the setting.
        QString languageCode;
        // The settings file that keeps window state and recent messages between runs; empty: nothing
        // is kept (tests).
        QString settingsFile;
        // How long the message must rest after a change before its draft is written.
        int draftDelayMs = 1500;
    };

    frmMMSMain(Platform& platform, Localisation& localisation, Options options, QWidget* parent = nullptr);
    ~frmMMSMain() override;

    // Start-up: language and captions, workspace folders, empty message, strip and panel reset,
    // library panels, preview hook. A language file or workspace folder that fails stops it; the
    // message names what failed and the window must not be shown.
    Status Form_Load();
    // Runs when the window is about to close: the save or exit question, then the clean-up of the
    // working copy and the temporary folders. Sets `cancel` to keep the window open.
    void Form_QueryUnload(bool& cancel);
    // Runs when the window really closes: stops a preview and removes the end-of-playback hook.
    void Form_Unload();

    // --- File menu ---
    void mnu_new_Click();
    void mnu_open_Click();
    void mnu_save_Click();
    void mnu_saveAs_Click();
    void mnu_delete_Click();
    void mnu_exit_Click();
    // The export button and its menu command.
    void createCmd_Click();
    void mnu_upload_Click() { createCmd_Click(); }
    // Writes the message as a binary MMS send request.
    void mnu_exportMms_Click();

    // --- Slide strip ---
    void addCmd_Click();
    void removeCmd_Click();
    void ffCmd_Click();
    void fCmd_Click();
    void rCmd_Click();
    void rrCmd_Click();
    void add_slide_Click() { addCmd_Click(); }
    void addBigCmd_Click() { addCmd_Click(); }
    void rm_slide_Click() { removeCmd_Click(); }
    void sendfront_Click() { ffCmd_Click(); }
    void sendfwd_Click() { fCmd_Click(); }
    void sendbwd_Click() { rCmd_Click(); }
    void sendback_Click() { rrCmd_Click(); }
    void lstSlide_ItemClick();
    void updateMoveCmds(qint16 position);

    // --- Slide panel ---
    void updateCurrentSlide(const QString& field, const QString& value);
    void txtSlideDur_GotFocus();
    // Whether a key typed into the duration box is kept: digits only, Backspace discarded.
    bool txtSlideDur_KeyPress(int key, const QString& text);
    void txtSlideDur_Change();
    void txtText_Change();
    void txtText_Click();
    void refreshSlidePanel();
    void enableSlideCmds();

    // --- Sound preview ---
    void soundPlayCmd_Click();
    void switchMCICtrl();

    // --- Player ---
    void mnu_play_Click();

    // --- State shared with the store, the name dialogs and the other windows ---
    MessageState& messageState() { return state_; }
    const MessageState& messageState() const { return state_; }
    bool isModified() const { return state_.isModified; }
    bool isPlaying() const { return isPlaying_; }
    const SlideStripModel& stripModel() const { return *stripModel_; }

    const CSlide& message() const { return slides_; }
    bool IsEmpty() const { return slides_.IsEmpty(); }
    // 1-based position of the strip's selected item, 0 when the strip is empty.
    qint16 selectedSlide() const;
    // Makes strip item `position` the selected and highlighted item (without showing it).
    void selectSlide(qint16 position);
    // Sets isModified and the unsaved-changes marker of the title.
    void setModified(bool modified);
    // Puts a picture or sound the panels chose on the selected slide (field "imgPath" or
    // "soundPath"), adding a first slide when there is none, and shows the slide again.
    void attachToCurrentSlide(const QString& field, const QString& path);

    // --- History (Edit menu) ---
    void mnu_undo_Click();
    void mnu_redo_Click();
    const QUndoStack& history() const { return *undoStack_; }
    // --- Media and drops ---
    // Take the picture or the sound off the selected slide (context menus, Delete key).
    void mnu_removePicture_Click();
    void mnu_removeSound_Click();
    // A slide dragged in the strip from one position to another.
    void lstSlide_DragDrop(qint16 from, qint16 to);
    // Files dropped on the slide panel or the strip: each picture or sound goes onto slide
    // `position` (0: the selected one, or a new one when there is none) through the panels' attach
    // rules; any other file is refused with a message.
    void dropFiles(const QStringList& paths, qint16 position = 0);
    // --- Draft ---
    // Offers to restore the draft a session left behind (start-up, once the window is shown).
    void offerDraftRestore();
    // Writes or removes the draft at once instead of after the pause, and waits until it is done.
    void flushDraft();
    // --- Recent messages and About ---
    QStringList recentMessages() const { return remembered_.recent; }
    // Opens stored message `name` as Open does once its dialog has closed (File > Open Recent).
    void openRecent(const QString& name);
    void mnu_about_Click();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Controls, named as the handlers name them.
    QMenu* file = nullptr;
    QAction* mnu_new = nullptr;
    QAction* mnu_open = nullptr;
    QAction* mnu_save = nullptr;
    QAction* mnu_saveAs = nullptr;
    QAction* mnu_delete = nullptr;
    QAction* mnu_upload = nullptr;
    QAction* mnu_exportMms = nullptr;
    QAction* mnu_exit = nullptr;
    QMenu* slide = nullptr;
    QAction* add_slide = nullptr;
    QAction* rm_slide = nullptr;
    QAction* sendfront = nullptr;
    QAction* sendback = nullptr;
    QAction* sendfwd = nullptr;
    QAction* sendbwd = nullptr;

    QListView* lstSlide = nullptr;
    QToolButton* addCmd = nullptr;
    QToolButton* removeCmd = nullptr;
    QToolButton* ffCmd = nullptr;
    QToolButton* fCmd = nullptr;
    QToolButton* rCmd = nullptr;
    QToolButton* rrCmd = nullptr;
    QGroupBox* Frame1 = nullptr; // around lblSlide
    QGroupBox* Frame2 = nullptr; // around lblSize
    QLabel* lblSlide = nullptr;
    QLabel* lblSize = nullptr;
    SizeGauge* sizeGauge = nullptr; // the estimate against the message size limit

    QGroupBox* frameSlide = nullptr;
    QLineEdit* txtSlideDur = nullptr;
    QLabel* picPanel = nullptr;
    QPlainTextEdit* txtText = nullptr;
    QLabel* lblSoundName = nullptr;
    QToolButton* soundPlayCmd = nullptr;
    QPushButton* addBigCmd = nullptr;
    QPushButton* createCmd = nullptr;

    QTabWidget* MenuTab = nullptr;
    PicturePanel* picturePanel = nullptr;
    SoundPanel* soundPanel = nullptr;

    QMenu* edit = nullptr;
    QAction* mnu_undo = nullptr;
    QAction* mnu_redo = nullptr;
    QMenu* mnu_openRecent = nullptr;
    QMenu* help = nullptr;
    QAction* mnu_about = nullptr;
    QAction* mnu_removePicture = nullptr;
    QAction* mnu_removeSound = nullptr;
    QSplitter* mainSplitter = nullptr;

    void moveOnePlace(bool towardsFront);
    // Defers the counter recount of nested commits to the end of the outermost command, so that a
    // command costs one recount however many commits the panel's change handlers make.
    class CounterBatch {
    public:
        explicit CounterBatch(frmMMSMain& w) : w_(w) { ++w_.counterBatchDepth_; }
        ~CounterBatch();
        CounterBatch(const CounterBatch&) = delete;
        CounterBatch& operator=(const CounterBatch&) = delete;

    private:
        frmMMSMain& w_;
    };

    void buildUi();
    QWidget* buildStripColumn();
    QListView* buildStripList(QWidget* column);
    QLayout* buildStripButtons(QWidget* column);
    QLayout* buildCounters(QWidget* column);
    QWidget* buildSlideColumn();
    QWidget* buildEmptyPage(QWidget* stack);
    QWidget* buildSlidePanel(QWidget* stack);
    QWidget* buildPhoneScreen(QWidget* frame);
    QLayout* buildSoundRow(QWidget* frame);
    void buildMenus();
    Status applyLanguage(int langIndex);
    void updateCaption();

    // Strip helpers.
    int stripCount() const;
    void finishStripCommand(qint16 select);
    void onStripCurrentChanged();

    // Panel helpers.
    void refreshCounters();
    void recountNow();
    // Size helpers: the media files' lengths measured again (they may have changed outside the
    // program), and the question before exporting a message over the size limit.
    void remeasureMessage();
    bool goOnDespiteSize();
    void showPicture(const QString& path, bool* failed);
    void setDurationText(const QString& text);
    void setTextBox(const QString& text);
    void styleTextHint();
    QString textHint() const;

    // Store helpers.
    MessageStore store() const;
    Answer ask(int prompt, int title, Buttons buttons, Answer defaultAnswer);
    void showStoreError(int error, const QString& detail);
    // Empties the message, the strip and the panel (New, Open).
    void clearMessage();
    // Rebuilds the slides, thumbnails and strip items of an opened message and shows slide 1.
    void loadMessage(const LoadedMessage& loaded);
    // Reads stored message `name` and makes it the current message; on failure the current one
    // stays, named `previousName` (error 24).
    void openStored(const QString& name, const QString& previousName);

    // Preview helpers.
    void stopSoundPreview();
    void onPreviewNotify(MultimediaDevice::Notify result);

    // History helpers. Steps are recorded after their command changed the message, and only for the
    // user's own commands: showing a slide or replaying the history records nothing.
    void buildEditMenu();
    void routeHistoryKeys();
    void afterReplay();
    void updateHistoryCaptions();
    bool recording() const { return !showingSlide_ && !replayingHistory_; }
    void record(QUndoCommand* step);
    std::optional<SlideState> slideState(qint16 position) const;
    void recordInsert(qint16 position);
    void recordChange(qint16 position, const SlideContent& before, const QImage& thumbnailBefore,
                      const QString& field, const QString& value);
    QString stepName(const QString& field, const QString& value) const;
    void commitField(const QString& field, const QString& value);
    bool removeFromStrip(qint16 position);
    QImage thumbnailFor(const QString& picture) const;
    void updateAddCmds();
    // SlideEditTarget: the history's replay on the list and the strip.
    void insertSlide(qint16 position, const SlideState& state) override;
    void removeSlide(qint16 position) override;
    void moveSlide(qint16 from, qint16 to) override;
    void setSlideContent(qint16 position, const SlideState& state) override;

    // Drag and drop helpers.
    void buildMediaActions();
    void updateMediaActions();
    void installDropTargets();
    void dropFile(const QString& path, qint16 position);

    // Draft helpers.
    void scheduleDraft();
    void writeDraft();
    void removeDraft();
    void onDraftWritten(const Status& status);
    void restoreDraft(Draft draft);
    Draft currentDraft() const;

    // Session helpers.
    void buildSessionMenus();
    Status applySessionCaptions(int langIndex);
    void applyMnemonics();
    void restoreRememberedState();
    void keepRememberedState();
    void rememberRecent(const QString& name);
    void forgetRecent(const QString& name);
    void fillRecentMenu();
    // After Save, Save as, Open and New: the history starts afresh where it has to, the draft goes.
    void messageStored();
    void messageReplaced();

    // Player helpers and controls (the Slide menu item and the button beside the strip).
    void installPlayerCommands();
    void applyPlayerLanguage();
    QAction* mnu_play = nullptr;
    QToolButton* playCmd = nullptr;

    Platform& platform_;
    Localisation& loc_;
    Options options_;

    CSlide slides_;
    MessageState state_;
    qint16 currentSlide_ = 0;
    bool isPlaying_ = false;
    QString durTextAtFocus_;

    SlideStripModel* stripModel_ = nullptr;
    QIcon playIcon_;
    QIcon stopIcon_;
    int counterBatchDepth_ = 0;
    bool countersDirty_ = false;
    // Set while code changes the strip or its selection, so that only the user's choice of an item
    // runs lstSlide_ItemClick by itself.
    bool stripFromCode_ = false;
    bool textHintStyled_ = false;
    bool hookInstalled_ = false;
    bool saveFailed_ = false; // the last Save or Save as hit a store error (not a cancel)
    bool unloaded_ = false;

    QUndoStack* undoStack_ = nullptr;
    bool showingSlide_ = false;
    bool replayingHistory_ = false;
    QTimer* draftTimer_ = nullptr;
    // A draft left by another session is not written over until it has been offered.
    bool draftHeld_ = false;
    bool draftWarned_ = false;
    std::unique_ptr<QSettings> settings_;
    RememberedState remembered_;
    std::unique_ptr<QtTranslations> qtTranslations_;
    // Drafts are written one after the other, off the window's thread; declared last so that it
    // waits for the last write before anything else goes.
    QThreadPool draftWriter_;
};

} // namespace mms
