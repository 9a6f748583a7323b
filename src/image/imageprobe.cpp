#include "image/imageprobe.h"

#include <QFile>
#include <algorithm>

namespace mms {

namespace {

// Every scan position stays below this, so reads up to nine bytes further never leave the buffer.
constexpr int kScanLimit = 65525;

// The first 64 KiB of the file as the probe sees them: bytes past the end of a shorter file read as
// zero. Every index used is below kImageProbeBytes.
class Buffer {
public:
    explicit Buffer(QByteArrayView head)
        : data_(head.data()), size_(std::min<qsizetype>(head.size(), kImageProbeBytes)) {}
    quint8 operator[](int k) const { return k < size_ ? quint8(data_[k]) : 0; }
    // Where the scans give up: position 65525, or the end of a shorter file, since the zero bytes
    // after it hold no 255 and so no marker.
    int scanLimit() const { return int(std::min<qsizetype>(size_, kScanLimit)); }

private:
    const char* data_;
    qsizetype size_;
};

qint32 bigEndianAt(const Buffer& b, int k) {
    return bytesToWord(b[k + 1], b[k]);
}
qint32 littleEndianAt(const Buffer& b, int k) {
    return bytesToWord(b[k], b[k + 1]);
}

bool isStartOfFrame(quint8 m) {
    return (m >= 0xC0 && m <= 0xCF) && m != 0xC4 && m != 0xC8 && m != 0xCC;
}

void probePng(const Buffer& b, ImageProbe& r) {
    if (!(b[0] == 137 && b[1] == 'P' && b[2] == 'N')) return;
    r.imgType = ImageProbe::Png;
    r.answer = true;
    const quint8 bitDepth = b[24];
    switch (b[25]) {
    case 0:
        r.imgDepth = bitDepth;
        break;
    case 2:
        r.imgDepth = quint8(bitDepth * 3);
        break;
    case 3:
        r.imgDepth = 8;
        break;
    case 4:
        r.imgDepth = quint8(bitDepth * 2);
        break;
    case 6:
        r.imgDepth = quint8(bitDepth * 4);
        break;
    default:
        r.imgType = ImageProbe::Unknown;
        break;
    }
    if (r.imgType == ImageProbe::Png) {
        r.imgWidth = bigEndianAt(b, 18);
        r.imgHeight = bigEndianAt(b, 22);
    }
}

void probeGif(const Buffer& b, ImageProbe& r) {
    if (!(b[0] == 'G' && b[1] == 'I' && b[2] == 'F')) return;
    r.imgType = ImageProbe::Gif;
    r.answer = true;
    r.imgWidth = littleEndianAt(b, 6);
    r.imgHeight = littleEndianAt(b, 8);
    r.imgDepth = quint8((b[10] & 7) + 1);
}

void probeBmp(const Buffer& b, ImageProbe& r) {
    if (!(b[0] == 'B' && b[1] == 'M')) return;
    r.imgType = ImageProbe::Bmp;
    r.answer = true;
    r.imgWidth = littleEndianAt(b, 18);
    r.imgHeight = littleEndianAt(b, 22);
    r.imgDepth = b[28];
}

void takeFrame(quint8 h1, quint8 h0, quint8 w1, quint8 w0, quint8 components, ImageProbe& r) {
    r.imgType = ImageProbe::Jpeg;
    r.answer = true;
    r.imgHeight = bytesToWord(h0, h1);
    r.imgWidth = bytesToWord(w0, w1);
    r.imgDepth = quint8(components * 8);
}

// Finds the first start-of-frame marker after the start-of-image pattern, skipping segments by
// their declared length. Every failing exit clears the answer. When the chain runs into the scan
// limit (and only then) `resumeAt` is where it stopped, so that the rest of the file can be followed.
void scanJpeg(const Buffer& b, ImageProbe& r, qint64& resumeAt) {
    r.answer = false;
    resumeAt = -1;
    const int limit = b.scanLimit();
    int i = 0;
    while (!(b[i] == 255 && b[i + 1] == 216 && b[i + 2] == 255)) {
        if (++i >= limit) return;
    }
    int j = i + 2;
    if (j >= limit) return;
    for (;;) {
        while (!(b[j] == 255 && b[j + 1] != 255)) {
            if (++j >= limit) {
                resumeAt = j;
                return;
            }
        }
        if (isStartOfFrame(b[j + 1])) break;
        j = j + 1 + bigEndianAt(b, j + 2);
        if (j >= limit) {
            resumeAt = j;
            return;
        }
    }
    takeFrame(b[j + 5], b[j + 6], b[j + 7], b[j + 8], b[j + 9], r);
}

// Where a segment skip lands (the segment's last byte, by the chain's arithmetic) the next marker
// follows at once, perhaps after a few fill bytes. Past the buffer only segment headers are read:
// this many bytes without a marker end the chain, so a file that merely starts like a JPEG is not
// read through.
constexpr int kMarkerGap = 16;

// The whole file, for following the chain past the buffer: reads a segment header at a time.
class Tail {
public:
    virtual ~Tail() = default;
    virtual qint64 size() const = 0;
    // n bytes from pos, zero past the end.
    virtual void read(qint64 pos, quint8* out, int n) = 0;
};

class ViewTail final : public Tail {
public:
    explicit ViewTail(QByteArrayView bytes) : bytes_(bytes) {}
    qint64 size() const override { return bytes_.size(); }
    void read(qint64 pos, quint8* out, int n) override {
        for (int k = 0; k < n; ++k)
            out[k] = pos + k < bytes_.size() ? quint8(bytes_[pos + k]) : 0;
    }

private:
    QByteArrayView bytes_;
};

class FileTail final : public Tail {
public:
    explicit FileTail(QFile& file) : file_(file), size_(file.size()) {}
    qint64 size() const override { return size_; }
    void read(qint64 pos, quint8* out, int n) override {
        std::fill(out, out + n, quint8(0));
        if (pos < size_ && file_.seek(pos)) file_.read(reinterpret_cast<char*>(out), n);
    }

private:
    QFile& file_;
    qint64 size_;
};

// Goes on from where the buffer scan stopped, seeking from segment header to segment header until
// the frame header or the end of the file.
void followChain(Tail& tail, qint64 j, ImageProbe& r) {
    const qint64 end = tail.size();
    while (j < end) {
        quint8 h[kMarkerGap + 10];
        tail.read(j, h, int(sizeof h));
        int k = 0;
        while (!(h[k] == 255 && h[k + 1] != 255)) {
            if (++k >= kMarkerGap || j + k >= end) return;
        }
        if (isStartOfFrame(h[k + 1])) {
            takeFrame(h[k + 5], h[k + 6], h[k + 7], h[k + 8], h[k + 9], r);
            return;
        }
        j = j + k + 1 + bytesToWord(h[k + 3], h[k + 2]);
    }
}

ImageProbe probe(QByteArrayView head, Tail& tail) {
    const Buffer b(head);
    ImageProbe r;
    probePng(b, r);
    probeGif(b, r);
    probeBmp(b, r);
    if (r.imgType != ImageProbe::Unknown) return r;
    qint64 resumeAt = -1;
    scanJpeg(b, r, resumeAt);
    if (resumeAt >= 0) followChain(tail, resumeAt, r);
    return r;
}

} // namespace

ImageProbe checkValidImg(QByteArrayView bytes) {
    ViewTail tail(bytes);
    return probe(bytes, tail);
}

Status checkValidImg(const QString& path, ImageProbe& result) {
    result = ImageProbe();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("%1: %2").arg(path, file.errorString()));
    const QByteArray head = file.read(kImageProbeBytes);
    if (head.isEmpty() && file.error() != QFileDevice::NoError)
        return Status::failure(QStringLiteral("%1: %2").arg(path, file.errorString()));
    FileTail tail(file);
    result = probe(QByteArrayView(head), tail);
    if (file.error() != QFileDevice::NoError) {
        result = ImageProbe();
        return Status::failure(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
    return Status::ok();
}

} // namespace mms
