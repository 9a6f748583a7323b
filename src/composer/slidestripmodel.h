#pragma once

#include "model/messagemodel.h"

#include <QAbstractListModel>
#include <QHash>
#include <QImage>

namespace mms {

// The slide strip as an item model over the message: row k-1 is slide k, labelled with its position
// and duration and decorated with its thumbnail. It holds no slide of its own; the only thing it
// keeps is the thumbnail cache, keyed by slide, made when a row is first shown. A thumbnail follows
// the slide's picture, or shows a clip's first picture marked as a clip.
// Positions in this interface are 1-based, like the strip's.
class SlideStripModel final : public QAbstractListModel {
    Q_OBJECT

public:
    explicit SlideStripModel(const MessageModel& message, QObject* parent = nullptr);

    QModelIndex index(int row, int column = 0, const QModelIndex& parent = QModelIndex()) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    int count() const { return message_.count(); }
    QString label(int position) const;
    QImage thumbnail(int position) const;

private:
    struct Thumbnail {
        QString source; // the picture it shows; empty: the blank page
        QImage image;   // made from source on first use
    };
    void onFieldChanged(int position, SlideField field);
    // The thumbnail entry of a slide that just appeared: one it had before (history) or a new one.
    void adopt(int position);
    static QString firstSource(const CSlideNode& slide);
    // The thumbnail of `source`, from `visual` when it was read already.
    static QImage thumbnailOf(const QString& source, QImage visual = {});
    void labelsChanged(int first, int last);

    const MessageModel& message_;
    mutable QHash<quint64, Thumbnail> thumbnails_;
};

} // namespace mms
