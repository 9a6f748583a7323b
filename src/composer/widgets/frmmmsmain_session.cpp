// What makes the composer behave like a desktop program between and around the edits: the window's
// size, columns, library folders and tab kept from one run to the next, File > Open Recent, the
// Help menu's About box, Qt's own texts in the interface language and mnemonics in every menu.

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "composer/mnemonics.h"
#include "composer/qttranslations.h"
#include "composer/usedlibraries.h"
#include "composer/widgets/frmmmsmain.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include "store/appfolder.h"
#include "store/messagestore.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QSplitter>
#include <QTabWidget>
#include <stdexcept>

namespace mms {

namespace {

void markMnemonics(const QList<QAction*>& actions, const QString& keys) {
    QStringList captions;
    for (const QAction* action : actions)
        captions << action->text();
    const QStringList marked = withMnemonics(captions, keys);
    for (qsizetype i = 0; i < actions.size(); ++i)
        actions.at(i)->setText(marked.at(i));
}

} // namespace

void frmMMSMain::buildSessionMenus() {
    mnu_openRecent = new QMenu(file);
    mnu_openRecent->setObjectName(QStringLiteral("mnu_openRecent"));
    file->insertMenu(mnu_save, mnu_openRecent);

    help = menuBar()->addMenu(QString());
    help->setObjectName(QStringLiteral("help"));
    mnu_about = help->addAction(windowIcon(), QString());
    mnu_about->setObjectName(QStringLiteral("mnu_about"));
    mnu_about->setMenuRole(QAction::AboutRole);
    connect(mnu_about, &QAction::triggered, this, [this] { mnu_about_Click(); });
}

Status frmMMSMain::applySessionCaptions(int langIndex) {
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    try {
        edit->setTitle(I(desktoptext::kMenuEdit));
        help->setTitle(I(desktoptext::kMenuHelp));
        mnu_about->setText(I(desktoptext::kAbout));
        mnu_openRecent->setTitle(I(desktoptext::kMenuOpenRecent));
        mnu_removePicture->setText(I(desktoptext::kRemovePicture));
        mnu_removeSound->setText(I(desktoptext::kRemoveSound));
        updateHistoryCaptions();
        applyMnemonics();
    } catch (const std::out_of_range& e) {
        return Status::failure(QString::fromUtf8(e.what()));
    }
    // Without Qt's translations installed its own texts stay English; that is no reason to stop.
    qtTranslations_->install(langIndex);
    return Status::ok();
}

void frmMMSMain::applyMnemonics() {
    markMnemonics({file->menuAction(), edit->menuAction(), slide->menuAction(), help->menuAction()},
                  QStringLiteral("FESH"));
    markMnemonics({mnu_new, mnu_open, mnu_openRecent->menuAction(), mnu_save, mnu_saveAs, mnu_delete,
                   mnu_upload, mnu_exportMms, mnu_exit},
                  QStringLiteral("NORSADEMX"));
    markMnemonics({add_slide, rm_slide, sendfront, sendfwd, sendbwd, sendback, mnu_play},
                  QStringLiteral("ARFWBKP"));
    markMnemonics({mnu_about}, QStringLiteral("A"));
}

void frmMMSMain::restoreRememberedState() {
    if (settings_) remembered_ = loadRememberedState(*settings_);
    fillRecentMenu();
    if (!settings_) return;
    if (!remembered_.geometry.isEmpty()) restoreGeometry(remembered_.geometry);
    if (!remembered_.splitter.isEmpty()) mainSplitter->restoreState(remembered_.splitter);
    // A folder that has gone since is forgotten: the workspace's library is shown instead.
    if (QFileInfo(remembered_.pictureFolder).isDir()) {
        picturePanel->setLibraryFolder(QDir::toNativeSeparators(remembered_.pictureFolder));
        picturePanel->refreshImgList();
    }
    if (QFileInfo(remembered_.soundFolder).isDir())
        soundPanel->setLibraryFolder(QDir::toNativeSeparators(remembered_.soundFolder));
    if (remembered_.tab >= 0 && remembered_.tab < MenuTab->count()) MenuTab->setCurrentIndex(remembered_.tab);
}

void frmMMSMain::keepRememberedState() {
    if (!settings_) return;
    remembered_.geometry = saveGeometry();
    remembered_.splitter = mainSplitter->saveState();
    remembered_.pictureFolder = QDir::fromNativeSeparators(picturePanel->libraryFolder());
    remembered_.soundFolder = QDir::fromNativeSeparators(soundPanel->libraryFolder());
    remembered_.tab = MenuTab->currentIndex();
    saveRememberedState(*settings_, remembered_);
}

void frmMMSMain::rememberRecent(const QString& name) {
    if (name.isEmpty()) return;
    remembered_.recent = withRecent(remembered_.recent, name);
    if (settings_) saveRecent(*settings_, remembered_.recent);
    fillRecentMenu();
}

void frmMMSMain::forgetRecent(const QString& name) {
    if (remembered_.recent.removeAll(name) == 0) return;
    if (settings_) saveRecent(*settings_, remembered_.recent);
    fillRecentMenu();
}

void frmMMSMain::fillRecentMenu() {
    mnu_openRecent->clear();
    for (qsizetype i = 0; i < remembered_.recent.size(); ++i) {
        const QString name = remembered_.recent.at(i);
        QString caption = name;
        caption.replace(QLatin1Char('&'), QStringLiteral("&&"));
        QAction* action = mnu_openRecent->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(caption));
        action->setObjectName(QStringLiteral("mnu_recent%1").arg(i + 1));
        connect(action, &QAction::triggered, this, [this, name] { openRecent(name); });
    }
    mnu_openRecent->menuAction()->setEnabled(!remembered_.recent.isEmpty());
}

void frmMMSMain::openRecent(const QString& name) {
    if (!state_.currentFile.isEmpty() && name == state_.currentFile) {
        platform_.dialogs.inform(loc_.getMCrErrStr(14));
        return;
    }
    if (!store().hasIndex(name)) {
        forgetRecent(name);
        platform_.dialogs.show(
            Message{loc_.getMCrErrStr(desktoptext::kErrRecentMissing).replace(QStringLiteral("%1"), name),
                    applicationTitle(), Buttons::Ok, Icon::Warning});
        return;
    }
    if (state_.isModified && ask(3, 0, Buttons::YesNo, Answer::No) == Answer::Yes) {
        mnu_save_Click();
        if (saveFailed_) return;
    }
    openStored(name, state_.currentFile);
}

void frmMMSMain::mnu_about_Click() {
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    QString rows;
    for (const LibraryInfo& part : usedLibraries(loc_)) {
        rows +=
            QStringLiteral("<tr><td>%1 %2</td><td>&nbsp;&nbsp;%3</td></tr>")
                .arg(part.name.toHtmlEscaped(), part.version.toHtmlEscaped(), part.licence.toHtmlEscaped());
    }
    const QString text =
        QStringLiteral("<p><b>%1</b><br>%2</p><p>%3</p><table>%4</table>")
            .arg(
                I(0).toHtmlEscaped(),
                I(desktoptext::kAboutVersion).replace(QStringLiteral("%1"), programVersion()).toHtmlEscaped(),
                I(desktoptext::kAboutLibraries).toHtmlEscaped(), rows);
    platform_.dialogs.show(Message{text, I(desktoptext::kAbout), Buttons::Ok, Icon::Information});
}

} // namespace mms
