// Any bytes as a message index: it parses or fails naming what is wrong and leaving the result as it
// was; what parses holds at most the slides a message can have, no more than the index has lines.
#include "fuzzcheck.h"
#include "model/cslide.h"
#include "store/messageindex.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    mms::MessageIndex index;
    index.subject = QStringLiteral("untouched");
    const mms::Status s = mms::parseMessageIndex(bytes, index);
    if (!s) {
        FUZZ_CHECK(!s.message().isEmpty());
        FUZZ_CHECK(index.subject == QStringLiteral("untouched") && index.slides.empty());
        return 0;
    }
    FUZZ_CHECK(index.slides.size() <= size_t(mms::CSlide::kMaxSlides));
    FUZZ_CHECK(qsizetype(index.slides.size()) < bytes.count('\n') + 1);
    for (const mms::IndexLine& line : index.slides)
        FUZZ_CHECK(!line.duration.isNumber() || line.duration.number() >= 0);
    return 0;
}
