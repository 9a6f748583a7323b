#pragma once

#include "sound/audiodecoder.h"

#include <QByteArray>
#include <QSize>
#include <QString>
#include <optional>

namespace mms {

// Any video made into a phone clip under a byte limit: 3GP with H.263 pictures at 176x144 (128x96
// where that keeps them sharper), letterboxed, and the sound as AMR when there is one. The frame
// rate and the quantizer are searched by measuring each result (H.263 does not keep to a bit rate
// at these sizes); when even the smallest settings cannot hold the stretch from `start` to `end`,
// the longest stretch from `start` that they can. A 3GP under the limit that holds H.263 or MPEG-4
// pictures is taken as it is when the whole of it is asked for.
struct ClipConversion {
    enum class Outcome { Fitted, NoFit, Unreadable, Cancelled };
    Outcome outcome = Outcome::Unreadable;
    QByteArray clip;
    double seconds = 0;
    QSize size;
    bool asItWas = false; // the file itself, already a clip that fits
    bool shortened = false;
    double rate = 0; // frames a second
    int quantizer = 0;
    QString message; // why not, naming the file
    bool fitted() const { return outcome == Outcome::Fitted; }
};

// Whether `path` is already a clip that fits: a 3GP of at most `maxBytes` bytes holding H.263 or
// MPEG-4 pictures. Reads only the file's header.
bool clipFitsAsItIs(const QString& path, qint64 maxBytes);

ClipConversion convertVideoToClip(const QString& path, double start, std::optional<double> end,
                                  qint64 maxBytes, const Progress& progress = {});

// The same, written to `target` whole or not at all; a failure to write is Unreadable with the reason.
ClipConversion convertVideoToClipFile(const QString& path, const QString& target, double start,
                                      std::optional<double> end, qint64 maxBytes,
                                      const Progress& progress = {});

} // namespace mms
