// Any bytes as a MIDI file for the tempo map: it parses or fails with a message, reads nothing
// outside the bytes, and what parses converts monotonically without ever going negative.
#include "sound/tempomap.h"

#include <QByteArray>
#include <cmath>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A copy the size of the input, so the sanitizers see any read past its end.
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    mms::TempoMap map;
    const mms::Status s = mms::TempoMap::parse(bytes, map);
    if (!s) {
        if (s.message().isEmpty()) std::abort();
        return 0;
    }
    const double length = map.lengthMs();
    if (!std::isfinite(length) || length < 0 || map.endTick() < 0) std::abort();
    double previous = 0;
    for (int k = 0; k <= 16; ++k) {
        const double ms = map.msAt(map.endTick() / 16 * k);
        if (ms < previous) std::abort();
        previous = ms;
    }
    if (map.tickAt(-1.0) != 0 || map.tickAt(length) < 0) std::abort();
    return 0;
}
