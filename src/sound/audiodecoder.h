#pragma once

#include "common/libraryinfo.h"
#include "model/status.h"

#include <QString>
#include <QtGlobal>
#include <functional>
#include <optional>
#include <vector>

namespace mms {

// The media library that reads the sounds and videos people have (MP3, Ogg, Opus, M4A, FLAC, WAV,
// and the sound of video files), in the version in use.
LibraryInfo mediaLibrary();
// Sets the media library up once for files from anywhere: silent (the reasons that matter are
// returned), and no single allocation larger than a clip could ever need, so that a header that
// claims gigabytes is refused rather than believed.
void prepareMediaLibrary();

// Told the share of the work done (0 to 1); returning false cancels.
using Progress = std::function<bool(double done)>;

// A stretch of a sound, decoded to 16-bit mono samples at 8 kHz (what AMR narrow band takes).
struct DecodedSound {
    std::vector<qint16> samples;
    // The source's length in seconds where its container tells it.
    std::optional<double> sourceSeconds;
    // Samples followed the last one kept (the stretch was cut at `maxSamples`).
    bool cut = false;
};

// Decodes the first sound stream of `path` from `start` seconds on, up to `end` (the whole rest when
// absent) and at most `maxSamples` samples. Fails with a plain reason naming the file when the file
// cannot be read, holds no sound, or is damaged before anything was decoded; a file damaged later
// gives what came before the damage. A cancel through `progress` fails with an empty message.
Status decodeSound(const QString& path, double start, std::optional<double> end, qint64 maxSamples,
                   DecodedSound& out, const Progress& progress = {});

} // namespace mms
