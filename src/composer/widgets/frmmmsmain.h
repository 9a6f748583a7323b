#pragma once

#include "common/widgets/platform.h"
#include "composer/composerdocument.h"
#include "composer/rememberedstate.h"
#include "model/status.h"

#include <QDBusConnection>
#include <QMainWindow>
#include <QString>
#include <memory>
#include <optional>

class QSettings;
class QSplitter;
class QTabWidget;

namespace mms {

class ComposerActions;
class Localisation;
class MessageSender;
class PicturePanel;
class QtTranslations;
class SlideEditor;
class SlideStrip;
class SlideStripModel;
class SoundPanel;

// The composer window: the program's one long-lived object. It puts together what does the work and
// keeps the handler names as the entry points a reader looks for:
//   ComposerDocument (composer/)   the message and everything done to it: slide commands, history,
//                                  New, Open, Save, Save as, Delete, the exports, the draft, the size;
//   SlideStrip                     the strip of slides, its command buttons and the counters;
//   SlideEditor                    the selected slide: duration, picture, text, sound and its preview;
//   ComposerActions                one QAction per command, and which of them can run;
//   PicturePanel, SoundPanel       the libraries, in the tabs of MenuTab;
//   RememberedState                what is kept between runs (frmmmsmain_session.cpp).
// A handler here is a few lines that call the object owning the job. Message boxes, choosers, modal
// windows and the preview device are reached only through the Platform seams, so tests drive every
// handler without a modal window.
class frmMMSMain final : public QMainWindow, private DocumentWindows {
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
        // The bus the MMS service is looked for on; none: the session bus.
        std::optional<QDBusConnection> mmsBus;
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
    void mnu_new_Click() { document_->newMessage(); }
    void mnu_open_Click() { document_->open(); }
    void mnu_save_Click() { document_->save(); }
    void mnu_saveAs_Click() { document_->saveAs(); }
    void mnu_delete_Click() { document_->remove(); }
    void mnu_exit_Click() { close(); }
    // The export button and its menu command.
    void createCmd_Click() { document_->exportPackage(); }
    void mnu_upload_Click() { createCmd_Click(); }
    // Writes the message as a binary MMS send request.
    void mnu_exportMms_Click() { document_->exportMms(); }
    // Hands the stored message to the MMS service, saving it first when the user agrees.
    void mnu_send_Click();
    // The log of hand-offs and their statuses.
    void mnu_sent_Click();
    MessageSender& sender() { return *sender_; }
    // Opens stored message `name` as Open does once its dialog has closed (File > Open Recent).
    void openRecent(const QString& name) { document_->openRecent(name); }
    QStringList recentMessages() const { return remembered_.recent; }

    // --- Edit menu ---
    void mnu_undo_Click() { document_->undo(); }
    void mnu_redo_Click() { document_->redo(); }
    const QUndoStack& history() const { return document_->history(); }

    // --- Slide strip ---
    void addCmd_Click() { document_->addSlide(); }
    void removeCmd_Click() { document_->removeSlide(); }
    void ffCmd_Click() { document_->moveToFront(); }
    void fCmd_Click() { document_->moveOnePlace(true); }
    void rCmd_Click() { document_->moveOnePlace(false); }
    void rrCmd_Click() { document_->moveToBack(); }
    void add_slide_Click() { addCmd_Click(); }
    void addBigCmd_Click() { addCmd_Click(); }
    void rm_slide_Click() { removeCmd_Click(); }
    void sendfront_Click() { ffCmd_Click(); }
    void sendfwd_Click() { fCmd_Click(); }
    void sendbwd_Click() { rCmd_Click(); }
    void sendback_Click() { rrCmd_Click(); }
    // Shows the selected slide in the slide panel (the user's choice in the strip, or after a command).
    void lstSlide_ItemClick();
    // A slide dragged in the strip from one position to another.
    void lstSlide_DragDrop(qint16 from, qint16 to) { document_->dragSlide(from, to); }
    // 1-based position of the strip's selected item, 0 when the strip is empty.
    qint16 selectedSlide() const;
    // Makes strip item `position` the selected and highlighted item (without showing it).
    void selectSlide(qint16 position);
    const SlideStripModel& stripModel() const;

    // --- Slide panel ---
    void updateCurrentSlide(const QString& field, const QString& value);
    void txtText_Click();
    void refreshSlidePanel();
    // Puts a picture or sound the panels chose on the selected slide (field "imgPath" or
    // "soundPath"), adding a first slide when there is none, and shows the slide again.
    void attachToCurrentSlide(const QString& field, const QString& path);
    // Take the picture or the sound off the selected slide (context menus, Delete key).
    void mnu_removePicture_Click();
    void mnu_removeSound_Click();
    // Files dropped on the slide panel or the strip: each picture or sound goes onto slide
    // `position` (0: the selected one, or a new one when there is none) through the panels' attach
    // rules; any other file is refused with a message.
    void dropFiles(const QStringList& paths, qint16 position = 0);
    void soundPlayCmd_Click();
    bool isPlaying() const;
    void mnu_play_Click();

    // --- The message and its state, shared with the name dialogs and the other windows ---
    const CSlide& message() const { return document_->message().slides(); }
    bool IsEmpty() const { return document_->message().isEmpty(); }
    MessageState& messageState() { return document_->state(); }
    const MessageState& messageState() const { return document_->state(); }
    bool isModified() const { return document_->isModified(); }
    void setModified(bool modified) { document_->setModified(modified); }

    // --- Draft ---
    // Offers to restore the draft a session left behind (start-up, once the window is shown).
    void offerDraftRestore() { document_->offerDraftRestore(); }
    // Writes or removes the draft at once instead of after the pause, and waits until it is done.
    void flushDraft() { document_->flushDraft(); }
    void mnu_about_Click();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildUi();
    void connectCommands();
    void connectDocument();
    Status applyLanguage(int langIndex);
    void updateCaption();
    void updateCommands();
    void showSlide(qint16 position);
    void dropFile(const QString& path, qint16 position);
    // DocumentWindows: the name dialogs, the subject prompt and the export chooser.
    bool runNameDialog(NameDialog which) override;
    bool promptSubject(bool forMms, QStringList* recipients) override;
    QString chooseSaveFile(const QString& title, const QString& initDir, const QString& filter) override;
    // Session helpers (frmmmsmain_session.cpp).
    void restoreRememberedState();
    void keepRememberedState();
    void rememberRecent(const QString& name);
    void forgetRecent(const QString& name);
    void fillRecentMenu();
    // Sending helpers (frmmmsmain_send.cpp).
    void connectSender();

    Platform& platform_;
    Localisation& loc_;
    Options options_;
    std::unique_ptr<ComposerDocument> document_;
    std::unique_ptr<MessageSender> sender_;
    ComposerActions* actions_ = nullptr;
    SlideStrip* strip_ = nullptr;
    SlideEditor* editor_ = nullptr;
    QSplitter* mainSplitter = nullptr;
    QTabWidget* MenuTab = nullptr;
    PicturePanel* picturePanel = nullptr;
    SoundPanel* soundPanel = nullptr;
    std::unique_ptr<QSettings> settings_;
    RememberedState remembered_;
    std::unique_ptr<QtTranslations> qtTranslations_;
    bool unloaded_ = false;
};

} // namespace mms
