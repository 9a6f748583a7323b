#include "common/widgets/sizecombo.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFontMetrics>
#include <algorithm>

namespace mms {

int SizeCombo(QComboBox* combo) {
    const QFontMetrics metrics(combo->font());
    int width = 10;
    for (int i = 0; i < combo->count(); ++i)
        width = std::max(width, metrics.horizontalAdvance(combo->itemText(i)));
    combo->view()->setMinimumWidth(width);
    return width;
}

} // namespace mms
