#pragma once

#include <QListView>
#include <QStringList>

namespace mms {

// The slide strip's view: a list view whose items can be dragged to another place and which takes
// picture and sound files dropped from a file manager. It moves nothing itself: it reports what
// was dropped where, and the composer carries the move or the attachment out through its commands.
class SlideStripView final : public QListView {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SlideStripView)

public:
    // The drag format of a slide: its 1-based position as decimal text.
    static const QString kSlideMimeType;

    explicit SlideStripView(QWidget* parent = nullptr);

signals:
    // A slide dragged from position `from` was dropped on position `to` (1-based).
    void slideDropped(int from, int to);
    // Local files dropped on item `position` (1-based), or beside the items (0).
    void filesDropped(const QStringList& paths, int position);

protected:
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QList<int>& roles) override;

private:
    // The slide a drop at `pos` lands on: the item there, else the last one.
    int targetAt(const QPoint& pos) const;
    bool accepts(const QDropEvent* event) const;
    void clearIndicator();

    QRect indicator_;
};

// The local files among dropped data, in order.
QStringList localFiles(const class QMimeData* data);

} // namespace mms
