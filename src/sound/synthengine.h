#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <optional>

namespace mms {

// What a player needs from a synthesizer: one loaded tune, started at a tick and stopped, and the
// tick being heard. Kept small so players can be tested with a fake engine.
class SynthEngine {
public:
    virtual ~SynthEngine() = default;
    // Empty when tunes can be heard; otherwise why not (no soundfont, no audio output).
    virtual QString unavailableReason() const = 0;
    // Replaces any loaded tune with the bytes of a MIDI file; false when the engine refuses them.
    virtual bool load(const QByteArray& midi) = 0;
    // Starts (or restarts) the loaded tune at the given tick.
    virtual bool play(qint64 fromTick) = 0;
    virtual void stop() = 0;
    // The tick being heard while playing; nothing when the engine cannot tell (silent, not loaded).
    virtual std::optional<qint64> currentTick() = 0;
    virtual void unload() = 0;
};

// The soundfont to use: `explicitPath` if given, else $MMS_SOUNDFONT, else Debian's General MIDI
// soundfont (package fluid-soundfont-gm).
QString soundfontPath(const QString& explicitPath = QString());

// Says on stderr why no sound is heard, once per reason for the whole run.
void reportSilenceOnce(const QString& reason);

} // namespace mms
