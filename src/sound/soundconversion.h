#pragma once

#include "sound/audiodecoder.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace mms {

// Any sound file (or the sound of a video) made into an AMR sound under a byte limit: the stretch
// from `start` to `end` seconds, at the best mode whose frames fit; when even the smallest mode
// cannot hold the stretch, the longest stretch from `start` that it can.
struct SoundConversion {
    enum class Outcome { Fitted, NoFit, Unreadable, Cancelled };
    Outcome outcome = Outcome::Unreadable;
    QByteArray amr;
    double seconds = 0; // the length of the AMR sound
    int mode = 0;       // see amrKbps()
    bool shortened = false;
    std::optional<double> sourceSeconds;
    QString message; // why not, naming the file
    bool fitted() const { return outcome == Outcome::Fitted; }
};

SoundConversion convertSoundToAmr(const QString& path, double start, std::optional<double> end,
                                  qint64 maxBytes, const Progress& progress = {});

// The same, written to `target` whole or not at all; a failure to write is Unreadable with the reason.
SoundConversion convertSoundToAmrFile(const QString& path, const QString& target, double start,
                                      std::optional<double> end, qint64 maxBytes,
                                      const Progress& progress = {});

} // namespace mms
