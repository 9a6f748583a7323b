#pragma once

#include "model/status.h"

#include <QByteArray>
#include <QtGlobal>
#include <utility>
#include <vector>

namespace mms {

// Converts between the ticks of a Standard MIDI File and milliseconds of playback. Every tempo
// change of every track counts (tracks are merged, as a sequencer plays them), so the conversion
// matches what the synthesizer hears, not only the tune's last tempo.
class TempoMap {
public:
    // Reads the header, the tempo changes and the end of every track. Malformed files fail with a
    // message that says what is wrong; nothing is read outside the given bytes.
    static Status parse(const QByteArray& bytes, TempoMap& out);

    // Milliseconds from the start of the tune at the given tick (ticks past the end extrapolate
    // with the last tempo).
    double msAt(qint64 tick) const;
    // The tick heard at the given time, rounded to the nearest tick; 0 for times before the start.
    qint64 tickAt(double ms) const;

    // The tick of the last event of the longest track, and its time.
    qint64 endTick() const { return endTick_; }
    double lengthMs() const { return msAt(endTick_); }

    // Ticks per quarter note, or 0 for a file timed in SMPTE frames.
    int ticksPerQuarter() const { return ticksPerQuarter_; }

private:
    // Folds the tempo changes of all tracks (in track order) into segments.
    void buildSegments(std::vector<std::pair<qint64, quint32>> tempos);

    // From `tick` on, one tick lasts `msPerTick`; `ms` is the time at `tick`.
    struct Segment {
        qint64 tick;
        double ms;
        double msPerTick;
    };
    std::vector<Segment> segments_{{0, 0.0, 500.0 / 96.0}};
    qint64 endTick_ = 0;
    int ticksPerQuarter_ = 96;
};

} // namespace mms
