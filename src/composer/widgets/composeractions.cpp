#include "composer/widgets/composeractions.h"

#include "common/localisation.h"
#include "composer/composerdocument.h"
#include "composer/composertext.h"
#include "composer/composertexts.h"
#include "composer/mnemonics.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QUndoStack>

namespace mms {

namespace {

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

QAction* action(QObject* owner, const char* objectName, const char* iconName = nullptr,
                const QKeySequence& shortcut = {}) {
    auto* a = new QAction(owner);
    a->setObjectName(QLatin1String(objectName));
    if (iconName) a->setIcon(icon(iconName));
    if (!shortcut.isEmpty()) a->setShortcut(shortcut);
    return a;
}

QMenu* menu(QMenuBar& bar, const char* objectName, const QList<QAction*>& items) {
    QMenu* m = bar.addMenu(QString());
    m->setObjectName(QLatin1String(objectName));
    for (QAction* a : items) {
        if (a)
            m->addAction(a);
        else
            m->addSeparator();
    }
    return m;
}

void markMnemonics(const QList<QAction*>& actions, const QString& keys) {
    QStringList captions;
    for (const QAction* a : actions)
        captions << a->text();
    const QStringList marked = withMnemonics(captions, keys);
    for (qsizetype i = 0; i < actions.size(); ++i)
        actions.at(i)->setText(marked.at(i));
}

} // namespace

ComposerActions::ComposerActions(const Localisation& loc, QMenuBar& bar, QWidget& owner)
    : QObject(&owner), loc_(loc) {
    using QK = QKeySequence;
    mnu_new = action(&owner, "mnu_new", "new", QK(Qt::CTRL | Qt::Key_N));
    mnu_open = action(&owner, "mnu_open", "open", QK(Qt::CTRL | Qt::Key_O));
    mnu_save = action(&owner, "mnu_save", "save", QK(Qt::CTRL | Qt::Key_S));
    mnu_saveAs = action(&owner, "mnu_saveAs", nullptr, QK(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    mnu_delete = action(&owner, "mnu_delete");
    mnu_upload = action(&owner, "mnu_upload", "export", QK(Qt::CTRL | Qt::Key_E));
    mnu_exportMms = action(&owner, "mnu_exportMms");
    mnu_send = action(&owner, "mnu_send", "send");
    mnu_sent = action(&owner, "mnu_sent");
    mnu_exit = action(&owner, "mnu_exit", nullptr, QK(Qt::CTRL | Qt::Key_Q));
    mnu_exit->setMenuRole(QAction::QuitRole);
    file = menu(bar, "file",
                {mnu_new, mnu_open, mnu_save, mnu_saveAs, mnu_delete, nullptr, mnu_upload, mnu_exportMms,
                 nullptr, mnu_send, mnu_sent, nullptr, mnu_exit});
    mnu_openRecent = new QMenu(file);
    mnu_openRecent->setObjectName(QStringLiteral("mnu_openRecent"));
    file->insertMenu(mnu_save, mnu_openRecent);

    mnu_undo = action(&owner, "mnu_undo", "undo", QK(Qt::CTRL | Qt::Key_Z));
    mnu_redo = action(&owner, "mnu_redo", "redo");
    mnu_redo->setShortcuts({QK(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QK(Qt::CTRL | Qt::Key_Y)});
    edit = menu(bar, "edit", {mnu_undo, mnu_redo});

    add_slide = action(&owner, "add_slide", "add", QK(Qt::Key_Insert));
    rm_slide = action(&owner, "rm_slide", "remove", QK(Qt::Key_Delete));
    sendfront = action(&owner, "sendfront", "to-front", QK(Qt::CTRL | Qt::Key_Home));
    sendfwd = action(&owner, "sendfwd", "forward", QK(Qt::CTRL | Qt::Key_Up));
    sendbwd = action(&owner, "sendbwd", "backward", QK(Qt::CTRL | Qt::Key_Down));
    sendback = action(&owner, "sendback", "to-back", QK(Qt::CTRL | Qt::Key_End));
    mnu_play = action(&owner, "mnu_play", "play", QK(Qt::Key_F5));
    slide = menu(bar, "slide",
                 {add_slide, rm_slide, nullptr, sendfront, sendfwd, sendbwd, sendback, nullptr, mnu_play});
    // Insert, Delete and the moves act on the strip while it has the focus (the strip takes them).
    for (QAction* a : {add_slide, rm_slide, sendfront, sendfwd, sendbwd, sendback})
        a->setShortcutContext(Qt::WidgetShortcut);

    mnu_about = action(&owner, "mnu_about");
    mnu_about->setIcon(owner.windowIcon());
    mnu_about->setMenuRole(QAction::AboutRole);
    help = menu(bar, "help", {mnu_about});

    for (QAction** media : {&mnu_removePicture, &mnu_removeSound}) {
        *media = action(&owner, media == &mnu_removePicture ? "mnu_removePicture" : "mnu_removeSound",
                        "remove", QK(Qt::Key_Delete));
        (*media)->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
}

void ComposerActions::applyLanguage() {
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    using namespace composertext;
    file->setTitle(I(kMenuFile));
    mnu_new->setText(I(kNew));
    mnu_open->setText(I(kOpen));
    mnu_save->setText(I(kSave));
    mnu_saveAs->setText(I(kSaveAs));
    mnu_delete->setText(I(kDelete));
    mnu_exit->setText(I(kExit));
    mnu_upload->setText(I(kExport));
    mnu_exportMms->setText(I(kExportMms));
    mnu_send->setText(I(kMenuSend));
    mnu_sent->setText(I(kMenuSent));
    mnu_openRecent->setTitle(I(kMenuOpenRecent));
    edit->setTitle(I(kMenuEdit));
    slide->setTitle(I(kSlide));
    add_slide->setText(I(kAddSlide));
    rm_slide->setText(I(kRemoveSlide));
    sendfront->setText(I(kMoveToStart));
    sendback->setText(I(kMoveToEnd));
    sendfwd->setText(I(kMoveEarlier));
    sendbwd->setText(I(kMoveLater));
    const QString play = I(kPlayMessage);
    mnu_play->setText(play);
    mnu_play->setToolTip(play + QStringLiteral(" (F5)"));
    help->setTitle(I(kMenuHelp));
    mnu_about->setText(I(kAbout));
    mnu_removePicture->setText(I(kRemovePicture));
    mnu_removeSound->setText(I(kRemoveSound));
    // The strip's buttons show the plain captions as their tooltips, without the mnemonics below.
    for (QAction* a : {add_slide, rm_slide, sendfront, sendfwd, sendbwd, sendback})
        a->setToolTip(a->text());
}

void ComposerActions::applyMnemonics() {
    markMnemonics({file->menuAction(), edit->menuAction(), slide->menuAction(), help->menuAction()},
                  QStringLiteral("FESH"));
    markMnemonics({mnu_new, mnu_open, mnu_openRecent->menuAction(), mnu_save, mnu_saveAs, mnu_delete,
                   mnu_upload, mnu_exportMms, mnu_send, mnu_sent, mnu_exit},
                  QStringLiteral("NORSADEMTLX"));
    markMnemonics({add_slide, rm_slide, sendfront, sendfwd, sendbwd, sendback, mnu_play},
                  QStringLiteral("ARFWBKP"));
    markMnemonics({mnu_about}, QStringLiteral("A"));
}

void ComposerActions::update(const ComposerDocument& document) {
    const MessageModel& message = document.message();
    const int count = message.count();
    const bool hasSlides = count > 0;
    add_slide->setEnabled(count < CSlide::kMaxSlides);
    // Send stays available without an MMS service: choosing it says how to get one.
    for (QAction* a : {rm_slide, mnu_upload, mnu_exportMms, mnu_send})
        a->setEnabled(hasSlides);
    const qint16 current = hasSlides ? document.current() : qint16(0);
    const MoveCommands moves = moveCommandsFor(current, count);
    sendfront->setEnabled(moves.towardsFront);
    sendfwd->setEnabled(moves.towardsFront);
    sendbwd->setEnabled(moves.towardsBack);
    sendback->setEnabled(moves.towardsBack);
    const CSlideNode* shown = message.at(current);
    mnu_removePicture->setEnabled(shown && !shown->DataImgPath.isEmpty());
    mnu_removeSound->setEnabled(shown && !shown->DataSoundPath.isEmpty());

    const QUndoStack& history = document.history();
    if (loc_.texts().interface.isEmpty()) return;
    const auto caption = [this](int plain, int named, const QString& step) {
        return step.isEmpty() ? loc_.getMCrInterfaceStr(plain)
                              : loc_.getMCrInterfaceStr(named).replace(QStringLiteral("%1"), step);
    };
    // The undo key lies beside Z; redo is the second item.
    const QStringList marked =
        withMnemonics({caption(composertext::kUndo, composertext::kUndoNamed, history.undoText()),
                       caption(composertext::kRedo, composertext::kRedoNamed, history.redoText())},
                      QStringLiteral("UR"));
    mnu_undo->setText(marked.at(0));
    mnu_redo->setText(marked.at(1));
    mnu_undo->setEnabled(history.canUndo());
    mnu_redo->setEnabled(history.canRedo());
}

} // namespace mms
