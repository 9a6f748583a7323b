#pragma once

#include "sound/multimediadevice.h"
#include "sound/synthengine.h"

#include <QString>
#include <memory>

namespace mms {

class ElapsedClock;

// The real preview device: plays MIDI files through FluidSynth with a General MIDI soundfont.
// The soundfont is taken from `soundfont`, else $MMS_SOUNDFONT, else the standard Debian path.
// Where no audio output or soundfont exists every command fails quietly, and the reason is said
// once on stderr.
class FluidSynthDevice final : public MultimediaDevice {
public:
    explicit FluidSynthDevice(const QString& soundfont = QString());
    // The same device on a given engine and clock (tests, other synthesizers).
    FluidSynthDevice(std::unique_ptr<SynthEngine> engine, std::unique_ptr<ElapsedClock> clock);
    ~FluidSynthDevice() override;
    int sendString(const QString& command) override;

private:
    // play, pause, resume, stop and close, once a tune is open.
    int controlOpenTune(const QString& command);
    void endPending(Notify how);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace mms
