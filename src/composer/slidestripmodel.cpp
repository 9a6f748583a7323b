#include "composer/slidestripmodel.h"

#include "composer/composertext.h"

#include <algorithm>

namespace mms {

int SlideStripModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant SlideStripModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    const Item& item = items_[static_cast<size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return stripLabel(index.row() + 1, item.duration.toString());
    case Qt::DecorationRole:
        return item.thumbnail;
    default:
        return {};
    }
}

Qt::ItemFlags SlideStripModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    // Items can be dragged; where a dragged slide lands is the composer's command, not a drop here.
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

QString SlideStripModel::label(int position) const {
    return valid(position)
               ? stripLabel(position, items_[static_cast<size_t>(position - 1)].duration.toString())
               : QString();
}

QImage SlideStripModel::thumbnail(int position) const {
    return valid(position) ? items_[static_cast<size_t>(position - 1)].thumbnail : QImage();
}

void SlideStripModel::clear() {
    if (items_.empty()) return;
    beginResetModel();
    items_.clear();
    endResetModel();
}

void SlideStripModel::insertSlide(int position, const QImage& thumbnail, const SlideDur& duration) {
    position = std::clamp(position, 1, count() + 1);
    beginInsertRows(QModelIndex(), position - 1, position - 1);
    items_.insert(items_.begin() + (position - 1), Item{thumbnail, duration});
    endInsertRows();
    // Every item after the new one is renumbered.
    if (position < count()) labelsChangedFrom(position + 1, count());
}

void SlideStripModel::removeSlide(int position) {
    if (!valid(position)) return;
    beginRemoveRows(QModelIndex(), position - 1, position - 1);
    items_.erase(items_.begin() + (position - 1));
    endRemoveRows();
    if (position <= count()) labelsChangedFrom(position, count());
}

void SlideStripModel::moveSlide(int from, int to) {
    if (!valid(from) || !valid(to) || from == to) return;
    // Qt counts the destination before the move: moving down lands in front of row to.
    const int destination = to > from ? to : to - 1;
    beginMoveRows(QModelIndex(), from - 1, from - 1, QModelIndex(), destination);
    Item moved = std::move(items_[static_cast<size_t>(from - 1)]);
    items_.erase(items_.begin() + (from - 1));
    items_.insert(items_.begin() + (to - 1), std::move(moved));
    endMoveRows();
    labelsChangedFrom(std::min(from, to), std::max(from, to));
}

void SlideStripModel::setThumbnail(int position, const QImage& thumbnail) {
    if (!valid(position)) return;
    items_[static_cast<size_t>(position - 1)].thumbnail = thumbnail;
    const QModelIndex i = index(position - 1);
    emit dataChanged(i, i, {Qt::DecorationRole});
}

void SlideStripModel::setDuration(int position, const SlideDur& duration) {
    if (!valid(position)) return;
    Item& item = items_[static_cast<size_t>(position - 1)];
    if (item.duration == duration) return;
    item.duration = duration;
    labelsChangedFrom(position, position);
}

void SlideStripModel::refreshLabels(const CSlide& slides) {
    int first = 0, last = 0;
    int position = 1;
    for (const CSlideNode* node = slides.firstItem().get(); node && position <= count();
         node = node->NextNode.get(), ++position) {
        Item& item = items_[static_cast<size_t>(position - 1)];
        if (item.duration == node->DataSlideDur) continue;
        item.duration = node->DataSlideDur;
        if (first == 0) first = position;
        last = position;
    }
    if (first != 0) labelsChangedFrom(first, last);
}

void SlideStripModel::labelsChangedFrom(int first, int last) {
    emit dataChanged(index(first - 1), index(last - 1), {Qt::DisplayRole});
}

} // namespace mms
