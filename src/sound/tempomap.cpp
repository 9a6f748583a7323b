#include "sound/tempomap.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace mms {

namespace {

constexpr quint32 kDefaultUsPerQuarter = 500000; // 120 beats per minute until the first tempo event

struct TempoChange {
    qint64 tick;
    quint32 usPerQuarter;
};

quint32 be32(const uchar* p) {
    return (quint32(p[0]) << 24) | (quint32(p[1]) << 16) | (quint32(p[2]) << 8) | quint32(p[3]);
}
quint16 be16(const uchar* p) {
    return quint16((p[0] << 8) | p[1]);
}

QString damaged(int track, const QString& what) {
    return QStringLiteral("The MIDI file is damaged: track %1 %2.").arg(track).arg(what);
}

// Walks one track chunk, collecting its tempo changes and the tick of its last event. Every read is
// checked against the chunk's end, so a lying length or a cut-off event cannot read past it.
class TrackWalker {
public:
    TrackWalker(const uchar* data, qsizetype size, int number) : data_(data), size_(size), number_(number) {}

    Status walk(std::vector<TempoChange>& tempos, qint64& endTick) {
        qint64 tick = 0;
        int running = 0;
        while (pos_ < size_) {
            quint32 delta = 0;
            if (Status s = readVarLen(delta); !s) return s;
            tick += delta;
            if (pos_ >= size_)
                return Status::failure(damaged(number_, QStringLiteral("ends inside an event")));

            int status = data_[pos_];
            if (status >= 0x80) {
                ++pos_;
            } else if (running == 0) {
                return Status::failure(
                    damaged(number_, QStringLiteral("has data before its first status byte")));
            } else {
                status = running; // running status: this byte is already the first data byte
            }

            if (status == 0xFF) {
                if (pos_ >= size_)
                    return Status::failure(damaged(number_, QStringLiteral("ends inside an event")));
                const int type = data_[pos_++];
                quint32 length = 0;
                if (Status s = readVarLen(length); !s) return s;
                if (length > quint64(size_ - pos_))
                    return Status::failure(
                        damaged(number_, QStringLiteral("has an event longer than the track")));
                if (type == 0x51 && length == 3) {
                    const quint32 us =
                        (quint32(data_[pos_]) << 16) | (quint32(data_[pos_ + 1]) << 8) | data_[pos_ + 2];
                    tempos.push_back({tick, us});
                }
                pos_ += length;
                if (type == 0x2F) break; // end of track: anything after it is not played
            } else if (status == 0xF0 || status == 0xF7) {
                quint32 length = 0;
                if (Status s = readVarLen(length); !s) return s;
                if (length > quint64(size_ - pos_))
                    return Status::failure(
                        damaged(number_, QStringLiteral("has an event longer than the track")));
                pos_ += length;
            } else if (status >= 0xF0) {
                // System common and real-time messages: they do not touch running status.
                const int dataBytes = (status == 0xF2) ? 2 : (status == 0xF1 || status == 0xF3) ? 1 : 0;
                if (Status s = skipDataBytes(dataBytes); !s) return s;
            } else {
                const int kind = status & 0xF0;
                if (Status s = skipDataBytes((kind == 0xC0 || kind == 0xD0) ? 1 : 2); !s) return s;
                running = status;
            }
        }
        endTick = tick;
        return Status::ok();
    }

private:
    Status readVarLen(quint32& value) {
        value = 0;
        for (int i = 0; i < 4; ++i) {
            if (pos_ >= size_)
                return Status::failure(damaged(number_, QStringLiteral("ends inside an event")));
            const uchar b = data_[pos_++];
            value = (value << 7) | (b & 0x7F);
            if (!(b & 0x80)) return Status::ok();
        }
        return Status::failure(
            damaged(number_, QStringLiteral("has a time or length longer than four bytes")));
    }

    Status skipDataBytes(int count) {
        if (count > size_ - pos_)
            return Status::failure(damaged(number_, QStringLiteral("ends inside an event")));
        for (int i = 0; i < count; ++i) {
            if (data_[pos_ + i] & 0x80)
                return Status::failure(
                    damaged(number_, QStringLiteral("has a status byte where a data byte belongs")));
        }
        pos_ += count;
        return Status::ok();
    }

    const uchar* data_;
    qsizetype size_;
    qsizetype pos_ = 0;
    int number_;
};

} // namespace

namespace {

// The header's time division: ticks per quarter note, or for a file timed in SMPTE frames the
// milliseconds of one tick (ticksPerQuarter 0).
Status readDivision(quint16 division, int& ticksPerQuarter, double& smpteMsPerTick) {
    smpteMsPerTick = 0.0;
    if (division & 0x8000) {
        // Frames per second (as a negative byte) times ticks per frame: an absolute time base.
        const int fps = -static_cast<qint8>(division >> 8);
        const int ticksPerFrame = division & 0xFF;
        if ((fps != 24 && fps != 25 && fps != 29 && fps != 30) || ticksPerFrame == 0)
            return Status::failure(QStringLiteral("The MIDI file has an invalid SMPTE time division."));
        smpteMsPerTick = 1000.0 / ((fps == 29 ? 29.97 : fps) * ticksPerFrame);
        ticksPerQuarter = 0;
        return Status::ok();
    }
    if (division == 0)
        return Status::failure(QStringLiteral("The MIDI file has a time division of 0 ticks."));
    ticksPerQuarter = division;
    return Status::ok();
}

// Walks the chunks from `pos` to the end of the file: the tempo changes of every track, in track
// order, and the last tick of the longest one. A few stray bytes after the last chunk are ignored.
Status readTracks(const uchar* data, qsizetype size, qsizetype pos, std::vector<TempoChange>& tempos,
                  qint64& endTick) {
    int tracks = 0;
    while (size - pos >= 8) {
        const quint32 length = be32(data + pos + 4);
        const bool isTrack = std::memcmp(data + pos, "MTrk", 4) == 0;
        if (length > quint64(size - pos - 8)) {
            return Status::failure(isTrack
                                       ? damaged(tracks + 1, QStringLiteral("is cut short"))
                                       : QStringLiteral("The MIDI file is damaged: a chunk is cut short."));
        }
        if (isTrack) {
            qint64 trackEnd = 0;
            TrackWalker walker(data + pos + 8, length, ++tracks);
            if (Status s = walker.walk(tempos, trackEnd); !s) return s;
            endTick = std::max(endTick, trackEnd);
        }
        pos += 8 + qsizetype(length);
    }
    if (tracks == 0) return Status::failure(QStringLiteral("The MIDI file contains no tracks."));
    return Status::ok();
}

} // namespace

Status TempoMap::parse(const QByteArray& bytes, TempoMap& out) {
    const auto* data = reinterpret_cast<const uchar*>(bytes.constData());
    const qsizetype size = bytes.size();
    if (size < 14 || std::memcmp(data, "MThd", 4) != 0)
        return Status::failure(
            QStringLiteral("This is not a Standard MIDI File (it does not begin with a MIDI header)."));
    const quint32 headerLength = be32(data + 4);
    if (headerLength < 6 || headerLength > quint64(size - 8))
        return Status::failure(QStringLiteral("The MIDI file is damaged: its header has a wrong length."));
    const quint16 format = be16(data + 8);
    if (format > 2)
        return Status::failure(QStringLiteral("The MIDI file has an unknown format (%1).").arg(format));

    TempoMap map;
    double smpteMsPerTick = 0.0;
    if (Status s = readDivision(be16(data + 12), map.ticksPerQuarter_, smpteMsPerTick); !s) return s;
    std::vector<TempoChange> tempos;
    if (Status s = readTracks(data, size, 8 + qsizetype(headerLength), tempos, map.endTick_); !s) return s;

    if (smpteMsPerTick > 0.0) {
        map.segments_ = {{0, 0.0, smpteMsPerTick}}; // tempo events do not change SMPTE time
    } else {
        std::vector<std::pair<qint64, quint32>> changes;
        changes.reserve(tempos.size());
        for (const TempoChange& change : tempos)
            changes.emplace_back(change.tick, change.usPerQuarter);
        map.buildSegments(std::move(changes));
    }
    out = std::move(map);
    return Status::ok();
}

void TempoMap::buildSegments(std::vector<std::pair<qint64, quint32>> tempos) {
    const double tpq = ticksPerQuarter_;
    segments_ = {{0, 0.0, kDefaultUsPerQuarter / 1000.0 / tpq}};
    // Tracks were walked in order, so a stable sort keeps later tracks' changes after earlier ones
    // at the same tick: the one a sequencer applies last wins.
    std::stable_sort(tempos.begin(), tempos.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [tick, usPerQuarter] : tempos) {
        if (usPerQuarter == 0) continue; // a tempo of zero would stop time; ignore it
        const double msPerTick = usPerQuarter / 1000.0 / tpq;
        Segment& last = segments_.back();
        if (tick == last.tick) {
            last.msPerTick = msPerTick;
        } else if (msPerTick != last.msPerTick) {
            segments_.push_back({tick, msAt(tick), msPerTick});
        }
    }
}

double TempoMap::msAt(qint64 tick) const {
    if (tick <= 0) return 0.0;
    auto it = std::upper_bound(segments_.begin(), segments_.end(), tick,
                               [](qint64 t, const Segment& s) { return t < s.tick; });
    const Segment& s = *std::prev(it);
    return s.ms + double(tick - s.tick) * s.msPerTick;
}

qint64 TempoMap::tickAt(double ms) const {
    if (!(ms > 0.0)) return 0;
    auto it = std::upper_bound(segments_.begin(), segments_.end(), ms,
                               [](double m, const Segment& s) { return m < s.ms; });
    const Segment& s = *std::prev(it);
    const double tick = double(s.tick) + (ms - s.ms) / s.msPerTick;
    constexpr double kMax = double(std::numeric_limits<qint64>::max() / 2);
    return tick >= kMax ? qint64(kMax) : std::llround(tick);
}

} // namespace mms
