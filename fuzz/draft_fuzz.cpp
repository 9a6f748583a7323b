// Any bytes as the draft left by a crash: decoded or refused with a reason. A decoded draft fits the
// message (slides within the limit, the selection one of them or none) and survives being written
// and read again unchanged.
#include "composer/draftstore.h"
#include "fuzzcheck.h"
#include "model/cslide.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    const std::optional<mms::Draft> draft = mms::decodeDraft(bytes, &error);
    if (!draft) {
        FUZZ_CHECK(!error.isEmpty());
        return 0;
    }
    FUZZ_CHECK(draft->slides.size() <= mms::CSlide::kMaxSlides);
    FUZZ_CHECK(draft->current >= 0 && draft->current <= draft->slides.size());
    const QByteArray written = mms::encodeDraft(*draft);
    const std::optional<mms::Draft> again = mms::decodeDraft(written, &error);
    FUZZ_CHECK(again.has_value());
    FUZZ_CHECK(mms::encodeDraft(*again) == written);
    return 0;
}
