#pragma once

#include "model/status.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <array>
#include <vector>

namespace mms {

// Writes the note text of up to 16 channels as a Standard MIDI File. Use: Init, then for each
// channel ImportTrackNote and ImportTrackGM, then ExportMidi.
//
// Note text accepted by ImportTrackNote (nothing else; no blanks anywhere):
//
//   note-text := "_" | token *( "," token )      "_" is a channel without notes
//   token     := length ( "P" | pitch )           "P" is a rest
//   length    := "1" | "2" | "4" | "8" | "16" | "32"   whole note divided by the number
//   pitch     := name octave
//   name      := "C" | "C#" | "D" | "D#" | "E" | "F" | "F#" | "G" | "G#" | "A" | "A#" | "B"
//   octave    := "0" | "1" | ... | "10"             note number = 12 * octave + semitone,
//                                                   at most 127 (G10)
//
// These are exactly the tokens the MIDI decoder writes (4C5, 16F#4, 8P). Notes and rests are laid
// end to end from the start of the tune; each note sounds for its whole length.
//
// The file is format 1 at kTicksPerQuarter ticks per quarter note, so that every length is a whole
// number of ticks. Track 0 holds the time signature and the tempo; then one track for each channel
// that has notes, holding its program change and its notes (note-on velocity kVelocity, note-off
// velocity 0). Channels given "_" or never given notes get no track.
class MidiWriter {
public:
    static constexpr int kTicksPerQuarter = 480;
    static constexpr int kVelocity = 100;

    // Starts a new tune: every channel empty, every program 0.
    void Init();
    // `reserved` must be 0. Replaces the channel's notes.
    Status ImportTrackNote(int channel, int reserved, const QString& noteText);
    Status ImportTrackGM(int channel, int program);
    // Time-signature codes: 0 = 2/4, 1 = 3/4, 2 = 4/4, 3 = 3/8, 4 = 6/8. Beats per minute from 4 up
    // (the tempo is stored in 24 bits of microseconds per quarter note).
    Status ExportMidi(const QString& outPath, int beatsPerMinute, int timeSignatureCode) const;
    Status ExportMidi(QIODevice& out, int beatsPerMinute, int timeSignatureCode) const;

    // The length in ticks of a token's length code, 0 for anything that is not one.
    static int ticksOfLength(const QString& code);

private:
    struct Event {
        bool rest;
        int ticks;
        int note;
    };
    Status checkChannel(int channel) const;

    std::array<std::vector<Event>, 16> notes_;
    std::array<int, 16> programs_{};
};

} // namespace mms
