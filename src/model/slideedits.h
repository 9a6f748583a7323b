#pragma once

#include "model/cslide.h"

#include <QString>
#include <optional>

namespace mms {

// What one slide holds, apart from its place in the list.
struct SlideContent {
    SlideDur duration;
    QString picture;
    QString text;
    QString sound;

    bool operator==(const SlideContent&) const = default;
};

SlideContent contentOf(const CSlideNode& node);
void writeContent(CSlide& slides, CSlideNode& node, const SlideContent& content);
// The content of slide `position`, nothing when there is no such slide.
std::optional<SlideContent> contentAt(const CSlide& slides, qint16 position);

// Slide edits built from the list's own operations, so the history replays exactly what the
// strip commands do. Positions are 1-based.

// Puts a slide holding `content` at `position` (1 is the front, count + 1 the back).
void insertSlideAt(CSlide& slides, qint16 position, const SlideContent& content);
// Takes slide `position` out of the list; its content, or nothing when the list refused.
std::optional<SlideContent> removeSlideAt(CSlide& slides, qint16 position);
// Moves slide `from` of `count` so that it ends up at `to`: to either end with the list's moves to
// the front and back, by one place with its swap, and any other distance by taking the slide out and
// putting it back. False when the list refused.
bool moveSlideTo(CSlide& slides, qint16 from, qint16 to, qint16 count);

} // namespace mms
