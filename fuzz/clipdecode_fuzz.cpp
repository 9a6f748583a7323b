// Any bytes as a video to make a clip of: either refused naming the file (unreadable, no video, too
// large, damaged), or pictures of the clip sizes, as many as the stretch asked for at most.
#include "fuzzcheck.h"
#include "video/clipframes.h"

#include <QFile>
#include <cstdint>

extern "C" {
#include <libavutil/frame.h>
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString path = fuzzcheck::scratchPath() + QStringLiteral("/in.bin");
    {
        QFile f(path);
        FUZZ_CHECK(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        FUZZ_CHECK(f.write(reinterpret_cast<const char*>(data), qint64(size)) == qint64(size));
    }
    mms::ClipSource clip;
    const mms::Status read = mms::readClipSource(path, 0, std::nullopt, 1.0, clip);
    if (!read) {
        FUZZ_CHECK(read.message().contains(QStringLiteral("in.bin")));
        return 0;
    }
    FUZZ_CHECK(!clip.large.empty() && clip.large.size() == clip.small.size() &&
               clip.large.size() <= size_t(mms::kClipMaxRate));
    FUZZ_CHECK(clip.large.front()->width == mms::kClipLarge.width() &&
               clip.small.back()->height == mms::kClipSmall.height());
    return 0;
}
