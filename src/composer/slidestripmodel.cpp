#include "composer/slidestripmodel.h"

#include "composer/composertext.h"
#include "composer/slidepicture.h"

#include <algorithm>

namespace mms {

SlideStripModel::SlideStripModel(const MessageModel& message, QObject* parent)
    : QAbstractListModel(parent), message_(message) {
    connect(&message, &MessageModel::aboutToInsert, this,
            [this](int p) { beginInsertRows(QModelIndex(), p - 1, p - 1); });
    connect(&message, &MessageModel::inserted, this, [this](int p) {
        adopt(p);
        endInsertRows();
        // Every slide after the new one is renumbered.
        labelsChanged(p + 1, count());
    });
    connect(&message, &MessageModel::aboutToRemove, this,
            [this](int p) { beginRemoveRows(QModelIndex(), p - 1, p - 1); });
    connect(&message, &MessageModel::removed, this, [this](int p) {
        endRemoveRows();
        labelsChanged(p, count());
    });
    connect(&message, &MessageModel::aboutToMove, this, [this](int from, int to) {
        // Qt counts the destination before the move: moving down lands in front of row `to`.
        beginMoveRows(QModelIndex(), from - 1, from - 1, QModelIndex(), to > from ? to : to - 1);
    });
    connect(&message, &MessageModel::moved, this, [this](int from, int to) {
        endMoveRows();
        labelsChanged(std::min(from, to), std::max(from, to));
    });
    connect(&message, &MessageModel::aboutToReset, this, [this] { beginResetModel(); });
    connect(&message, &MessageModel::reset, this, [this] {
        thumbnails_.clear();
        endResetModel();
    });
    connect(&message, &MessageModel::fieldChanged, this, &SlideStripModel::onFieldChanged);
}

// Without the checks through the virtual counts that the base class makes: a view laying out
// thousands of rows asks for every one.
QModelIndex SlideStripModel::index(int row, int column, const QModelIndex& parent) const {
    return !parent.isValid() && column == 0 && row >= 0 && row < count() ? createIndex(row, 0)
                                                                         : QModelIndex();
}

int SlideStripModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant SlideStripModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    switch (role) {
    case Qt::DisplayRole:
        return label(index.row() + 1);
    case Qt::DecorationRole:
        return thumbnail(index.row() + 1);
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
    const CSlideNode* slide = message_.at(position);
    return slide ? stripLabel(position, slide->DataSlideDur.toString()) : QString();
}

QImage SlideStripModel::thumbnail(int position) const {
    const CSlideNode* slide = message_.at(position);
    if (!slide) return {};
    auto entry = thumbnails_.find(slide->id);
    if (entry == thumbnails_.end()) entry = thumbnails_.insert(slide->id, Thumbnail{firstSource(*slide), {}});
    if (entry->image.isNull()) {
        entry->image = thumbnailOf(entry->source);
    }
    return entry->image;
}

// A slide first seen shows its picture or its clip's first picture.
QString SlideStripModel::firstSource(const CSlideNode& slide) {
    return slide.DataImgPath;
}

QImage SlideStripModel::thumbnailOf(const QString& source, QImage visual) {
    if (visual.isNull() && !source.isEmpty()) visual = loadSlideVisual(source);
    if (visual.isNull()) return blankThumbnail();
    return isVideoClipPath(source) ? markedAsClip(fittedThumbnail(visual)) : fittedThumbnail(visual);
}

void SlideStripModel::adopt(int position) {
    const CSlideNode* slide = message_.at(position);
    if (slide && !thumbnails_.contains(slide->id))
        thumbnails_.insert(slide->id, Thumbnail{firstSource(*slide), {}});
}

void SlideStripModel::onFieldChanged(int position, SlideField field) {
    const QModelIndex row = index(position - 1);
    if (field == SlideField::Duration) {
        emit dataChanged(row, row, {Qt::DisplayRole});
        return;
    }
    const CSlideNode* slide = message_.at(position);
    if (field != SlideField::Picture || !slide) return;
    auto entry = thumbnails_.find(slide->id);
    if (entry == thumbnails_.end()) entry = thumbnails_.insert(slide->id, {});
    // A picture or clip that cannot be read leaves the thumbnail as it was.
    const QImage visual = slide->DataImgPath.isEmpty() ? QImage() : loadSlideVisual(slide->DataImgPath);
    if (!slide->DataImgPath.isEmpty() && visual.isNull()) return;
    entry->source = slide->DataImgPath;
    entry->image = thumbnailOf(slide->DataImgPath, visual);
    emit dataChanged(row, row, {Qt::DecorationRole});
}

void SlideStripModel::labelsChanged(int first, int last) {
    if (first > last || first < 1) return;
    emit dataChanged(index(first - 1), index(last - 1), {Qt::DisplayRole});
}

} // namespace mms
