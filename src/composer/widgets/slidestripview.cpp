#include "composer/widgets/slidestripview.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QStyledItemDelegate>
#include <QUrl>

namespace mms {

namespace {

// Items drawn as rounded cards: hovered ones grey, the selected one blue. Painted here rather than
// through a style sheet, which would be matched again for every item at every repaint of the strip.
class StripItemDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem item(option);
        initStyleOption(&item, index);
        const bool selected = item.state & QStyle::State_Selected;
        const bool hovered = item.state & QStyle::State_MouseOver;
        if (selected || hovered) {
            painter->save();
            painter->setRenderHint(QPainter::Antialiasing);
            QPainterPath card;
            card.addRoundedRect(QRectF(item.rect).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
            painter->fillPath(card, selected ? QColor(0xd2, 0xe3, 0xfc) : QColor(0xf1, 0xf3, 0xf4));
            painter->restore();
        }
        item.state &= ~(QStyle::State_Selected | QStyle::State_MouseOver | QStyle::State_HasFocus);
        item.palette.setColor(QPalette::Text,
                              selected ? QColor(0x17, 0x4e, 0xa6) : option.palette.color(QPalette::Text));
        item.rect.adjust(3, 3, -3, -3);
        QStyledItemDelegate::paint(painter, item, index);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(6, 6);
    }
};

} // namespace

const QString SlideStripView::kSlideMimeType = QStringLiteral("application/x-mms-composer-slide");

QStringList localFiles(const QMimeData* data) {
    QStringList files;
    if (!data || !data->hasUrls()) return files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile()) files << url.toLocalFile();
    }
    return files;
}

SlideStripView::SlideStripView(QWidget* parent) : QListView(parent) {
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(false); // drawn here: the model takes no drops of its own
    setDragDropMode(QAbstractItemView::DragDrop);
    setItemDelegate(new StripItemDelegate(this));
    setMouseTracking(true);
    QPalette white = palette();
    white.setColor(QPalette::Base, Qt::white);
    setPalette(white);
}

void SlideStripView::startDrag(Qt::DropActions) {
    const QModelIndex index = currentIndex();
    if (!index.isValid()) return;
    auto* data = new QMimeData;
    data->setData(kSlideMimeType, QByteArray::number(index.row() + 1));
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    const QImage thumbnail = index.data(Qt::DecorationRole).value<QImage>();
    if (!thumbnail.isNull()) drag->setPixmap(QPixmap::fromImage(thumbnail));
    drag->exec(Qt::MoveAction);
    clearIndicator();
}

bool SlideStripView::accepts(const QDropEvent* event) const {
    const QMimeData* data = event->mimeData();
    return data->hasFormat(kSlideMimeType) || !localFiles(data).isEmpty();
}

int SlideStripView::targetAt(const QPoint& pos) const {
    const QModelIndex index = indexAt(pos);
    return index.isValid() ? index.row() + 1 : model()->rowCount();
}

void SlideStripView::dragEnterEvent(QDragEnterEvent* event) {
    if (!accepts(event)) {
        event->ignore();
        return;
    }
    // Files are copied from where they are, never taken away from the file manager.
    event->setDropAction(event->mimeData()->hasFormat(kSlideMimeType) ? Qt::MoveAction : Qt::CopyAction);
    event->accept();
}

void SlideStripView::dragMoveEvent(QDragMoveEvent* event) {
    if (!accepts(event)) {
        event->ignore();
        return;
    }
    const QPoint pos = event->position().toPoint();
    const bool slide = event->mimeData()->hasFormat(kSlideMimeType);
    event->setDropAction(slide ? Qt::MoveAction : Qt::CopyAction);
    event->accept();
    // A slide goes where the line is drawn; a file goes onto the framed slide.
    QRect mark;
    const int target = targetAt(pos);
    if (target > 0) {
        const QRect item = visualRect(model()->index(target - 1, 0));
        if (slide) {
            const int from = event->mimeData()->data(kSlideMimeType).toInt();
            const int y = target > from ? item.bottom() : item.top();
            mark = QRect(item.left(), y - 1, item.width(), 3);
        } else if (indexAt(pos).isValid()) {
            mark = item;
        }
    }
    if (mark != indicator_) {
        indicator_ = mark;
        viewport()->update();
    }
}

void SlideStripView::dragLeaveEvent(QDragLeaveEvent* event) {
    clearIndicator();
    event->accept();
}

void SlideStripView::dropEvent(QDropEvent* event) {
    clearIndicator();
    if (!accepts(event)) {
        event->ignore();
        return;
    }
    const QPoint pos = event->position().toPoint();
    const QMimeData* data = event->mimeData();
    if (data->hasFormat(kSlideMimeType)) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
        const int from = data->data(kSlideMimeType).toInt();
        const int to = targetAt(pos);
        if (from >= 1 && to >= 1 && from != to) emit slideDropped(from, to);
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const QModelIndex index = indexAt(pos);
    emit filesDropped(localFiles(data), index.isValid() ? index.row() + 1 : 0);
}

void SlideStripView::clearIndicator() {
    if (indicator_.isNull()) return;
    indicator_ = QRect();
    viewport()->update();
}

void SlideStripView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (indicator_.isNull()) return;
    QPainter painter(viewport());
    const QColor accent(0x1a, 0x73, 0xe8);
    if (indicator_.height() <= 3) {
        painter.fillRect(indicator_, accent);
    } else {
        painter.setPen(QPen(accent, 2));
        painter.drawRoundedRect(indicator_.adjusted(1, 1, -1, -1), 6, 6);
    }
}

} // namespace mms
