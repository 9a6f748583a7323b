// Any bytes as a sound file to convert to AMR under a small limit: either refused naming the file
// (unreadable, no sound, nothing that fits), or an AMR sound within the limit that decodes again to
// as many frames as it holds.
#include "fuzzcheck.h"
#include "sound/amrdecoder.h"
#include "sound/soundconversion.h"

#include <QFile>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString path = fuzzcheck::scratchPath() + QStringLiteral("/in.bin");
    {
        QFile f(path);
        FUZZ_CHECK(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        FUZZ_CHECK(f.write(reinterpret_cast<const char*>(data), qint64(size)) == qint64(size));
    }
    constexpr qint64 kLimit = 4000; // six seconds at the smallest mode: the work stays bounded
    const mms::SoundConversion sound = mms::convertSoundToAmr(path, 0, std::nullopt, kLimit);
    if (!sound.fitted()) {
        FUZZ_CHECK(sound.message.contains(QStringLiteral("in.bin")) && sound.amr.isEmpty());
        return 0;
    }
    FUZZ_CHECK(sound.amr.size() <= kLimit && sound.seconds > 0);
    std::vector<qint16> samples;
    FUZZ_CHECK(mms::decodeAmr(sound.amr, samples).isOk());
    FUZZ_CHECK(qint64(samples.size()) == qint64(sound.seconds * mms::kAmrSampleRate + 0.5));
    return 0;
}
