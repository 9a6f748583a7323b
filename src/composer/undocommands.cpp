#include "composer/undocommands.h"

namespace mms {

void SlideStep::redo() {
    if (done_) {
        done_ = false;
        return;
    }
    apply();
}

ChangeSlideStep::ChangeSlideStep(SlideEditTarget& target, const QString& text, qint16 position,
                                 SlideState before, SlideState after, Burst burst, QDateTime when)
    : SlideStep(target, text), position_(position), before_(std::move(before)), after_(std::move(after)),
      burst_(burst), last_(std::move(when)) {}

bool ChangeSlideStep::mergeWith(const QUndoCommand* other) {
    const auto* next = dynamic_cast<const ChangeSlideStep*>(other);
    if (!next || next->burst_ != burst_ || burst_ == Burst::None || next->position_ != position_)
        return false;
    // A later keystroke continues the burst only if it starts where this one left the slide.
    if (next->before_.content != after_.content || last_.msecsTo(next->last_) > kBurstGapMs) return false;
    after_ = next->after_;
    last_ = next->last_;
    setObsolete(after_.content == before_.content);
    return true;
}

} // namespace mms
