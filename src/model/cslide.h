#pragma once

#include "model/messagesink.h"
#include "model/slidedur.h"

#include <QString>
#include <memory>
#include <optional>
#include <vector>

namespace mms {

// What one slide adds to the size estimate, as last measured: whether it has a picture, a text and
// a sound, and their lengths (file bytes, text characters).
struct SizeShare {
    bool picture = false, text = false, sound = false;
    qint64 pictureBytes = 0, textChars = 0, soundBytes = 0;
};

// One slide. Plain data: the node has no behaviour of its own.
class CSlideNode {
public:
    SlideDur DataSlideDur;
    std::shared_ptr<CSlideNode> NextNode;
    QString DataImgPath;
    QString DataText;
    QString DataSoundPath;
    // What the list's running size total holds for this slide; kept by CSlide.
    SizeShare share;
    // Which slide this is, for views that keep something per slide (thumbnails). Copied with the
    // node's values, so a slide keeps it through the moves to either end, which make a new node.
    quint64 id = 0;
};

using NodePtr = std::shared_ptr<CSlideNode>;

// Walks the list from a bookmark; nothing in the program needs more than this.
class CSlideIterator {
public:
    void StartNode(NodePtr node) { bookmark_ = std::move(node); }
    NodePtr NextItem();
    bool HasMoreItems() const { return bookmark_ != nullptr; }
    void ResetmBookmark() { bookmark_ = start_; }

private:
    friend class CSlide;
    NodePtr bookmark_;
    NodePtr start_; // where the iterator was created; ResetmBookmark returns here
};

// Result of SwapTwoNodes: the composer reports only Refused (the list cannot swap at all);
// OutOfBound has already shown its own bound message.
enum class SwapResult { Swapped, Refused, OutOfBound };

// The message: a singly linked list of slides with 1-based, 16-bit positions.
// Refusals are shown through the message sink with fixed English texts and leave the list unchanged.
class CSlide {
public:
    static constexpr int kMaxSlides = 32767;

    explicit CSlide(MessageSink* sink = nullptr) : sink_(sink) {}
    ~CSlide();
    CSlide(const CSlide&) = delete;
    CSlide& operator=(const CSlide&) = delete;

    void setMessageSink(MessageSink* sink) { sink_ = sink; }

    NodePtr firstItem() const { return head_; }
    NodePtr lastItem() const { return tail_; }
    bool IsEmpty() const { return head_ == nullptr; }
    bool Destory();

    void InsertAtFront(const SlideDur& dur, const QString& img, const QString& text, const QString& sound);
    void InsertAtBack(const SlideDur& dur, const QString& img, const QString& text, const QString& sound);
    void InsertIntoList(qint16 selected, const SlideDur& dur, const QString& img, const QString& text,
                        const QString& sound);
    // The removes return the removed slide's duration, or nothing when refused.
    std::optional<SlideDur> RemoveFromFront();
    std::optional<SlideDur> RemoveFromBack();
    std::optional<SlideDur> RemoveFromList(const qint16& index);
    SwapResult SwapTwoNodes(qint16 index, const QString& shift);
    void SwapAtFront(qint16 index, qint16 last);
    void SwapAtBack(qint16 index);
    CSlideIterator Iterator() const;

    // Path helpers. Both '\' and '/' count as separators; the last one of either wins.
    static QString extractFilePath(const QString& source);
    static QString extractFileName(const QString& source);
    static QString extractFileType(const QString& source);

    // Number of slides; throws std::overflow_error past 32767.
    qint16 getTotalSlide() const;
    // Estimated size in bytes of the message as an MMS, counted from scratch: every media file is
    // measured again. A media file that cannot be read counts 0 bytes. Throws std::overflow_error when
    // the sum leaves the 32-bit range.
    qint32 getTotalSize(const QString& sender, const QString& recipient, const QString& subject) const;

    // The same estimate from a running total, without touching the disk: each slide's share is
    // measured when its path or text is set through the list (inserts and the setters below), so
    // the figure equals getTotalSize as long as no media file changed length since and no node
    // field was written directly. Same overflow rule.
    qint32 runningTotalSize(const QString& sender, const QString& recipient, const QString& subject) const;
    // The number of slides, kept with the running total (getTotalSlide counts them by walking).
    qint64 runningSlideCount() const { return totals_.slides; }
    // Edits of a slide in the list that keep the running total.
    void setImgPath(CSlideNode& node, const QString& path);
    void setText(CSlideNode& node, const QString& text);
    void setSoundPath(CSlideNode& node, const QString& path);
    // Measures one slide again from its fields (its files may have changed outside the program).
    void remeasure(CSlideNode& node);
    // Measures every slide again; a file shared by several slides is measured once.
    void remeasureAll();

    void setfolderpath(const QString& infolder) { folderPath_ = infolder; }
    void setfilename(const QString& inFile) { fileName_ = inFile; }
    const QString& folderPath() const { return folderPath_; }
    const QString& fileName() const { return fileName_; }

    // The node at a 1-based position, reached by the plain walk from the head; null when absent.
    NodePtr nodeAt(qint16 position) const;

    // An index of the nodes in list order kept by the list's owner. While one is lent, a walk to a
    // position reads the node before it from the index rather than stepping along every link; the
    // owner lends it only for one operation whose walk comes before its change.
    void lendIndex(const std::vector<CSlideNode*>* rows) { index_ = rows; }

private:
    void refuse(const char* text) const;
    // Walks position-1 steps from the head, testing each node before stepping.
    NodePtr walkTo(qint16 position, const char* boundMessage) const;
    // The link holding the node at `position` (the head for 1 and below); a null link past the end.
    const NodePtr& linkTo(qint16 position) const;
    NodePtr makeNode(const SlideDur& dur, const QString& img, const QString& text, const QString& sound);
    void linkAtFront(NodePtr node);
    void linkAtBack(NodePtr node);
    // A new node with the values and the measured share of `of` (the moves to either end).
    NodePtr copyNode(const CSlideNode& of);
    // The running total gains or loses a slide's share.
    void count(const SizeShare& share, int sign);
    void forget(const NodePtr& removed) { count(removed->share, -1); }
    struct Totals;
    static qint32 sizeOf(const Totals& totals, const QString& sender, const QString& recipient,
                         const QString& subject);

    NodePtr head_;
    NodePtr tail_;
    const std::vector<CSlideNode*>* index_ = nullptr;
    QString fileName_;
    QString folderPath_;
    MessageSink* sink_ = nullptr;

    struct Totals {
        qint64 slides = 0, pictures = 0, texts = 0, sounds = 0;
        qint64 pictureBytes = 0, textChars = 0, soundBytes = 0;
    } totals_;
};

} // namespace mms
