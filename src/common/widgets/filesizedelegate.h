#pragma once

#include <QStyledItemDelegate>

class QListWidgetItem;

namespace mms {

class Localisation;

// File sizes in the library lists, so the user knows before choosing a file whether it is under
// the attachment limit: the size under the name (icon grid) or at the end of the row (list), and a
// file of 102400 bytes or more marked in a warning colour with `overLimitTip` as its tooltip.
void showFileSize(QListWidgetItem& item, const Localisation& texts, qint64 bytes,
                  const QString& overLimitTip);

// Draws what showFileSize put into an item. Set it on the list as its item delegate.
class FileSizeDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace mms
