#pragma once

#include "model/cslide.h"

#include <QAbstractListModel>
#include <QImage>
#include <vector>

namespace mms {

// The slide strip as an item model: row k-1 is strip item k, with its thumbnail (the image list of
// the strip) and its label. The composer changes the slide list and this model in the same command,
// so that items, thumbnails and list nodes stay equal in number and order. Labels are derived from
// the row and a copy of the slide's duration, so a change in the middle costs one structural
// signal plus one dataChanged over the rows whose label changed, never a rebuild of every item.
// Positions in this interface are 1-based, like the strip's.
class SlideStripModel final : public QAbstractListModel {
    Q_OBJECT

public:
    explicit SlideStripModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    int count() const { return static_cast<int>(items_.size()); }
    QString label(int position) const;
    QImage thumbnail(int position) const;

    void clear();
    void insertSlide(int position, const QImage& thumbnail, const SlideDur& duration);
    void appendSlide(const QImage& thumbnail, const SlideDur& duration) {
        insertSlide(count() + 1, thumbnail, duration);
    }
    void removeSlide(int position);
    // Moves the item at `from` so that it ends up at `to`.
    void moveSlide(int from, int to);
    void setThumbnail(int position, const QImage& thumbnail);
    void setDuration(int position, const SlideDur& duration);
    // Rebuilds the labels from the list (the list must have as many slides as the strip has items).
    // Only rows whose label changed are reported.
    void refreshLabels(const CSlide& slides);

private:
    struct Item {
        QImage thumbnail;
        SlideDur duration;
    };
    bool valid(int position) const { return position >= 1 && position <= count(); }
    void labelsChangedFrom(int first, int last);

    std::vector<Item> items_;
};

} // namespace mms
