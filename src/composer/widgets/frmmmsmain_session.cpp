// What the composer keeps from one run to the next (the window's size, columns, library folders and
// tab), File > Open Recent, and the Help menu's About box.

#include "common/localisation.h"
#include "composer/composertexts.h"
#include "composer/usedlibraries.h"
#include "composer/widgets/composeractions.h"
#include "composer/widgets/frmmmsmain.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"
#include "store/appfolder.h"

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
    QMenu* mnu_openRecent = actions_->mnu_openRecent;
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

void frmMMSMain::mnu_about_Click() {
    const auto I = [this](int n) { return loc_.getMCrInterfaceStr(n); };
    QString rows;
    for (const LibraryInfo& part : usedLibraries(loc_)) {
        rows +=
            QStringLiteral("<tr><td>%1 %2</td><td>&nbsp;&nbsp;%3</td></tr>")
                .arg(part.name.toHtmlEscaped(), part.version.toHtmlEscaped(), part.licence.toHtmlEscaped());
    }
    const QString text = QStringLiteral("<p><b>%1</b><br>%2</p><p>%3</p><table>%4</table>")
                             .arg(I(composertext::kAppTitle).toHtmlEscaped(),
                                  I(composertext::kAboutVersion)
                                      .replace(QStringLiteral("%1"), programVersion())
                                      .toHtmlEscaped(),
                                  I(composertext::kAboutLibraries).toHtmlEscaped(), rows);
    platform_.dialogs.show(Message{text, I(composertext::kAbout), Buttons::Ok, Icon::Information});
}

} // namespace mms
