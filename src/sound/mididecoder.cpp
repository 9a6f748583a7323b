// Reading a Standard MIDI File into per-channel note events; the note text is built in
// midinotetext.cpp.
#include "sound/mididecoder.h"

#include "sound/midiarith.h"

#include <QFile>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace mms {

using midi::checked32;
using midi::roundHalfEven;

// Bounds-checked reading of one chunk's bytes; reading past its end is a Failure.
class MidiDecoder::Reader {
public:
    Reader(const QByteArray& data, qsizetype begin, qsizetype end) : data_(data), pos_(begin), end_(end) {}
    bool atEnd() const { return pos_ >= end_; }
    quint8 peek() const {
        if (atEnd()) throw Failure();
        return quint8(data_[pos_]);
    }
    quint8 byte() {
        const quint8 b = peek();
        ++pos_;
        return b;
    }
    void skip(qint64 n) {
        if (n < 0 || n > end_ - pos_) throw Failure();
        pos_ += qsizetype(n);
    }
    // A variable-length quantity; values past the 32-bit signed range are a Failure.
    qint64 vlq() {
        qint64 value = 0;
        for (;;) {
            const quint8 b = byte();
            value = value * 128 + (b & 0x7F);
            if (value > std::numeric_limits<qint32>::max()) throw Failure();
            if (!(b & 0x80)) return value;
        }
    }
    quint32 bigEndian(int bytes) {
        quint32 v = 0;
        for (int k = 0; k < bytes; ++k)
            v = v << 8 | byte();
        return v;
    }

private:
    const QByteArray& data_;
    qsizetype pos_;
    qsizetype end_;
};

namespace {

// The thrown message ends the decode after it has been shown.
struct Stopped {};

// A channel holds at most this many note events: its counter is a 16-bit number.
constexpr int kMaxEventsPerChannel = 32766;

} // namespace

void MidiDecoder::resetMidiTables() {
    channelProgram_.fill(0);
    for (auto& row : noteTable_)
        for (auto& cell : row)
            cell.clear();
}

void MidiDecoder::decodeMidiFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        decode(QByteArray()); // resets the per-decode state and ends: not a MIDI file
        return;
    }
    decode(file.readAll());
}

void MidiDecoder::decodeMidiData(const QByteArray& data) {
    decode(data);
}

void MidiDecoder::stop(const QString& message) {
    if (sink_) sink_->inform(message);
    throw Stopped();
}

void MidiDecoder::decode(const QByteArray& data) {
    timeSig_ = {4, 4};
    barWholeNotes_ = 1.0;
    for (auto& events : noteEvents_)
        events.clear();
    midiDecoded_ = false;
    runningTicks_ = 0;
    previousStatus_ = -1;

    if (!data.startsWith("MThd")) return;
    try {
        Reader header(data, 4, data.size());
        const quint32 headerLength = header.bigEndian(4);
        if (headerLength > quint32(data.size() - 8)) throw Failure();
        Reader fields(data, 8, 8 + qsizetype(headerLength));
        fields.skip(4); // format and track count: tracks are read until the data ends
        const quint16 division = quint16(fields.bigEndian(2));
        if (!(division & 0x8000)) ticksPerQuarter_ = qint16(division);

        qsizetype pos = 8 + qsizetype(headerLength);
        while (pos < data.size()) {
            if (data.size() - pos < 4 || data.mid(pos, 4) != "MTrk")
                stop(QStringLiteral("Decode Error: MTrk\n"));
            Reader lengthField(data, pos + 4, data.size());
            const quint32 length = lengthField.bigEndian(4);
            const qsizetype begin = pos + 8;
            if (length > quint64(data.size() - begin)) throw Failure();
            Reader track(data, begin, begin + qsizetype(length));
            readTrack(track);
            runningTicks_ = 0;
            pos = begin + qsizetype(length);
        }
    } catch (const Failure&) {
        return;
    } catch (const Stopped&) {
        return;
    } catch (const std::exception&) {
        return;
    }
    midiDecoded_ = true;
    buildNoteText();
    splitIntoBars(timeSig_[0], timeSig_[1]);
}

void MidiDecoder::readTrack(Reader& track) {
    while (!track.atEnd()) {
        runningTicks_ += track.vlq();
        checked32(runningTicks_);
        const quint8 b = track.peek();
        if (b < 0x80) {
            // Running status: the byte is the first data byte of a message like the previous one.
            if (previousStatus_ < 0) throw Failure();
            channelMessage(track, quint8(previousStatus_));
            continue;
        }
        track.skip(1);
        if (b == 0xFF) {
            metaEvent(track);
        } else if (b == 0xF0 || b == 0xF7) {
            track.skip(track.vlq());
        } else if (b >= 0xF1) {
            // One-byte system messages; system common ones do not belong in a file and carry no
            // data we could trust, so only the status byte is stepped over.
        } else {
            channelMessage(track, b);
            previousStatus_ = b;
        }
    }
}

void MidiDecoder::channelMessage(Reader& track, quint8 status) {
    const int channel = status & 0x0F;
    switch (status >> 4) {
    case 0x8:
    case 0x9: {
        const quint8 note = track.byte();
        if (note > 127) stop(QStringLiteral("Decode Error(Note)"));
        const quint8 velocity = track.byte();
        if (velocity > 127) stop(QStringLiteral("Velocity: Decode Error(Velocity)"));
        appendNote(channel, (status >> 4) == 0x9, note, velocity);
        break;
    }
    case 0xA:
        if (track.byte() > 127) stop(QStringLiteral("Decode Error(Note)"));
        if (track.byte() > 127) stop(QStringLiteral("Pressure Value: Decode Error(Pressure Value)"));
        break;
    case 0xB:
        if (track.byte() > 127) stop(QStringLiteral("Decode Error(Control Number)"));
        if (track.byte() > 127) stop(QStringLiteral("New Value: Decode Error(New Value)"));
        break;
    case 0xC: {
        const quint8 program = track.byte();
        if (program > 127) stop(QStringLiteral("Decode Error(New Program Number)"));
        channelProgram_[channel] = program;
        break;
    }
    case 0xD:
        if (track.byte() > 127) stop(QStringLiteral("Decode Error(Pressure Value)"));
        break;
    case 0xE:
        track.skip(2);
        break;
    default:
        throw Failure();
    }
}

void MidiDecoder::appendNote(int channel, bool on, qint16 note, qint16 velocity) {
    auto& events = noteEvents_[channel];
    if (events.size() >= size_t(kMaxEventsPerChannel)) throw Failure();
    events.push_back(NoteEvent{on, checked32(runningTicks_), note, velocity});
    runningTicks_ = 0;
}

void MidiDecoder::metaEvent(Reader& track) {
    const quint8 type = track.byte();
    const qint64 length = track.vlq();
    auto require = [&](bool ok, const char* message) {
        if (!ok) stop(QString::fromLatin1(message));
    };
    switch (type) {
    case 0x00:
        require(length == 0 || length == 2, "Sequence Number Error\n");
        track.skip(length);
        break;
    case 0x01:
    case 0x02:
    case 0x03:
    case 0x04:
    case 0x05:
    case 0x06:
    case 0x07:
    case 0x7F:
        track.skip(length);
        break;
    case 0x20:
        require(length == 1, "MIDI Channel : Error");
        track.skip(length);
        break;
    case 0x21:
        require(length == 1, "MIDI Port : Error");
        track.skip(length);
        break;
    case 0x2F:
        require(length == 0, "End of Track : Error");
        break;
    case 0x51:
        require(length == 3, "Tempo : Error");
        tempoEvent(track);
        break;
    case 0x54:
        require(length == 5, "SMPTE offset : Error");
        track.skip(length);
        break;
    case 0x58:
        require(length == 4, "Time Signature: Error");
        timeSignatureEvent(track);
        break;
    case 0x59:
        require(length == 2, "Key Signature: Error");
        track.skip(length);
        break;
    default:
        stop(QStringLiteral("Meta Event Error %1\n").arg(QString::number(type, 16).toUpper()));
    }
}

void MidiDecoder::tempoEvent(Reader& track) {
    const quint32 t = track.bigEndian(3);
    secPerQuarter_ = t / 1000000.0;
    if (t == 0) throw Failure();
    tempoBpm_ = qint32(roundHalfEven(60000000.0 / t));
    tempoSeen_ = true;
}

void MidiDecoder::timeSignatureEvent(Reader& track) {
    const quint8 numerator = track.byte();
    const quint8 power = track.byte();
    track.skip(2);
    if (power > 14) throw Failure(); // the denominator is a 16-bit number
    timeSig_ = {qint16(numerator), qint16(1 << power)};
    barWholeNotes_ = double(timeSig_[0]) / timeSig_[1];
}

void MidiDecoder::assumeDefaultTempo() {
    if (tempoSeen_) return;
    secPerQuarter_ = kDefaultMicrosPerQuarter / 1000000.0;
    tempoBpm_ = qint32(60000000 / kDefaultMicrosPerQuarter);
}

} // namespace mms
