// Slides dragged to another place in the strip, picture and sound files dropped on the window from
// a file manager, and the commands that take a picture or a sound off a slide. A drag moves the
// slide through the list's own operations like the move commands; a dropped file goes through the
// attach rules of the picture or sound panel, exactly as if it had been chosen there.

#include "common/desktoptexts.h"
#include "common/localisation.h"
#include "composer/droprules.h"
#include "composer/widgets/frmmmsmain.h"
#include "composer/widgets/slidestripview.h"
#include "image/widgets/picturepanel.h"
#include "sound/widgets/soundpanel.h"

#include <QAction>
#include <QDir>
#include <QDragMoveEvent>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <functional>

namespace mms {

namespace {

// Takes drags of local files for a widget and its children; anything else (text dragged into a text
// box) is left to the widget.
class FileDropFilter final : public QObject {
public:
    FileDropFilter(QObject* parent, std::function<void(const QStringList&)> onDrop)
        : QObject(parent), onDrop_(std::move(onDrop)) {}

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        const QEvent::Type type = event->type();
        if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
        auto* drag = static_cast<QDropEvent*>(event);
        const QStringList files = localFiles(drag->mimeData());
        if (files.isEmpty()) return false;
        // Copied from where they are: a file manager must never take the file away.
        drag->setDropAction(Qt::CopyAction);
        drag->accept();
        if (type == QEvent::Drop) onDrop_(files);
        return true;
    }

private:
    std::function<void(const QStringList&)> onDrop_;
};

QAction* mediaAction(QWidget* owner, const char* objectName) {
    auto* action = new QAction(owner);
    action->setObjectName(QLatin1String(objectName));
    action->setIcon(QIcon(QStringLiteral(":/icons/remove.svg")));
    action->setShortcut(QKeySequence(Qt::Key_Delete));
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    owner->addAction(action);
    owner->setContextMenuPolicy(Qt::ActionsContextMenu);
    owner->setFocusPolicy(Qt::StrongFocus);
    return action;
}

} // namespace

void frmMMSMain::buildMediaActions() {
    // The phone frame around the picture and the sound's name carry the commands that clear them,
    // on their context menus and on the Delete key while they have the focus.
    auto* phone = findChild<QFrame*>(QStringLiteral("phoneScreen"));
    mnu_removePicture = mediaAction(phone, "mnu_removePicture");
    mnu_removeSound = mediaAction(lblSoundName, "mnu_removeSound");
    phone->setStyleSheet(phone->styleSheet() +
                         QStringLiteral("#phoneScreen:focus { border: 2px solid #1a73e8; }"));
    connect(mnu_removePicture, &QAction::triggered, this, [this] { mnu_removePicture_Click(); });
    connect(mnu_removeSound, &QAction::triggered, this, [this] { mnu_removeSound_Click(); });
    updateMediaActions();
}

void frmMMSMain::updateMediaActions() {
    if (!mnu_removePicture) return;
    const NodePtr node = slides_.nodeAt(selectedSlide());
    mnu_removePicture->setEnabled(node && !node->DataImgPath.isEmpty());
    mnu_removeSound->setEnabled(node && !node->DataSoundPath.isEmpty());
}

void frmMMSMain::mnu_removePicture_Click() {
    const NodePtr node = slides_.nodeAt(selectedSlide());
    if (node && !node->DataImgPath.isEmpty()) attachToCurrentSlide(QStringLiteral("imgPath"), QString());
}

void frmMMSMain::mnu_removeSound_Click() {
    const NodePtr node = slides_.nodeAt(selectedSlide());
    if (node && !node->DataSoundPath.isEmpty()) attachToCurrentSlide(QStringLiteral("soundPath"), QString());
}

void frmMMSMain::installDropTargets() {
    auto* strip = static_cast<SlideStripView*>(lstSlide);
    connect(strip, &SlideStripView::slideDropped, this, [this](int from, int to) {
        lstSlide_DragDrop(static_cast<qint16>(from), static_cast<qint16>(to));
    });
    connect(strip, &SlideStripView::filesDropped, this, [this](const QStringList& paths, int position) {
        dropFiles(paths, static_cast<qint16>(position));
    });
    auto* filter = new FileDropFilter(this, [this](const QStringList& paths) { dropFiles(paths); });
    auto* column = findChild<QWidget*>(QStringLiteral("slideColumn"));
    column->setAcceptDrops(true);
    // The text boxes take dropped text as their own; dropped files still go onto the slide.
    for (QObject* target : {static_cast<QObject*>(column), static_cast<QObject*>(txtText->viewport()),
                            static_cast<QObject*>(txtSlideDur)})
        target->installEventFilter(filter);
}

void frmMMSMain::lstSlide_DragDrop(qint16 from, qint16 to) {
    const int count = stripCount();
    if (from < 1 || to < 1 || from > count || to > count || from == to) return;
    moveSlide(from, to);
    record(new MoveSlideStep(*this, loc_.getMCrInterfaceStr(desktoptext::kStepMoveSlide), from, to));
}

void frmMMSMain::dropFiles(const QStringList& paths, qint16 position) {
    for (const QString& path : paths)
        dropFile(path, position);
}

void frmMMSMain::dropFile(const QString& path, qint16 position) {
    const DropKind kind = dropKindOf(path);
    if (kind == DropKind::Refused) {
        const QString text = loc_.getMCrErrStr(desktoptext::kErrDropRefused)
                                 .replace(QStringLiteral("%1"), QDir::toNativeSeparators(path));
        platform_.dialogs.show(Message{text, applicationTitle(), Buttons::Ok, Icon::Warning});
        return;
    }
    // Dropped on a slide of the strip: that slide is shown and takes the file.
    if (position >= 1 && position <= stripCount() && position != selectedSlide()) {
        selectSlide(position);
        lstSlide_ItemClick();
    }
    if (kind == DropKind::Picture) {
        picturePanel->attachPictureFile(path);
    } else {
        soundPanel->attachSoundFile(path);
    }
}

} // namespace mms
