#pragma once

#include <QByteArray>
#include <QList>
#include <initializer_list>

// Builds small Standard MIDI Files for the tests, event by event.
namespace mms::test::midifile {

inline QByteArray bytes(std::initializer_list<int> values) {
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

inline QByteArray vlq(quint32 value) {
    QByteArray out(1, char(value & 0x7F));
    for (value >>= 7; value > 0; value >>= 7)
        out.prepend(char((value & 0x7F) | 0x80));
    return out;
}

inline QByteArray bigEndian(quint32 value, int bytes) {
    QByteArray out;
    for (int k = bytes - 1; k >= 0; --k)
        out.append(char((value >> (8 * k)) & 0xFF));
    return out;
}

class Track {
public:
    Track& raw(quint32 delta, const QByteArray& bytes) {
        data_ += vlq(delta) + bytes;
        return *this;
    }
    Track& on(quint32 delta, int channel, int note) { return raw(delta, bytes({0x90 | channel, note, 100})); }
    Track& off(quint32 delta, int channel, int note) { return raw(delta, bytes({0x80 | channel, note, 64})); }
    Track& program(int channel, int program) { return raw(0, bytes({0xC0 | channel, program})); }
    Track& meta(int type, const QByteArray& body, quint32 delta = 0) {
        return raw(delta, bytes({0xFF, type}) + vlq(quint32(body.size())) + body);
    }
    Track& tempo(quint32 micros, quint32 delta = 0) { return meta(0x51, bigEndian(micros, 3), delta); }
    Track& timeSig(int numerator, int power) { return meta(0x58, bytes({numerator, power, 24, 8})); }
    Track& end(quint32 delta = 0) { return meta(0x2F, {}, delta); }
    // A note of `length` ticks after a gap of `gap` ticks.
    Track& note(quint32 gap, quint32 length, int channel, int note) {
        return on(gap, channel, note).off(length, channel, note);
    }
    const QByteArray& data() const { return data_; }

private:
    QByteArray data_;
};

inline QByteArray midiFile(quint16 division, const QList<Track>& tracks) {
    QByteArray file = "MThd" + bigEndian(6, 4) + bigEndian(1, 2) + bigEndian(quint32(tracks.size()), 2) +
                      bigEndian(division, 2);
    for (const Track& t : tracks)
        file += "MTrk" + bigEndian(quint32(t.data().size()), 4) + t.data();
    return file;
}

// 120 bpm in 4/4, 96 ticks a quarter: the first `count` quarters of the C major scale from C5 on
// channel 0 (program 19), half a second each.
inline QByteArray cMajorScale(int count) {
    Track meta, notes;
    meta.tempo(500000).timeSig(4, 2).end();
    notes.program(0, 19);
    const int keys[] = {60, 62, 64, 65, 67, 69, 71, 72};
    for (int i = 0; i < count; ++i)
        notes.note(0, 96, 0, keys[i]);
    return midiFile(96, {meta, notes.end()});
}

} // namespace mms::test::midifile
