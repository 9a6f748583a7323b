#pragma once

#include "model/slideedits.h"

#include <QDateTime>
#include <QUndoCommand>

namespace mms {

// A slide as the history keeps it: its content and its identity, so that a slide put back is the
// same slide to the views that keep something per slide (the strip's thumbnail).
struct SlideState {
    SlideContent content;
    quint64 id = 0;
};

// What the history changes: the document carries each step out on the message and then shows the
// slide the step leaves selected.
class SlideEditTarget {
public:
    virtual void insertSlide(qint16 position, const SlideState& state) = 0;
    virtual void removeSlide(qint16 position) = 0;
    virtual void moveSlide(qint16 from, qint16 to) = 0;
    virtual void setSlideContent(qint16 position, const SlideState& state) = 0;

protected:
    ~SlideEditTarget() = default;
};

// A step of the history. The composer records a step once its command has changed the message, so
// the first redo, which the stack runs when the step is pushed, leaves the message alone.
class SlideStep : public QUndoCommand {
public:
    void redo() final;
    void undo() final { revert(); }

protected:
    SlideStep(SlideEditTarget& target, const QString& text) : QUndoCommand(text), target_(target) {}
    virtual void apply() = 0;
    virtual void revert() = 0;

    SlideEditTarget& target_;

private:
    bool done_ = true;
};

// A slide was added (or put back) at `position`.
class InsertSlideStep final : public SlideStep {
public:
    InsertSlideStep(SlideEditTarget& target, const QString& text, qint16 position, SlideState state)
        : SlideStep(target, text), position_(position), state_(std::move(state)) {}

private:
    void apply() override { target_.insertSlide(position_, state_); }
    void revert() override { target_.removeSlide(position_); }
    qint16 position_;
    SlideState state_;
};

// Slide `position`, which was `state`, was removed.
class RemoveSlideStep final : public SlideStep {
public:
    RemoveSlideStep(SlideEditTarget& target, const QString& text, qint16 position, SlideState state)
        : SlideStep(target, text), position_(position), state_(std::move(state)) {}

private:
    void apply() override { target_.removeSlide(position_); }
    void revert() override { target_.insertSlide(position_, state_); }
    qint16 position_;
    SlideState state_;
};

// Slide `from` was moved to `to`.
class MoveSlideStep final : public SlideStep {
public:
    MoveSlideStep(SlideEditTarget& target, const QString& text, qint16 from, qint16 to)
        : SlideStep(target, text), from_(from), to_(to) {}

private:
    void apply() override { target_.moveSlide(from_, to_); }
    void revert() override { target_.moveSlide(to_, from_); }
    qint16 from_;
    qint16 to_;
};

// Slide `position` changed from `before` to `after`. Typing in the text or duration box commits
// every keystroke; consecutive keystrokes on one slide, each within kBurstGapMs of the last, make
// one step, which disappears when the burst ends where it began.
class ChangeSlideStep final : public SlideStep {
public:
    enum class Burst { None, Text, Duration };
    static constexpr qint64 kBurstGapMs = 2000;

    ChangeSlideStep(SlideEditTarget& target, const QString& text, qint16 position, SlideState before,
                    SlideState after, Burst burst, QDateTime when);

    // Only bursts merge; the stack asks for equal ids before it offers a merge.
    int id() const override { return burst_ == Burst::None ? -1 : 1; }
    bool mergeWith(const QUndoCommand* other) override;

private:
    void apply() override { target_.setSlideContent(position_, after_); }
    void revert() override { target_.setSlideContent(position_, before_); }
    qint16 position_;
    SlideState before_;
    SlideState after_;
    Burst burst_;
    QDateTime last_;
};

} // namespace mms
