// Any bytes as an AMR sound: decoded into whole 20 ms frames, or refused with a reason and nothing
// decoded. The frame walk has to stop at the end of the bytes; the sanitizers see a decoder read
// beyond it.
#include "fuzzcheck.h"
#include "sound/amrdecoder.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A copy the size of the input, so that a read past its end is caught.
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    std::vector<qint16> samples{1, 2, 3};
    const mms::Status s = mms::decodeAmr(bytes, samples);
    if (!s) {
        FUZZ_CHECK(!s.message().isEmpty() && samples.empty());
        return 0;
    }
    FUZZ_CHECK(!samples.empty() && samples.size() % 160 == 0);
    // At least one byte per frame after the header.
    FUZZ_CHECK(samples.size() / 160 <= size - 6);
    return 0;
}
