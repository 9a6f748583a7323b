// Play Message: the Slide menu item (F5) and the play button beside the strip open the player on
// the message from the selected slide.

#include "common/localisation.h"
#include "common/playbacktexts.h"
#include "composer/widgets/frmmmsmain.h"
#include "composer/widgets/frmmmsplayer.h"

#include <QAction>
#include <QBoxLayout>
#include <QListView>
#include <QMenu>
#include <QToolButton>

namespace mms {

namespace {

// The box layout that holds `widget`, searched from its parent's top layout down.
QBoxLayout* layoutHolding(QLayout* layout, QWidget* widget) {
    if (!layout) return nullptr;
    if (layout->indexOf(widget) >= 0) return qobject_cast<QBoxLayout*>(layout);
    for (int i = 0; i < layout->count(); ++i) {
        if (QBoxLayout* found = layoutHolding(layout->itemAt(i)->layout(), widget)) return found;
    }
    return nullptr;
}

} // namespace

void frmMMSMain::installPlayerCommands() {
    slide->addSeparator();
    mnu_play = slide->addAction(playIcon_, QString());
    mnu_play->setObjectName(QStringLiteral("mnu_play"));
    mnu_play->setShortcut(QKeySequence(Qt::Key_F5));
    connect(mnu_play, &QAction::triggered, this, [this] { mnu_play_Click(); });

    playCmd = new QToolButton(removeCmd->parentWidget());
    playCmd->setObjectName(QStringLiteral("playCmd"));
    playCmd->setIcon(playIcon_);
    playCmd->setIconSize(QSize(20, 20));
    playCmd->setAutoRaise(true);
    connect(playCmd, &QToolButton::clicked, this, [this] { mnu_play_Click(); });
    // Beside the add and remove buttons under the strip.
    if (QBoxLayout* row = layoutHolding(removeCmd->parentWidget()->layout(), removeCmd))
        row->insertWidget(row->indexOf(removeCmd) + 1, playCmd);
}

void frmMMSMain::applyPlayerLanguage() {
    const QString caption = loc_.getMCrInterfaceStr(playbacktext::kPlayMessage);
    mnu_play->setText(caption);
    playCmd->setToolTip(caption + QStringLiteral(" (F5)"));
}

void frmMMSMain::mnu_play_Click() {
    if (slides_.IsEmpty()) {
        platform_.dialogs.inform(loc_.getMCrErrStr(playbacktext::kNoSlides));
        return;
    }
    // One sound at a time: the player takes over the preview's device.
    stopSoundPreview();
    frmMMSPlayer player(platform_, loc_, showSlides(slides_), std::max(selectedSlide() - 1, 0), this);
    platform_.dialogs.runModal(player);
}

} // namespace mms
