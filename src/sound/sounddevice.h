#pragma once

#include "sound/multimediadevice.h"
#include "sound/pcmoutput.h"

#include <memory>

namespace mms {

// The composer's multimedia device, for MIDI tunes and AMR sounds alike. A file whose name ends in
// ".mid" (any case) goes to the MIDI device; any other file is decoded as AMR when it is opened and
// played on the PCM output. Both report through this device's playbackEnded().
class SoundDevice final : public MultimediaDevice {
    Q_OBJECT
public:
    // FluidSynth for MIDI and the system audio output for AMR.
    SoundDevice();
    SoundDevice(std::unique_ptr<MultimediaDevice> midi, std::unique_ptr<PcmOutput> pcm);
    ~SoundDevice() override;
    Q_DISABLE_COPY_MOVE(SoundDevice)

    Result open(const QString& path) override;
    Result play() override;
    void pause() override;
    void resume() override;
    void stop() override;
    void close() override;
    qint64 position() const override;
    bool isOpen() const override { return open_ != Open::None; }

private:
    void endPending(Notify how);

    std::unique_ptr<MultimediaDevice> midi_;
    std::unique_ptr<PcmOutput> pcm_;
    enum class Open { None, Midi, Amr } open_ = Open::None;
    std::vector<qint16> samples_; // the open AMR sound, decoded
    bool notifyPending_ = false;  // an AMR play whose outcome is still to be reported
    qint64 amrPositionMs_ = 0;    // where the AMR sound stands while it is not playing
};

} // namespace mms
