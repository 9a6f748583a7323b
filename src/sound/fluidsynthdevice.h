#pragma once

#include "sound/multimediadevice.h"
#include "sound/synthengine.h"

#include <QString>
#include <memory>

namespace mms {

class ElapsedClock;

// The real preview device: plays MIDI files through FluidSynth with a General MIDI soundfont.
// The soundfont is taken from `soundfont`, else $MMS_SOUNDFONT, else the standard Debian path.
// Where no audio output or soundfont exists nothing opens (NoSound), and the reason is said once
// on stderr.
class FluidSynthDevice final : public MultimediaDevice {
    Q_OBJECT
public:
    explicit FluidSynthDevice(const QString& soundfont = QString());
    // The same device on a given engine and clock (tests, other synthesizers).
    FluidSynthDevice(std::unique_ptr<SynthEngine> engine, std::unique_ptr<ElapsedClock> clock);
    ~FluidSynthDevice() override;

    Result open(const QString& path) override;
    Result play() override;
    void pause() override;
    void resume() override;
    void stop() override;
    void close() override;
    qint64 position() const override;
    bool isOpen() const override;

private:
    void makePlayer();
    void endPending(Notify how);

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace mms
