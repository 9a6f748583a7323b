#pragma once

#include "model/messagesink.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <optional>
#include <vector>

namespace mms {

// One note-on or note-off message of a channel, in file order.
struct NoteEvent {
    bool isNoteOn = false;
    qint32 delta = 0; // ticks since the previous note event of the same track, of any channel
    qint16 note = 0;  // 0..127; pitchName() gives its text
    qint16 velocity = 0;

    QString pitchName() const;
};

// Decodes Standard MIDI Files into a compact per-channel note text split into bars.
//
// Tokens of the text: a length code ("1", "2", "4", "8", "16" or "32": whole to thirty-second)
// followed by a note name and octave (4C5, 16F#4) or by "P" for a rest (8P).
//
// The decoder is an object holding one decoded tune: the tables survive until the next decode, and
// the tempo and the division even survive a decode of a file that does not set them. Call
// resetMidiTables() and then decodeMidiFile() before reading the tables.
class MidiDecoder {
public:
    static constexpr int kChannels = 16;
    static constexpr int kBars = 40;
    static constexpr int kMaxTokensPerBar = 33;

    explicit MidiDecoder(MessageSink* sink = nullptr) : sink_(sink) {}
    void setMessageSink(MessageSink* sink) { sink_ = sink; }

    // Clears every channel's program and every note-table cell.
    void resetMidiTables();
    // Decodes the file; a file that cannot be read, does not begin with "MThd" or is damaged leaves
    // midiDecoded() false. Errors in the file's events are reported through the sink.
    void decodeMidiFile(const QString& path);
    void decodeMidiData(const QByteArray& data);

    // "C5" for 60: the name of n mod 12 followed by the octave n div 12.
    static QString noteName(qint16 n);
    // General MIDI instrument of a 0-based program, nothing outside 0..127.
    static std::optional<QString> gmInstrumentName(qint16 program);
    // The length code of a note of `ticks`, or the rest tokens (each followed by a space) of a gap.
    // Throws std::overflow_error where 2, 3 or 4 times the division leaves 16 bits, and
    // std::domain_error for a rest with no ticks per quarter.
    static QString durationText(qint32 ticks, qint16 ticksPerQuarter, bool isNote);
    // The value of a token's length code (4 for 4C5, 16 for 16P); 0 when it has none.
    static int leadingNumber(const QString& token);

    // Seconds of the longest channel: its bars times the bar length.
    double tuneLength() const;
    // Per channel, the tokens that overlap [start, end), each preceded by one space.
    std::array<QString, kChannels> selectTimeSpan(double start, double end) const;
    // 2/4 -> 0, 3/4 -> 1, 4/4 -> 2, 3/8 -> 3, 6/8 -> 4, anything else 0.
    static int timeSignatureCode(const std::array<qint16, 2>& timeSig);
    int timeSignatureCode() const { return timeSignatureCode(timeSig_); }

    // MIDI's tempo for a tune that sets none: 500000 microseconds a quarter note, 120 beats a minute.
    static constexpr quint32 kDefaultMicrosPerQuarter = 500000;
    // Times the tunes at MIDI's default tempo as long as no tempo event has been read in this
    // decoder's life; once one has, a tune without its own keeps that one. Only the crop asks for
    // this: the decoder's own state (0 before any tempo) is what `mmsc midi` shows.
    void assumeDefaultTempo();

    bool midiDecoded() const { return midiDecoded_; }
    const QString& noteTable(int channel, int bar) const { return noteTable_[channel][bar]; }
    qint16 channelProgram(int channel) const { return channelProgram_[channel]; }
    const std::vector<NoteEvent>& noteEvents(int channel) const { return noteEvents_[channel]; }
    qint16 ticksPerQuarter() const { return ticksPerQuarter_; }
    double secPerQuarter() const { return secPerQuarter_; }
    qint32 tempoBpm() const { return tempoBpm_; }
    double barWholeNotes() const { return barWholeNotes_; }
    const std::array<qint16, 2>& timeSig() const { return timeSig_; }

private:
    class Failure; // a damaged file: decode ends without a message
    class Reader;

    void decode(const QByteArray& data);
    void readTrack(Reader& track);
    void channelMessage(Reader& track, quint8 status);
    void metaEvent(Reader& track);
    void tempoEvent(Reader& track);
    void timeSignatureEvent(Reader& track);
    void appendNote(int channel, bool on, qint16 note, qint16 velocity);
    void stop(const QString& message); // reports and ends the decode

    void buildNoteText();
    void splitIntoBars(qint16 numerator, qint16 denominator);
    int barCount(int channel) const;

    MessageSink* sink_ = nullptr;

    std::array<std::vector<NoteEvent>, kChannels> noteEvents_;
    std::array<std::array<QString, kBars>, kChannels> noteTable_;
    std::array<qint16, kChannels> channelProgram_{};
    qint16 ticksPerQuarter_ = 0;
    double secPerQuarter_ = 0;
    qint32 tempoBpm_ = 0;
    double barWholeNotes_ = 1.0;
    std::array<qint16, 2> timeSig_{4, 4};
    bool midiDecoded_ = false;
    bool tempoSeen_ = false;

    // Decode-time state.
    qint64 runningTicks_ = 0;
    int previousStatus_ = -1;
};

} // namespace mms
