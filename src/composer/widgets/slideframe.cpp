#include "composer/widgets/slideframe.h"

#include <QStyle>
#include <QStyleOptionGroupBox>

namespace mms {

SlideFrame::SlideFrame(QWidget* parent) : QGroupBox(parent) {}

void SlideFrame::setSlideTitle(const QString& title) {
    if (title == title_) return;
    const QRect before = titleArea();
    title_ = title;
    setAccessibleName(title);
    // The first title, or none, goes through the group box, which lays the panel out for it.
    if (title.isEmpty() || QGroupBox::title().isEmpty()) {
        setTitle(title);
        return;
    }
    update(before.united(titleArea()));
}

void SlideFrame::initStyleOption(QStyleOptionGroupBox* option) const {
    QGroupBox::initStyleOption(option);
    option->text = title_;
}

// The band the title is drawn in, across the frame's whole width so that a longer title fits.
QRect SlideFrame::titleArea() const {
    QStyleOptionGroupBox option;
    initStyleOption(&option);
    const QRect label = style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, this);
    return QRect(0, label.top(), width(), label.height());
}

} // namespace mms
