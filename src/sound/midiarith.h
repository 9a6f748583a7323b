#pragma once

// Arithmetic the MIDI decoder's reading and note-text halves share.

#include "sound/mididecoder.h"

#include <QtGlobal>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace mms {

// A damaged file or a number out of range: the decode ends without a message.
class MidiDecoder::Failure {};

} // namespace mms

namespace mms::midi {

// Rounds halves to even, like the conversions the tempo and rest rules were written for.
inline qint64 roundHalfEven(double v) {
    return qint64(std::nearbyint(v));
}

inline qint32 checked32(qint64 v) {
    if (v > std::numeric_limits<qint32>::max()) throw std::overflow_error("tick count too large");
    return qint32(v);
}

} // namespace mms::midi
