#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>
#include <initializer_list>

// Small Standard MIDI Files built byte by byte in the tests.
namespace mms::test::smf {

inline QByteArray bytesOf(std::initializer_list<int> values) {
    QByteArray out;
    for (int v : values)
        out += char(v);
    return out;
}

inline QByteArray varLen(quint32 v) {
    QByteArray out(1, char(v & 0x7F));
    while (v >>= 7)
        out.prepend(char(0x80 | (v & 0x7F)));
    return out;
}

class Track {
public:
    Track& raw(quint32 delta, const QByteArray& event) {
        bytes_ += varLen(delta) + event;
        return *this;
    }
    Track& tempo(quint32 delta, quint32 usPerQuarter) {
        return raw(delta, QByteArray("\xFF\x51\x03", 3) + char(usPerQuarter >> 16) + char(usPerQuarter >> 8) +
                              char(usPerQuarter));
    }
    Track& noteOn(quint32 delta, int channel, int key, int velocity = 100) {
        return raw(delta, bytesOf({0x90 | channel, key, velocity}));
    }
    Track& noteOff(quint32 delta, int channel, int key) {
        return raw(delta, bytesOf({0x80 | channel, key, 0}));
    }
    Track& program(quint32 delta, int channel, int program) {
        return raw(delta, bytesOf({0xC0 | channel, program}));
    }
    Track& end(quint32 delta = 0) { return raw(delta, QByteArray("\xFF\x2F\x00", 3)); }
    const QByteArray& bytes() const { return bytes_; }

private:
    QByteArray bytes_;
};

inline QByteArray be32(quint32 v) {
    return bytesOf({int(v >> 24), int(v >> 16) & 0xFF, int(v >> 8) & 0xFF, int(v & 0xFF)});
}

inline QByteArray chunk(const char* id, const QByteArray& body) {
    return QByteArray(id, 4) + be32(body.size()) + body;
}

inline QByteArray midiFile(int format, quint16 division, const QList<Track>& tracks) {
    const QByteArray header = bytesOf({0, format, 0, int(tracks.size()), division >> 8, division & 0xFF});
    QByteArray out = chunk("MThd", header);
    for (const Track& t : tracks)
        out += chunk("MTrk", t.bytes());
    return out;
}

// A two-track tune at 96 ticks per quarter whose tempo changes twice: 120 bpm for two beats
// (1 s), 240 bpm for two beats (0.5 s), 60 bpm for four beats (4 s): 768 ticks, 5.5 s.
inline QByteArray threeTempoTune() {
    Track tempos;
    tempos.tempo(0, 500000).tempo(192, 250000).tempo(192, 1000000).end();
    Track notes;
    notes.program(0, 0, 0);
    for (int i = 0; i < 8; ++i)
        notes.noteOn(0, 0, 60 + i).noteOff(96, 0, 60 + i);
    notes.end();
    return midiFile(1, 96, {tempos, notes});
}

} // namespace mms::test::smf
