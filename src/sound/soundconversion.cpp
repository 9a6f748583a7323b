#include "sound/soundconversion.h"

#include "common/fileio.h"
#include "sound/amrdecoder.h"
#include "sound/amrencoder.h"

#include <QFileInfo>

namespace mms {

SoundConversion convertSoundToAmr(const QString& path, double start, std::optional<double> end,
                                  qint64 maxBytes, const Progress& progress) {
    SoundConversion result;
    const QString name = QFileInfo(path).fileName();
    // Never more than the smallest mode can hold within the limit, plus one sample to tell that the
    // stretch went on: a long file is not decoded to its end for a short sound.
    const qint64 most = std::max<qint64>(maxBytes - kAmrHeaderBytes, 0) / amrFrameBytes(0) * kAmrFrameSamples;
    if (most == 0) {
        result.outcome = SoundConversion::Outcome::NoFit;
        result.message = QStringLiteral("Not one frame of %1 fits in %2 bytes.").arg(name).arg(maxBytes);
        return result;
    }
    DecodedSound sound;
    const Status decoded = decodeSound(path, start, end, most, sound, progress);
    result.sourceSeconds = sound.sourceSeconds;
    if (!decoded) {
        result.outcome = decoded.message().isEmpty() ? SoundConversion::Outcome::Cancelled
                                                     : SoundConversion::Outcome::Unreadable;
        result.message = decoded.message();
        return result;
    }
    if (sound.samples.empty()) {
        result.outcome = SoundConversion::Outcome::NoFit;
        result.message = QStringLiteral("%1 has no sound from %2 s on.").arg(name).arg(start, 0, 'f', 3);
        return result;
    }
    // At least one frame fits (`most` above), so there is a plan.
    std::optional<AmrPlan> plan = planAmr(qint64(sound.samples.size()), maxBytes);
    // A stretch cut at the decoding bound did not fit whole.
    if (sound.cut && !plan->shortened) plan->shortened = true;
    result.amr = encodeAmr(sound.samples, *plan);
    if (result.amr.isEmpty()) {
        result.message = QStringLiteral("%1 could not be encoded as AMR.").arg(name);
        return result;
    }
    result.outcome = SoundConversion::Outcome::Fitted;
    result.mode = plan->mode;
    result.shortened = plan->shortened;
    result.seconds = double(plan->frames) * kAmrFrameSamples / kAmrSampleRate;
    return result;
}

SoundConversion convertSoundToAmrFile(const QString& path, const QString& target, double start,
                                      std::optional<double> end, qint64 maxBytes, const Progress& progress) {
    SoundConversion result = convertSoundToAmr(path, start, end, maxBytes, progress);
    if (!result.fitted()) return result;
    if (const Status written = fileio::writeFileSafely(target, result.amr); !written) {
        result.outcome = SoundConversion::Outcome::Unreadable;
        result.message = written.message();
        result.amr.clear();
    }
    return result;
}

} // namespace mms
