// Any bytes as a picture handed to the composer: the check gives one reason, and only a picture it
// passes may be taken; the sizes it reports stay within the decoding limit it enforces.
#include "fuzzcheck.h"
#include "image/picturecheck.h"

#include <QBuffer>
#include <QImageReader>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool limited = [] {
        // Keeps every decode small; a larger picture is refused as too large, which is checked too.
        QImageReader::setAllocationLimit(16);
        return true;
    }();
    (void)limited;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const mms::PictureTrouble t = mms::checkPictureBytes(bytes);
    using Kind = mms::PictureTrouble::Kind;
    FUZZ_CHECK(t.kind != Kind::Unreadable); // bytes in memory are always readable
    FUZZ_CHECK((t.kind == Kind::Empty) == bytes.isEmpty());
    if (t.kind == Kind::TooLarge) FUZZ_CHECK(qint64(t.size.width()) * t.size.height() * 4 > 16 * 1024 * 1024);
    FUZZ_CHECK(!mms::plainReason(t).isEmpty());
    return 0;
}
