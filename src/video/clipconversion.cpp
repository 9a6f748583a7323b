#include "video/clipconversion.h"

#include "common/fileio.h"
#include "sound/amrencoder.h"
#include "video/clipframes.h"
#include "video/clipwriter.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace mms {

namespace {

// No clip holds less than this a second at the smallest settings: it bounds how much of a long video
// is read for a clip.
constexpr double kFewestBytesPerSecond = 1200;
// A quantizer at or below this looks good on a phone: the first settings that reach it are taken.
constexpr int kGoodQuantizer = 12;
constexpr int kWorstQuantizer = 31;

struct Setting {
    bool large;
    int step; // of kClipMaxRate: 15, 7.5 or 5 frames a second
};
// From the best looking to the smallest.
constexpr Setting kSettings[] = {{true, 1}, {true, 2}, {false, 2}, {true, 3}, {false, 3}};

bool takenAsItIs(const QString& path, const ClipSource& source, qint64 maxBytes) {
    const bool mp4Family = source.container.contains(QLatin1String("3gp"));
    const bool phoneCodec =
        source.videoCodec == QLatin1String("h263") || source.videoCodec == QLatin1String("mpeg4");
    return mp4Family && phoneCodec &&
           QFileInfo(path).suffix().compare(QLatin1String("3gp"), Qt::CaseInsensitive) == 0 &&
           QFileInfo(path).size() <= maxBytes;
}

// The sound as AMR frames at the best mode that takes at most a fifth of the limit.
void addSound(ClipEncoding& clip, const std::vector<qint16>& sound, qint64 samples, qint64 maxBytes) {
    if (sound.empty() || samples <= 0) return;
    const std::vector<qint16> kept(sound.begin(),
                                   sound.begin() + std::min<qint64>(samples, qint64(sound.size())));
    const qint64 frames = (qint64(kept.size()) + kAmrFrameSamples - 1) / kAmrFrameSamples;
    int mode = 0;
    for (int m = kAmrModes - 1; m > 0; --m)
        if (frames * amrFrameBytes(m) <= maxBytes / 5) {
            mode = m;
            break;
        }
    const QByteArray amr =
        encodeAmr(kept, AmrPlan{mode, frames, kAmrHeaderBytes + frames * amrFrameBytes(mode), false});
    clip.amrFrames = amr.mid(kAmrHeaderBytes);
    clip.amrFrameBytes = amrFrameBytes(mode);
}

struct Attempt {
    QByteArray bytes;
    int quantizer = 0;
};

// The smallest quantizer from `q` on at which the clip fits, each guess measured: size falls about
// as the inverse of the quantizer, so a guess is scaled by how far the last one was over. Nothing
// when even the largest quantizer does not fit.
std::optional<Attempt> searchQuantizer(ClipEncoding& clip, int q, qint64 maxBytes, qint64 fixedBytes) {
    std::optional<Attempt> best;
    int tooSmall = 1; // the largest quantizer known to give too big a clip, plus one
    for (int round = 0; round < 5; ++round) {
        clip.quantizer = q;
        const QByteArray bytes = writeClip(clip);
        if (bytes.isEmpty()) return std::nullopt;
        if (bytes.size() <= maxBytes) {
            if (!best || q < best->quantizer) best = Attempt{bytes, q};
            // A smaller quantizer may fit as well: halfway down, once the sizes are close.
            const int lower = (q + tooSmall) / 2;
            if (lower <= tooSmall - 1 || lower >= q || bytes.size() < maxBytes / 2) break;
            q = lower;
            continue;
        }
        tooSmall = q + 1;
        if (q >= kWorstQuantizer) break;
        const double over =
            double(bytes.size() - fixedBytes) / double(std::max<qint64>(maxBytes - fixedBytes, 1));
        const int next = std::clamp(int(std::ceil(q * over * 1.05)), q + 1, kWorstQuantizer);
        if (best && next >= best->quantizer) break;
        q = next;
    }
    return best;
}

// How much smaller than the first settings a setting's clip comes out, about (fewer pixels, fewer
// pictures a second).
double sizeFactor(const Setting& setting) {
    const double pixels = setting.large ? 1.0
                                        : double(kClipSmall.width() * kClipSmall.height()) /
                                              (kClipLarge.width() * kClipLarge.height());
    return pixels * std::pow(double(setting.step), -0.7);
}

} // namespace

bool clipFitsAsItIs(const QString& path, qint64 maxBytes) {
    ClipSource header;
    return QFileInfo(path).size() <= maxBytes && readClipHeader(path, header).isOk() &&
           takenAsItIs(path, header, maxBytes);
}

ClipConversion convertVideoToClip(const QString& path, double start, std::optional<double> end,
                                  qint64 maxBytes, const Progress& progress) {
    ClipConversion result;
    const QString name = QFileInfo(path).fileName();
    // A clip that fits is taken as it is, from its header alone.
    if (start <= 0 && !end) {
        ClipSource header;
        QFile file(path);
        if (file.size() <= maxBytes && readClipHeader(path, header).isOk() &&
            takenAsItIs(path, header, maxBytes) && file.open(QIODevice::ReadOnly)) {
            result.clip = file.readAll();
            result.outcome = ClipConversion::Outcome::Fitted;
            result.asItWas = true;
            result.seconds = header.sourceSeconds.value_or(0);
            result.size = header.sourceSize;
            return result;
        }
    }
    ClipSource source;
    const Status read =
        readClipSource(path, start, end, double(maxBytes) / kFewestBytesPerSecond, source, progress);
    if (!read) {
        result.outcome = read.message().isEmpty() ? ClipConversion::Outcome::Cancelled
                                                  : ClipConversion::Outcome::Unreadable;
        result.message = read.message();
        return result;
    }

    qint64 count = qint64(source.large.size());
    const bool wholeRead = source.sourceSeconds && start + source.seconds() + 0.2 >= *source.sourceSeconds;
    bool shortened = end ? start + source.seconds() + 0.2 < *end : !wholeRead;
    const auto encoding = [&](const Setting& setting, qint64 pictures) {
        ClipEncoding clip;
        clip.pictures = setting.large ? &source.large : &source.small;
        clip.size = setting.large ? kClipLarge : kClipSmall;
        clip.step = setting.step;
        clip.count = pictures;
        addSound(clip, source.sound, pictures * 8000 / kClipMaxRate, maxBytes);
        return clip;
    };
    const auto fitted = [&](const Setting& setting, const Attempt& attempt, qint64 pictures) {
        result.outcome = ClipConversion::Outcome::Fitted;
        result.clip = attempt.bytes;
        result.quantizer = attempt.quantizer;
        result.rate = double(kClipMaxRate) / setting.step;
        result.size = setting.large ? kClipLarge : kClipSmall;
        result.seconds = double(pictures) / kClipMaxRate;
        result.shortened = shortened;
        return result;
    };
    const auto cancelled = [&] { return progress && !progress(0.9); };

    // The smallest settings first: when they cannot hold the stretch, the longest stretch they can
    // hold is the clip, found by scaling the length by how far each try was over.
    const Setting& smallest = std::end(kSettings)[-1];
    for (int round = 0; round < 8 && count > 0; ++round) {
        ClipEncoding clip = encoding(smallest, count);
        clip.quantizer = kWorstQuantizer;
        const QByteArray bytes = writeClip(clip);
        if (bytes.isEmpty()) break;
        if (bytes.size() <= maxBytes) {
            if (round > 0) return fitted(smallest, Attempt{bytes, kWorstQuantizer}, count);
            break;
        }
        shortened = true;
        const double share = double(maxBytes) / double(bytes.size());
        count = std::min(count - 1, qint64(double(count) * share * (0.97 - 0.05 * round)));
        if (cancelled()) return result.outcome = ClipConversion::Outcome::Cancelled, result;
    }
    if (count <= 0) {
        result.outcome = ClipConversion::Outcome::NoFit;
        result.message = QStringLiteral("Not one picture of %1 fits in %2 bytes.").arg(name).arg(maxBytes);
        return result;
    }

    // The best settings at a good quantizer when they fit; otherwise the settings whose quantizer,
    // guessed from that first clip, comes out best.
    ClipEncoding first = encoding(kSettings[0], count);
    first.quantizer = 6;
    const QByteArray firstBytes = writeClip(first);
    if (firstBytes.isEmpty()) {
        result.message = QStringLiteral("%1 could not be encoded as a clip.").arg(name);
        return result;
    }
    if (firstBytes.size() <= maxBytes) return fitted(kSettings[0], Attempt{firstBytes, 6}, count);
    const qint64 fixedBytes = first.amrFrames.size() + 2000;
    const double pictureBytes = double(firstBytes.size() - first.amrFrames.size());
    for (const Setting& setting : kSettings) {
        ClipEncoding clip = encoding(setting, count);
        const qint64 room = std::max<qint64>(maxBytes - clip.amrFrames.size() - 2000, 1);
        const int guess = std::clamp(int(std::ceil(6 * pictureBytes * sizeFactor(setting) / double(room))), 2,
                                     kWorstQuantizer);
        if (guess > kGoodQuantizer && &setting != &smallest) continue;
        if (const std::optional<Attempt> attempt = searchQuantizer(clip, guess, maxBytes, fixedBytes))
            return fitted(setting, *attempt, count);
        if (cancelled()) return result.outcome = ClipConversion::Outcome::Cancelled, result;
    }
    // The smallest settings fitted at the largest quantizer above.
    ClipEncoding clip = encoding(smallest, count);
    clip.quantizer = kWorstQuantizer;
    return fitted(smallest, Attempt{writeClip(clip), kWorstQuantizer}, count);
}

ClipConversion convertVideoToClipFile(const QString& path, const QString& target, double start,
                                      std::optional<double> end, qint64 maxBytes, const Progress& progress) {
    ClipConversion result = convertVideoToClip(path, start, end, maxBytes, progress);
    if (!result.fitted()) return result;
    if (const Status written = fileio::writeFileSafely(target, result.clip); !written) {
        result.outcome = ClipConversion::Outcome::Unreadable;
        result.message = written.message();
        result.clip.clear();
    }
    return result;
}

} // namespace mms
