#include "composer/widgets/slidestripview.h"

#include <QApplication>
#include <QCache>
#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QStaticText>
#include <QStyledItemDelegate>
#include <QUrl>

namespace mms {

namespace {

// Items drawn as rounded cards: hovered ones grey, the selected one blue. Painted here rather than
// through a style sheet, which would be matched again for every item at every repaint of the strip.
// The thumbnail and the label are placed once where the style places them (the items all have one
// size) and then painted from caches: the strip repaints its rows after nearly every command, and
// laying out each label's text and converting each thumbnail anew was most of a command's time.
class StripItemDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool selected = option.state & QStyle::State_Selected;
        const bool hovered = option.state & QStyle::State_MouseOver;
        if (selected || hovered) {
            painter->save();
            painter->setRenderHint(QPainter::Antialiasing);
            QPainterPath card;
            card.addRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
            painter->fillPath(card, selected ? QColor(0xd2, 0xe3, 0xfc) : QColor(0xf1, 0xf3, 0xf4));
            painter->restore();
        }
        const QRect item = option.rect.adjusted(3, 3, -3, -3);
        const Places& at = placesFor(option, index, item.size());
        const QImage thumbnail = index.data(Qt::DecorationRole).value<QImage>();
        if (!thumbnail.isNull()) {
            const QPixmap& pixmap = pixmapOf(thumbnail);
            const QRect box = at.decoration.translated(item.topLeft());
            QRect shown(QPoint(), pixmap.size().scaled(box.size(), Qt::KeepAspectRatio));
            shown.moveCenter(box.center());
            painter->drawPixmap(shown, pixmap);
        }
        const QString label = index.data(Qt::DisplayRole).toString();
        const QRect text = at.text.translated(item.topLeft());
        const QStaticText& line = staticTextOf(label, text.width(), option.font);
        painter->setFont(option.font);
        painter->setPen(selected ? QColor(0x17, 0x4e, 0xa6) : option.palette.color(QPalette::Text));
        const int top = text.top() + (text.height() - int(line.size().height())) / 2;
        painter->drawStaticText(text.left(), top, line);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(6, 6);
    }

private:
    struct Places {
        QSize item;
        QFont font;
        QRect decoration, text; // relative to the item's corner
    };

    const Places& placesFor(const QStyleOptionViewItem& option, const QModelIndex& index, QSize item) const {
        if (places_.item != item || places_.font != option.font) {
            QStyleOptionViewItem probe(option);
            initStyleOption(&probe, index);
            probe.rect = QRect(QPoint(), item);
            const QWidget* widget = option.widget;
            QStyle* style = widget ? widget->style() : QApplication::style();
            places_.item = item;
            places_.font = option.font;
            places_.decoration = style->subElementRect(QStyle::SE_ItemViewItemDecoration, &probe, widget);
            const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
            places_.text = style->subElementRect(QStyle::SE_ItemViewItemText, &probe, widget)
                               .adjusted(margin, 0, -margin, 0);
            texts_.clear();
        }
        return places_;
    }

    const QPixmap& pixmapOf(const QImage& image) const {
        if (QPixmap* cached = pixmaps_.object(image.cacheKey())) return *cached;
        auto* pixmap = new QPixmap(QPixmap::fromImage(image));
        pixmaps_.insert(image.cacheKey(), pixmap);
        return *pixmap;
    }

    const QStaticText& staticTextOf(const QString& label, int width, const QFont& font) const {
        if (QStaticText* cached = texts_.object(label)) return *cached;
        const QString shown = QFontMetrics(font).elidedText(label, Qt::ElideRight, width);
        auto* line = new QStaticText(shown);
        line->setTextFormat(Qt::PlainText);
        line->prepare(QTransform(), font);
        texts_.insert(label, line);
        return *line;
    }

    mutable Places places_;
    // A screenful of rows and then some: rows scrolled back into view are painted from here.
    mutable QCache<qint64, QPixmap> pixmaps_{256};
    mutable QCache<QString, QStaticText> texts_{256};
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

// The items all have one size, so a new label or thumbnail moves none of them: the rows changed are
// painted again, without the layout of every row that the list view would otherwise start.
void SlideStripView::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                                 const QList<int>& roles) {
    if (uniformItemSizes())
        QAbstractItemView::dataChanged(topLeft, bottomRight, roles);
    else
        QListView::dataChanged(topLeft, bottomRight, roles);
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
