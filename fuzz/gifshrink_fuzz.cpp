// Any bytes as a GIF to shrink. Input: the first byte picks the byte limit (in 64-byte steps), the
// rest is the file. Either the shrink says why not, naming the file, or it gives a GIF within the
// limit that decodes again, as large and with as many frames as it says.
#include "fuzzcheck.h"
#include "image/gifshrink.h"
#include "image/picturecheck.h"

#include <QBuffer>
#include <QImageReader>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool limited = [] {
        // Keeps the canvases small: 4 MB of frames at most, beyond which the GIF is refused.
        QImageReader::setAllocationLimit(4);
        return true;
    }();
    (void)limited;
    if (size < 1) return 0;
    const qint64 maxBytes = qint64(data[0] + 1) * 64;
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    const mms::GifShrink r = mms::shrinkGif(bytes, QStringLiteral("in.gif"), maxBytes);
    if (!r.fitted()) {
        FUZZ_CHECK(r.message.contains(QStringLiteral("in.gif")) && r.gif.isEmpty());
        return 0;
    }
    FUZZ_CHECK(r.gif.size() <= maxBytes && r.frames >= 1 && !r.size.isEmpty());
    QByteArray out = r.gif;
    QBuffer shrunk(&out);
    shrunk.open(QIODevice::ReadOnly);
    QImageReader reader(&shrunk, "gif");
    FUZZ_CHECK(reader.size() == r.size && reader.imageCount() == r.frames);
    FUZZ_CHECK(mms::checkPictureBytes(r.gif).ok());
    return 0;
}
