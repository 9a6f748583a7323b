#pragma once

#include <QObject>

class QAction;
class QMenu;
class QMenuBar;

namespace mms {

class ComposerDocument;
class Localisation;

// One QAction per command of the composer window, named as its handlers name it. Menus, the strip's
// tool buttons and the panel's push buttons all trigger these actions, and update() decides in one
// place, from the message's state, which of them can run.
class ComposerActions final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ComposerActions)

public:
    ComposerActions(const Localisation& loc, QMenuBar& menuBar, QWidget& owner);

    void applyLanguage();
    // Marks the mnemonics of every menu once the captions are set.
    void applyMnemonics();
    // Enables what can run, and names the steps that undo and redo would take.
    void update(const ComposerDocument& document);

    // File menu.
    QMenu* file;
    QAction* mnu_new;
    QAction* mnu_open;
    QMenu* mnu_openRecent;
    QAction* mnu_save;
    QAction* mnu_saveAs;
    QAction* mnu_delete;
    QAction* mnu_upload; // Export, also the panel's createCmd
    QAction* mnu_exportMms;
    QAction* mnu_send; // hands the stored message to the MMS service
    QAction* mnu_sent; // the log of hand-offs
    QAction* mnu_exit;
    // Edit menu.
    QMenu* edit;
    QAction* mnu_undo;
    QAction* mnu_redo;
    // Slide menu; the strip's buttons carry the same actions.
    QMenu* slide;
    QAction* add_slide; // addCmd, addBigCmd
    QAction* rm_slide;  // removeCmd
    QAction* sendfront; // ffCmd
    QAction* sendfwd;   // fCmd
    QAction* sendbwd;   // rCmd
    QAction* sendback;  // rrCmd
    QAction* mnu_play;  // playCmd
    // Help menu.
    QMenu* help;
    QAction* mnu_about;
    // The context commands of the phone screen and the sound name (and the Delete key there).
    QAction* mnu_removePicture;
    QAction* mnu_removeSound;

private:
    const Localisation& loc_;
};

} // namespace mms
