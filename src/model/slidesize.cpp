// The message's size estimate: counted from scratch (getTotalSize) and as a running total that a
// keystroke updates in constant time.
#include "model/slidesize.h"

#include "model/filelength.h"

#include <limits>
#include <stdexcept>

namespace mms {

namespace {

qint64 measured(const QString& path, LengthCache* cache) {
    if (!cache) return fileLength(path);
    const auto known = cache->constFind(path);
    if (known != cache->constEnd()) return *known;
    const qint64 length = fileLength(path);
    cache->insert(path, length);
    return length;
}

} // namespace

SizeShare measureShare(const CSlideNode& node, LengthCache* cache) {
    SizeShare share;
    share.picture = !node.DataImgPath.isEmpty();
    share.text = !node.DataText.isEmpty();
    share.sound = !node.DataSoundPath.isEmpty();
    if (share.picture) share.pictureBytes = measured(node.DataImgPath, cache);
    if (share.text) share.textChars = node.DataText.size() + 2;
    if (share.sound) share.soundBytes = measured(node.DataSoundPath, cache);
    return share;
}

void CSlide::count(const SizeShare& share, int sign) {
    totals_.slides += sign;
    totals_.pictures += sign * share.picture;
    totals_.texts += sign * share.text;
    totals_.sounds += sign * share.sound;
    totals_.pictureBytes += sign * share.pictureBytes;
    totals_.textChars += sign * share.textChars;
    totals_.soundBytes += sign * share.soundBytes;
}

// 499 + the three strings + 36 per slide + (file + 41) per picture + (characters + 44) per text +
// (file + 30) per sound + 27, 28 and 37 once for any picture, text and sound.
qint32 CSlide::sizeOf(const Totals& t, const QString& sender, const QString& recipient,
                      const QString& subject) {
    if (t.slides == 0) return 0;
    const qint64 base = sender.size() + recipient.size() + subject.size() + 59;
    qint64 overhead = 36 * t.slides + 41 * t.pictures + 42 * t.texts + 30 * t.sounds;
    if (t.pictures > 0) overhead += t.pictureBytes + 27;
    if (t.texts > 0) overhead += t.textChars + 28;
    if (t.sounds > 0) overhead += t.soundBytes + 37;
    const qint64 total = base + overhead + 440;
    if (total > std::numeric_limits<qint32>::max()) throw std::overflow_error("message size overflow");
    return static_cast<qint32>(total);
}

qint32 CSlide::getTotalSize(const QString& sender, const QString& recipient, const QString& subject) const {
    Totals fresh;
    for (const CSlideNode* node = head_.get(); node; node = node->NextNode.get()) {
        const SizeShare share = measureShare(*node);
        ++fresh.slides;
        fresh.pictures += share.picture;
        fresh.texts += share.text;
        fresh.sounds += share.sound;
        fresh.pictureBytes += share.pictureBytes;
        fresh.textChars += share.textChars;
        fresh.soundBytes += share.soundBytes;
    }
    return sizeOf(fresh, sender, recipient, subject);
}

qint32 CSlide::runningTotalSize(const QString& sender, const QString& recipient,
                                const QString& subject) const {
    return sizeOf(totals_, sender, recipient, subject);
}

void CSlide::setImgPath(CSlideNode& node, const QString& path) {
    count(node.share, -1);
    node.DataImgPath = path;
    node.share.picture = !path.isEmpty();
    node.share.pictureBytes = node.share.picture ? fileLength(path) : 0;
    count(node.share, +1);
}

void CSlide::setText(CSlideNode& node, const QString& text) {
    count(node.share, -1);
    node.DataText = text;
    node.share.text = !text.isEmpty();
    node.share.textChars = node.share.text ? text.size() + 2 : 0;
    count(node.share, +1);
}

void CSlide::setSoundPath(CSlideNode& node, const QString& path) {
    count(node.share, -1);
    node.DataSoundPath = path;
    node.share.sound = !path.isEmpty();
    node.share.soundBytes = node.share.sound ? fileLength(path) : 0;
    count(node.share, +1);
}

void CSlide::remeasure(CSlideNode& node) {
    count(node.share, -1);
    node.share = measureShare(node);
    count(node.share, +1);
}

void CSlide::remeasureAll() {
    LengthCache lengths;
    totals_ = Totals{};
    for (CSlideNode* node = head_.get(); node; node = node->NextNode.get()) {
        node->share = measureShare(*node, &lengths);
        count(node->share, +1);
    }
}

} // namespace mms
