#pragma once

#include "model/messagesink.h"
#include "sound/mididecoder.h"

#include <QString>

namespace mms {

// The three refusals of a crop, in the user's language (error strings 18, 20 and 21).
struct CropTexts {
    QString endNotAfterStart; // 18
    QString endBeyondTune;    // 20
    QString startBelowZero;   // 21

    // Plain English texts for where no language file is at hand.
    static CropTexts english();
};

// Writes the stretch [start, end] of the tune at inPath as a new MIDI file at outPath, keeping the
// program of every channel, the tempo and the time signature. startText and endText are seconds as
// the crop window shows them ("12.5s"): the last character is dropped, an empty text counts as 0.
// Every token of the decoder's note text that overlaps the stretch is kept whole. A tune without a
// tempo event is timed at the tempo the decoder last read, or at MIDI's default of 120 beats a
// minute when it has read none, so that every tune with notes has a length to crop from.
//
// Returns true when the file was written. Refusals are shown through `sink` with `texts`; the
// decoder reports damaged files through its own sink; a file that cannot be written is reported
// through `sink` with the reason.
bool cropMidi(MidiDecoder& decoder, const QString& inPath, const QString& outPath, const QString& startText,
              const QString& endText, const CropTexts& texts, MessageSink& sink);

} // namespace mms
