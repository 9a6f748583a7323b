#pragma once

#include "common/widgets/platform.h"
#include "model/cslide.h"
#include "model/status.h"
#include "sound/multimediadevice.h"
#include "store/messagestore.h"

#include <QIcon>
#include <QMainWindow>
#include <QString>

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
class QTabWidget;
class QToolButton;

namespace mms {

class Localisation;
class PicturePanel;
class SizeGauge;
class SlideStripModel;
class SoundPanel;

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
//   frmmmsmain_size.cpp     the size gauge, media lengths measured again, the over-limit question
class frmMMSMain final : public QMainWindow {
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
    void setModified(bool modified) { state_.isModified = modified; }
    int sendPreviewCommand(const QString& command);
    // Puts a picture or sound the panels chose on the selected slide (field "imgPath" or
    // "soundPath"), adding a first slide when there is none, and shows the slide again.
    void attachToCurrentSlide(const QString& field, const QString& path);

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

    // Preview helpers.
    void stopSoundPreview();
    void onPreviewNotify(MultimediaDevice::Notify result);

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
};

} // namespace mms
