#include "model/cslide.h"

#include "model/slidesize.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace mms {

namespace {
const char kListEmpty[] = "List is empty";
const char kOutOfBound[] = "Out of List Bound";
const char kOutOfBoundAfter[] = ">> Out of List Bound";
const char kOutOfBoundBefore[] = "<< Out of List Bound";
const char kSwapTwoOnly[] = "Swap two nodes only";
const QString kLeft = QStringLiteral("LEFT");

// Releases a chain of nodes one by one: a recursive release of 32767 shared pointers could
// exhaust the stack. Stops at a node somebody else still holds.
void releaseChain(NodePtr node) {
    while (node && node.use_count() == 1) {
        NodePtr next = std::move(node->NextNode);
        node = std::move(next);
    }
}
} // namespace

NodePtr CSlideIterator::NextItem() {
    NodePtr current = bookmark_;
    if (current) bookmark_ = current->NextNode;
    return current;
}

CSlide::~CSlide() {
    tail_.reset();
    releaseChain(std::move(head_));
}

void CSlide::refuse(const char* text) const {
    if (sink_) sink_->inform(QString::fromLatin1(text));
}

// Every node made here is linked into the list by its caller, so its share is counted at once.
NodePtr CSlide::makeNode(const SlideDur& dur, const QString& img, const QString& text, const QString& sound) {
    auto node = std::make_shared<CSlideNode>();
    node->DataSlideDur = dur;
    node->DataImgPath = img;
    node->DataText = text;
    node->DataSoundPath = sound;
    node->share = measureShare(*node);
    count(node->share, +1);
    return node;
}

NodePtr CSlide::copyNode(const CSlideNode& of) {
    auto node = std::make_shared<CSlideNode>(of);
    node->NextNode.reset();
    count(node->share, +1);
    return node;
}

// Without an index the walk steps through references to the links, so that passing a node costs
// no reference count.
const NodePtr& CSlide::linkTo(qint16 position) const {
    if (index_ && position >= 2 && size_t(position - 1) <= index_->size())
        return (*index_)[size_t(position - 2)]->NextNode;
    const NodePtr* node = &head_;
    for (int step = 1; step < position && *node; ++step)
        node = &(*node)->NextNode;
    return *node;
}

NodePtr CSlide::walkTo(qint16 position, const char* boundMessage) const {
    const NodePtr& node = linkTo(position);
    if (!node) refuse(boundMessage);
    return node;
}

NodePtr CSlide::nodeAt(qint16 position) const {
    return position < 1 ? nullptr : linkTo(position);
}

bool CSlide::Destory() {
    tail_.reset();
    releaseChain(std::move(head_));
    head_.reset();
    fileName_.clear();
    totals_ = Totals{};
    return false;
}

void CSlide::InsertAtFront(const SlideDur& dur, const QString& img, const QString& text,
                           const QString& sound) {
    linkAtFront(makeNode(dur, img, text, sound));
}

void CSlide::linkAtFront(NodePtr node) {
    if (IsEmpty()) {
        head_ = tail_ = node;
    } else {
        node->NextNode = head_;
        head_ = node;
    }
}

void CSlide::InsertAtBack(const SlideDur& dur, const QString& img, const QString& text,
                          const QString& sound) {
    linkAtBack(makeNode(dur, img, text, sound));
}

void CSlide::linkAtBack(NodePtr node) {
    if (IsEmpty()) {
        head_ = tail_ = node;
    } else {
        tail_->NextNode = node;
        tail_ = node;
    }
}

void CSlide::InsertIntoList(qint16 selected, const SlideDur& dur, const QString& img, const QString& text,
                            const QString& sound) {
    if (IsEmpty()) {
        InsertAtBack(dur, img, text, sound);
        return;
    }
    NodePtr at = walkTo(selected, kOutOfBound);
    if (!at) return;
    NodePtr node = makeNode(dur, img, text, sound);
    node->NextNode = at->NextNode;
    at->NextNode = node;
    if (at == tail_) tail_ = node;
}

std::optional<SlideDur> CSlide::RemoveFromFront() {
    if (IsEmpty()) {
        refuse(kListEmpty);
        return std::nullopt;
    }
    NodePtr removed = head_;
    if (head_ == tail_) {
        head_.reset();
        tail_.reset();
    } else {
        head_ = head_->NextNode;
    }
    forget(removed);
    return removed->DataSlideDur;
}

std::optional<SlideDur> CSlide::RemoveFromBack() {
    if (IsEmpty()) {
        refuse(kListEmpty);
        return std::nullopt;
    }
    NodePtr removed = tail_;
    forget(removed);
    if (head_ == tail_) {
        head_.reset();
        tail_.reset();
        return removed->DataSlideDur;
    }
    NodePtr node = head_;
    while (node->NextNode != tail_)
        node = node->NextNode;
    node->NextNode.reset();
    tail_ = node;
    return removed->DataSlideDur;
}

std::optional<SlideDur> CSlide::RemoveFromList(const qint16& index) {
    if (IsEmpty()) {
        refuse(kListEmpty);
        return std::nullopt;
    }
    if (head_ == tail_) {
        if (index != 1) {
            refuse(kOutOfBound);
            return std::nullopt;
        }
        return RemoveFromFront();
    }
    if (index < 1) {
        refuse(kOutOfBound);
        return std::nullopt;
    }
    if (index == 1) {
        NodePtr removed = head_;
        head_ = head_->NextNode;
        if (!head_->NextNode) tail_ = head_;
        forget(removed);
        return removed->DataSlideDur;
    }
    if (index == 2) {
        NodePtr removed = head_->NextNode;
        head_->NextNode = removed->NextNode;
        if (!head_->NextNode) tail_ = head_;
        forget(removed);
        return removed->DataSlideDur;
    }
    NodePtr before = linkTo(static_cast<qint16>(index - 1));
    if (!before || !before->NextNode) {
        refuse(kOutOfBoundAfter);
        return std::nullopt;
    }
    // "index is the last position" is asked of the node itself rather than of a count, which could
    // overflow on a list longer than positions reach.
    NodePtr removed = before->NextNode;
    before->NextNode = removed->NextNode;
    if (removed == tail_) tail_ = before;
    forget(removed);
    return removed->DataSlideDur;
}

SwapResult CSlide::SwapTwoNodes(qint16 index, const QString& shift) {
    if (IsEmpty()) {
        refuse(kListEmpty);
        return SwapResult::Refused;
    }
    if (head_ == tail_) {
        refuse(kSwapTwoOnly);
        return SwapResult::Refused;
    }
    if (index == 1 || (shift == kLeft && index == 2)) {
        NodePtr first = head_;
        NodePtr second = first->NextNode;
        first->NextNode = second->NextNode;
        second->NextNode = first;
        head_ = second;
    } else {
        if (shift == kLeft) --index;
        NodePtr before = walkTo(static_cast<qint16>(index - 1), kOutOfBound);
        if (!before) return SwapResult::OutOfBound;
        NodePtr first = before->NextNode;
        NodePtr second = first ? first->NextNode : nullptr;
        if (!second) {
            refuse(kOutOfBound);
            return SwapResult::OutOfBound;
        }
        before->NextNode = second;
        first->NextNode = second->NextNode;
        second->NextNode = first;
    }
    if (tail_->NextNode) tail_ = tail_->NextNode;
    return SwapResult::Swapped;
}

// The moves to either end have no emptiness test of their own: on an empty list the walk finds no
// node and they show their bound message like any other missing node.
void CSlide::SwapAtFront(qint16 index, qint16 last) {
    if (index != last) {
        NodePtr before = walkTo(static_cast<qint16>(index - 1), kOutOfBoundAfter);
        if (!before) return;
        NodePtr moved = before->NextNode;
        if (!moved) {
            refuse(kOutOfBoundAfter);
            return;
        }
        linkAtFront(copyNode(*moved));
        before->NextNode = moved->NextNode;
        if (moved == tail_) tail_ = before;
        forget(moved);
        return;
    }
    NodePtr before = walkTo(static_cast<qint16>(last - 1), kOutOfBoundBefore);
    if (!before) return;
    // `last` must be the tail's position: cutting the list after a node that is not next to the
    // tail would silently drop the slides between them.
    if (before == tail_ ? head_ != tail_ : before->NextNode != tail_) {
        refuse(kOutOfBoundBefore);
        return;
    }
    NodePtr moved = tail_;
    linkAtFront(copyNode(*moved));
    // On a one-slide list the walked-to node is the moved one: it stays, behind its copy.
    if (before != moved) forget(moved);
    before->NextNode.reset();
    tail_ = before;
}

void CSlide::SwapAtBack(qint16 index) {
    if (index == 1) {
        if (IsEmpty()) {
            refuse(kOutOfBoundBefore);
            return;
        }
        NodePtr moved = head_;
        linkAtBack(copyNode(*moved));
        head_ = head_->NextNode;
        forget(moved);
        return;
    }
    NodePtr before = walkTo(static_cast<qint16>(index - 1), kOutOfBoundBefore);
    if (!before) return;
    NodePtr moved = before->NextNode;
    if (!moved) {
        refuse(kOutOfBoundBefore);
        return;
    }
    linkAtBack(copyNode(*moved));
    before->NextNode = moved->NextNode;
    forget(moved);
}

CSlideIterator CSlide::Iterator() const {
    CSlideIterator it;
    it.bookmark_ = head_;
    it.start_ = head_;
    return it;
}

namespace {
qsizetype lastSeparator(const QString& path) {
    return std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
}
} // namespace

QString CSlide::extractFilePath(const QString& source) {
    const qsizetype sep = lastSeparator(source);
    return sep < 0 ? QString() : source.left(sep + 1);
}

QString CSlide::extractFileName(const QString& source) {
    const qsizetype sep = lastSeparator(source);
    return sep < 0 ? source : source.mid(sep + 1);
}

QString CSlide::extractFileType(const QString& source) {
    const qsizetype dot = source.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? source : source.mid(dot + 1);
}

qint16 CSlide::getTotalSlide() const {
    int count = 0;
    for (const CSlideNode* node = head_.get(); node; node = node->NextNode.get()) {
        if (++count > kMaxSlides) throw std::overflow_error("slide count overflow");
    }
    return static_cast<qint16>(count);
}

} // namespace mms
