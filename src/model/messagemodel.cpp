#include "model/messagemodel.h"

#include <algorithm>

namespace mms {

std::optional<SlideField> slideFieldNamed(const QString& name) {
    if (name == QLatin1String("slideDur")) return SlideField::Duration;
    if (name == QLatin1String("imgPath")) return SlideField::Picture;
    if (name == QLatin1String("text")) return SlideField::Text;
    if (name == QLatin1String("soundPath")) return SlideField::Sound;
    return std::nullopt;
}

namespace {

// Lends the position index to the list for one operation that walks before it changes anything.
class IndexLoan {
public:
    IndexLoan(CSlide& slides, const std::vector<CSlideNode*>& rows) : slides_(slides) {
        slides_.lendIndex(&rows);
    }
    ~IndexLoan() { slides_.lendIndex(nullptr); }
    IndexLoan(const IndexLoan&) = delete;
    IndexLoan& operator=(const IndexLoan&) = delete;

private:
    CSlide& slides_;
};

} // namespace

MessageModel::MessageModel(MessageSink* sink, QObject* parent) : QObject(parent), slides_(sink) {}

// The index is read again from the list after every change, over the positions the change touched:
// it cannot drift from the list, and a change in the middle of a long message costs no full walk.
void MessageModel::reindex() {
    rows_.clear();
    for (CSlideNode* n = slides_.firstItem().get(); n; n = n->NextNode.get())
        rows_.push_back(n);
}

void MessageModel::reindex(int first, int last) {
    first = std::max(first, 1);
    last = std::min(last, count());
    CSlideNode* n = first == 1 ? slides_.firstItem().get() : rows_[size_t(first - 2)]->NextNode.get();
    for (int p = first; p <= last && n; ++p, n = n->NextNode.get())
        rows_[size_t(p - 1)] = n;
}

void MessageModel::indexInserted(int position) {
    rows_.insert(rows_.begin() + (position - 1), nullptr);
    reindex(position, position);
}

void MessageModel::indexRemoved(int position) {
    rows_.erase(rows_.begin() + (position - 1));
}

CSlideNode* MessageModel::node(int position) const {
    return position >= 1 && position <= count() ? rows_[static_cast<size_t>(position - 1)] : nullptr;
}

const CSlideNode* MessageModel::at(int position) const {
    return node(position);
}

std::optional<SlideContent> MessageModel::contentAt(int position) const {
    const CSlideNode* n = node(position);
    if (!n) return std::nullopt;
    return contentOf(*n);
}

void MessageModel::stampNew(int position, quint64 id) {
    if (CSlideNode* n = node(position)) n->id = id != 0 ? id : nextId_++;
}

qint16 MessageModel::addSlide(qint16 selected, const SlideContent& c) {
    const int total = count();
    const bool atBack = total == 0 || selected < 1 || selected >= total;
    const qint16 position = static_cast<qint16>(atBack ? total + 1 : selected + 1);
    emit aboutToInsert(position);
    if (atBack) {
        // The back is reached through the tail: no walk.
        slides_.InsertAtBack(c.duration, c.picture, c.text, c.sound);
    } else {
        const IndexLoan loan(slides_, rows_);
        slides_.InsertIntoList(selected, c.duration, c.picture, c.text, c.sound);
    }
    indexInserted(position);
    stampNew(position, 0);
    emit inserted(position);
    emit sizeChanged();
    return position;
}

void MessageModel::insertSlide(qint16 position, const SlideContent& content, quint64 id) {
    position = static_cast<qint16>(std::clamp<int>(position, 1, count() + 1));
    emit aboutToInsert(position);
    {
        const IndexLoan loan(slides_, rows_);
        insertSlideAt(slides_, position, content);
    }
    indexInserted(position);
    stampNew(position, id);
    emit inserted(position);
    emit sizeChanged();
}

bool MessageModel::removeSlide(qint16 position) {
    if (!node(position)) {
        // Out of range: the list refuses with its own message and nothing changes.
        (void)slides_.RemoveFromList(position);
        return false;
    }
    emit aboutToRemove(position);
    bool done = false;
    {
        const IndexLoan loan(slides_, rows_);
        done = slides_.RemoveFromList(position).has_value();
    }
    if (done) indexRemoved(position);
    emit removed(position);
    emit sizeChanged();
    return done;
}

SwapResult MessageModel::swapTwoNodes(qint16 position, bool towardsFront) {
    const QString shift = towardsFront ? QStringLiteral("LEFT") : QStringLiteral("RIGHT");
    // Fewer than two slides: the list refuses with its own message.
    if (count() < 2) return slides_.SwapTwoNodes(position, shift);
    const int to = towardsFront ? position - 1 : position + 1;
    if (!node(position) || !node(to)) return SwapResult::OutOfBound;
    emit aboutToMove(position, to);
    SwapResult result = SwapResult::Refused;
    {
        const IndexLoan loan(slides_, rows_);
        result = slides_.SwapTwoNodes(position, shift);
    }
    reindex(std::min<int>(position, to), std::max<int>(position, to));
    emit moved(position, to);
    return result;
}

void MessageModel::swapAtFront(qint16 position) {
    if (position < 2 || !node(position)) return;
    emit aboutToMove(position, 1);
    {
        const IndexLoan loan(slides_, rows_);
        slides_.SwapAtFront(position, static_cast<qint16>(count()));
    }
    reindex(1, position);
    emit moved(position, 1);
}

void MessageModel::swapAtBack(qint16 position) {
    const int last = count();
    if (!node(position) || position == last) return;
    emit aboutToMove(position, last);
    {
        const IndexLoan loan(slides_, rows_);
        slides_.SwapAtBack(position);
    }
    reindex(position, last);
    emit moved(position, last);
}

bool MessageModel::moveSlide(qint16 from, qint16 to) {
    const CSlideNode* moving = node(from);
    if (!moving || !node(to)) return false;
    if (from == to) return true;
    const quint64 id = moving->id;
    emit aboutToMove(from, to);
    const bool done = moveSlideTo(slides_, from, to, static_cast<qint16>(count()));
    reindex(std::min(from, to), std::max(from, to));
    // A move over several places takes the slide out and puts it back as a new node.
    if (done) stampNew(to, id);
    emit moved(from, to);
    return done;
}

void MessageModel::setDuration(int position, const SlideDur& duration) {
    CSlideNode* n = node(position);
    if (!n || n->DataSlideDur == duration) return;
    n->DataSlideDur = duration;
    emit fieldChanged(position, SlideField::Duration);
}

void MessageModel::setField(int position, SlideField field, const QString& value) {
    CSlideNode* n = node(position);
    if (!n) return;
    switch (field) {
    case SlideField::Duration:
        return; // durations are set as durations
    case SlideField::Picture:
        if (n->DataImgPath == value) return;
        slides_.setImgPath(*n, value);
        break;
    case SlideField::Text:
        if (n->DataText == value) return;
        slides_.setText(*n, value);
        break;
    case SlideField::Sound:
        if (n->DataSoundPath == value) return;
        slides_.setSoundPath(*n, value);
        break;
    }
    emit fieldChanged(position, field);
    emit sizeChanged();
}

void MessageModel::setContent(int position, const SlideContent& content) {
    setDuration(position, content.duration);
    setField(position, SlideField::Picture, content.picture);
    setField(position, SlideField::Text, content.text);
    setField(position, SlideField::Sound, content.sound);
}

void MessageModel::remeasure(int position) {
    if (CSlideNode* n = node(position)) {
        slides_.remeasure(*n);
        emit sizeChanged();
    }
}

void MessageModel::remeasureAll() {
    slides_.remeasureAll();
    emit sizeChanged();
}

void MessageModel::load(const QList<SlideContent>& slides) {
    emit aboutToReset();
    slides_.Destory();
    for (const SlideContent& c : slides) {
        if (slides_.runningSlideCount() >= CSlide::kMaxSlides) break;
        slides_.InsertAtBack(c.duration, c.picture, c.text, c.sound);
    }
    reindex();
    for (CSlideNode* n : rows_)
        n->id = nextId_++;
    emit reset();
    emit sizeChanged();
}

void MessageModel::clear() {
    emit aboutToReset();
    slides_.Destory();
    rows_.clear();
    emit reset();
    emit sizeChanged();
}

} // namespace mms
