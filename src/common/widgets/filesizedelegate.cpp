#include "common/widgets/filesizedelegate.h"

#include "common/filesize.h"

#include <QApplication>
#include <QListWidgetItem>
#include <QPainter>

namespace mms {

namespace {

constexpr int kSizeTextRole = Qt::UserRole + 1;
constexpr int kOverLimitRole = Qt::UserRole + 2;

const QColor kOverLimit(0xc5, 0x22, 0x1f);

bool iconMode(const QStyleOptionViewItem& option) {
    return option.decorationPosition == QStyleOptionViewItem::Top;
}

} // namespace

void showFileSize(QListWidgetItem& item, const Localisation& texts, qint64 bytes,
                  const QString& overLimitTip) {
    const bool over = isTooLarge(bytes);
    const QString size = sizeText(texts, bytes);
    item.setData(kSizeTextRole, size);
    item.setData(kOverLimitRole, over);
    item.setToolTip(item.text() + QStringLiteral("\n") + size +
                    (over ? QStringLiteral("\n") + overLimitTip : QString()));
}

// In the icon grid the size is the name's second line; a file over the limit shows both in the
// warning colour.
void FileSizeDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const QString size = index.data(kSizeTextRole).toString();
    if (size.isEmpty() || !iconMode(*option)) return;
    option->text += QChar(QChar::LineSeparator) + size; // a plain '\n' would not break the line
    if (index.data(kOverLimitRole).toBool()) option->palette.setColor(QPalette::Text, kOverLimit);
}

QSize FileSizeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize hint = QStyledItemDelegate::sizeHint(option, index);
    const QString size = index.data(kSizeTextRole).toString();
    if (!size.isEmpty() && !iconMode(option))
        hint.rwidth() += option.fontMetrics.horizontalAdvance(size) + 16;
    return hint;
}

// In a list the size sits at the end of the row, the name elided before it.
void FileSizeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QString size = index.data(kSizeTextRole).toString();
    if (size.isEmpty() || iconMode(opt)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const int sizeWidth = opt.fontMetrics.horizontalAdvance(size);
    const QRect sizeRect = opt.rect.adjusted(opt.rect.width() - sizeWidth - 8, 0, -6, 0);
    const int nameWidth = sizeRect.left() - opt.rect.left() - opt.decorationSize.width() - 16;
    opt.text = opt.fontMetrics.elidedText(opt.text, Qt::ElideMiddle, qMax(0, nameWidth));
    const QWidget* widget = opt.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
    const bool selected = opt.state & QStyle::State_Selected;
    painter->save();
    painter->setPen(index.data(kOverLimitRole).toBool() ? kOverLimit
                    : selected                          ? opt.palette.color(QPalette::HighlightedText)
                                                        : opt.palette.color(QPalette::PlaceholderText));
    painter->drawText(sizeRect, Qt::AlignRight | Qt::AlignVCenter, size);
    painter->restore();
}

} // namespace mms
