#pragma once

#include "model/cslide.h"
#include "model/slideedits.h"

#include <QObject>
#include <optional>
#include <vector>

namespace mms {

// The four things a slide holds besides its place.
enum class SlideField { Duration, Picture, Text, Sound };

// The field names that updateCurrentSlide takes ("slideDur", "imgPath", "text", "soundPath");
// nothing for any other name.
std::optional<SlideField> slideFieldNamed(const QString& name);

// The message being composed: the one holder of its slides. Every change goes through the
// CSlide operations the commands are defined by, and is announced, before and after, with the
// 1-based positions it touched, so that the strip, the slide panel and the counters follow without
// a copy of their own. A position index beside the list makes a slide a lookup, not a walk.
class MessageModel final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MessageModel)

public:
    explicit MessageModel(MessageSink* sink, QObject* parent = nullptr);

    const CSlide& slides() const { return slides_; }
    CSlide& slides() { return slides_; }
    int count() const { return static_cast<int>(rows_.size()); }
    bool isEmpty() const { return rows_.empty(); }
    // Slide `position`, or null when there is none.
    const CSlideNode* at(int position) const;
    std::optional<SlideContent> contentAt(int position) const;

    // The add command's rule: after slide `selected`, or at the back when the list is empty or
    // `selected` is the last slide. Returns where the new slide went.
    qint16 addSlide(qint16 selected, const SlideContent& content);
    // Puts a slide at `position` (1 is the front); `id` gives it back an identity it had (history).
    void insertSlide(qint16 position, const SlideContent& content, quint64 id = 0);
    // RemoveFromList; false when the list refused (it has said why).
    bool removeSlide(qint16 position);
    // The list's own moves: one place towards the front or the back, to the front, to the back.
    SwapResult swapTwoNodes(qint16 position, bool towardsFront);
    void swapAtFront(qint16 position);
    void swapAtBack(qint16 position);
    // Any move from one position to another, built from the moves above (drags, history).
    bool moveSlide(qint16 from, qint16 to);

    // Field edits of slide `position`, through the list's setters so the running total follows.
    void setDuration(int position, const SlideDur& duration);
    void setField(int position, SlideField field, const QString& value);
    void setContent(int position, const SlideContent& content);
    // Measures the slide's or every slide's files again; says so when a figure changed.
    void remeasure(int position);
    void remeasureAll();
    // Empties the message (New, Open).
    void clear();
    // Replaces the message with `slides` at the back of each other (Open, a restored draft); at most
    // the list's limit of slides is taken.
    void load(const QList<SlideContent>& slides);

signals:
    void aboutToInsert(int position);
    void inserted(int position);
    void aboutToRemove(int position);
    void removed(int position);
    void aboutToMove(int from, int to);
    void moved(int from, int to);
    void aboutToReset();
    void reset();
    void fieldChanged(int position, mms::SlideField field);
    // The running size total may have changed.
    void sizeChanged();

private:
    void reindex();
    void reindex(int first, int last);
    void indexInserted(int position);
    void indexRemoved(int position);
    CSlideNode* node(int position) const;
    void stampNew(int position, quint64 id);

    CSlide slides_;
    std::vector<CSlideNode*> rows_;
    quint64 nextId_ = 1;
};

} // namespace mms
