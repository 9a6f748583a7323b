#pragma once

#include <QGroupBox>

namespace mms {

// The slide panel's frame, whose title carries the number of the slide shown. That number changes
// with nearly every command, and QGroupBox paints itself and the whole panel inside it again for
// any new title, which costs more than the command. Here a new number paints the title alone: the
// group box keeps a title of the same height for its layout, and the frame draws its own.
class SlideFrame final : public QGroupBox {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SlideFrame)

public:
    explicit SlideFrame(QWidget* parent = nullptr);

    void setSlideTitle(const QString& title);
    QString slideTitle() const { return title_; }

protected:
    void initStyleOption(QStyleOptionGroupBox* option) const override;

private:
    QRect titleArea() const;

    QString title_;
};

} // namespace mms
