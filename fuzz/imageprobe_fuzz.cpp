// Any bytes: the probe must stay inside its buffer and agree with a literal reading of the rules on
// a zero-filled 64 KiB buffer (the probe itself stops its scans at the end of a shorter file).
#include "image/imageprobe.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

mms::ImageProbe reference(const uint8_t* data, size_t size) {
    static std::array<uint8_t, 65536> b;
    b.fill(0);
    std::memcpy(b.data(), data, std::min<size_t>(size, b.size()));
    auto be = [&](int k) { return mms::bytesToWord(b[k + 1], b[k]); };
    auto le = [&](int k) { return mms::bytesToWord(b[k], b[k + 1]); };
    mms::ImageProbe r;
    if (b[0] == 137 && b[1] == 'P' && b[2] == 'N') {
        r.imgType = 3;
        r.answer = true;
        const int depth[7] = {1, 0, 3, -1, 2, 0, 4};
        if (b[25] == 3)
            r.imgDepth = 8;
        else if (b[25] <= 6 && depth[b[25]] > 0)
            r.imgDepth = quint8(b[24] * depth[b[25]]);
        else if (b[25] != 0)
            r.imgType = 0;
        if (b[25] == 0) r.imgDepth = b[24];
        if (r.imgType == 3) r.imgWidth = be(18), r.imgHeight = be(22);
    }
    if (b[0] == 'G' && b[1] == 'I' && b[2] == 'F')
        r.imgType = 1, r.answer = true, r.imgWidth = le(6), r.imgHeight = le(8),
        r.imgDepth = quint8((b[10] & 7) + 1);
    if (b[0] == 'B' && b[1] == 'M')
        r.imgType = 4, r.answer = true, r.imgWidth = le(18), r.imgHeight = le(22), r.imgDepth = b[28];
    if (r.imgType != 0) return r;
    r.answer = false;
    int i = 0;
    while (!(b[i] == 255 && b[i + 1] == 216 && b[i + 2] == 255))
        if (++i >= 65525) return r;
    int j = i + 2;
    if (j >= 65525) return r;
    for (;;) {
        while (!(b[j] == 255 && b[j + 1] != 255))
            if (++j >= 65525) return r;
        const int m = b[j + 1];
        if (m >= 0xC0 && m <= 0xCF && m != 0xC4 && m != 0xC8 && m != 0xCC) break;
        j = j + 1 + be(j + 2);
        if (j >= 65525) return r;
    }
    r.imgType = 2, r.answer = true, r.imgHeight = be(j + 5), r.imgWidth = be(j + 7),
    r.imgDepth = quint8(b[j + 9] * 8);
    return r;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const mms::ImageProbe r = mms::checkValidImg(QByteArrayView(data, qsizetype(size)));
    if (r.answer != (r.imgType != mms::ImageProbe::Unknown)) std::abort();
    const mms::ImageProbe e = reference(data, size);
    if (r.answer != e.answer || r.imgType != e.imgType || r.imgWidth != e.imgWidth ||
        r.imgHeight != e.imgHeight || r.imgDepth != e.imgDepth)
        std::abort();
    return 0;
}
