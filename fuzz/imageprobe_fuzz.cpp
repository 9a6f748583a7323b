// Any bytes: the probe must stay inside its buffer and report a consistent result.
#include "image/imageprobe.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const mms::ImageProbe r = mms::checkValidImg(QByteArrayView(data, qsizetype(size)));
    if (r.answer != (r.imgType != mms::ImageProbe::Unknown)) std::abort();
    if (r.imgWidth < 0 || r.imgWidth > 65535 || r.imgHeight < 0 || r.imgHeight > 65535) std::abort();
    if (r.imgType > mms::ImageProbe::Bmp) std::abort();
    return 0;
}
