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

// Finds the first start-of-frame marker after the start-of-image pattern, skipping segments by
// their declared length. Every failing exit clears the answer.
void scanJpeg(const Buffer& b, ImageProbe& r) {
    r.answer = false;
    const int limit = b.scanLimit();
    int i = 0;
    while (!(b[i] == 255 && b[i + 1] == 216 && b[i + 2] == 255)) {
        if (++i >= limit) return;
    }
    int j = i + 2;
    if (j >= limit) return;
    for (;;) {
        while (!(b[j] == 255 && b[j + 1] != 255)) {
            if (++j >= limit) return;
        }
        if (isStartOfFrame(b[j + 1])) break;
        j = j + 1 + bigEndianAt(b, j + 2);
        if (j >= limit) return;
    }
    r.imgType = ImageProbe::Jpeg;
    r.answer = true;
    r.imgHeight = bigEndianAt(b, j + 5);
    r.imgWidth = bigEndianAt(b, j + 7);
    r.imgDepth = quint8(b[j + 9] * 8);
}

ImageProbe probeBuffer(const Buffer& b) {
    ImageProbe r;
    probePng(b, r);
    probeGif(b, r);
    probeBmp(b, r);
    if (r.imgType != ImageProbe::Unknown) return r;
    scanJpeg(b, r);
    return r;
}

} // namespace

ImageProbe checkValidImg(QByteArrayView head) {
    return probeBuffer(Buffer(head));
}

Status checkValidImg(const QString& path, ImageProbe& result) {
    result = ImageProbe();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Status::failure(QStringLiteral("%1: %2").arg(path, file.errorString()));
    const QByteArray head = file.read(kImageProbeBytes);
    if (head.isEmpty() && file.error() != QFileDevice::NoError)
        return Status::failure(QStringLiteral("%1: %2").arg(path, file.errorString()));
    result = checkValidImg(QByteArrayView(head));
    return Status::ok();
}

} // namespace mms
