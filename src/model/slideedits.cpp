#include "model/slideedits.h"

namespace mms {

SlideContent contentOf(const CSlideNode& node) {
    return SlideContent{node.DataSlideDur, node.DataImgPath, node.DataText, node.DataSoundPath};
}

// Through the list's setters, so that its running size total follows.
void writeContent(CSlide& slides, CSlideNode& node, const SlideContent& content) {
    node.DataSlideDur = content.duration;
    slides.setImgPath(node, content.picture);
    slides.setText(node, content.text);
    slides.setSoundPath(node, content.sound);
}

std::optional<SlideContent> contentAt(const CSlide& slides, qint16 position) {
    const NodePtr node = slides.nodeAt(position);
    if (!node) return std::nullopt;
    return contentOf(*node);
}

void insertSlideAt(CSlide& slides, qint16 position, const SlideContent& c) {
    if (slides.IsEmpty()) {
        slides.InsertAtBack(c.duration, c.picture, c.text, c.sound);
    } else if (position <= 1) {
        slides.InsertAtFront(c.duration, c.picture, c.text, c.sound);
    } else {
        slides.InsertIntoList(static_cast<qint16>(position - 1), c.duration, c.picture, c.text, c.sound);
    }
}

std::optional<SlideContent> removeSlideAt(CSlide& slides, qint16 position) {
    std::optional<SlideContent> content = contentAt(slides, position);
    if (!content || !slides.RemoveFromList(position)) return std::nullopt;
    return content;
}

bool moveSlideTo(CSlide& slides, qint16 from, qint16 to, qint16 count) {
    if (from < 1 || to < 1 || from > count || to > count) return false;
    if (from == to) return true;
    if (to == 1) {
        slides.SwapAtFront(from, count);
    } else if (to == count) {
        slides.SwapAtBack(from);
    } else if (to == from - 1 || to == from + 1) {
        return slides.SwapTwoNodes(from, to < from ? QStringLiteral("LEFT") : QStringLiteral("RIGHT")) ==
               SwapResult::Swapped;
    } else {
        const std::optional<SlideContent> moved = removeSlideAt(slides, from);
        if (!moved) return false;
        insertSlideAt(slides, to, *moved);
    }
    return true;
}

} // namespace mms
