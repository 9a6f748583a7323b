#pragma once

#include "common/libraryinfo.h"
#include "sound/synthengine.h"

#include <memory>

namespace mms {

// The synthesiser library the engine runs on.
LibraryInfo synthLibrary();

// A SynthEngine on FluidSynth with a General MIDI soundfont. Each loaded tune gets its own
// FluidSynth player and audio driver: FluidSynth must not delete a player while a driver renders,
// so both are torn down together when the tune is unloaded.
class FluidSynthEngine final : public SynthEngine {
public:
    enum class Output {
        AudioDevice, // the system's default audio output
        Offline,     // no driver: the caller pulls samples with render()
    };

    explicit FluidSynthEngine(const QString& soundfont = QString(), Output output = Output::AudioDevice);
    ~FluidSynthEngine() override;
    Q_DISABLE_COPY_MOVE(FluidSynthEngine)

    QString unavailableReason() const override;
    bool load(const QByteArray& midi) override;
    bool play(qint64 fromTick) override;
    void stop() override;
    std::optional<qint64> currentTick() override;
    void unload() override;

    // Offline output only: renders `frames` stereo frames, advancing a playing tune exactly as an
    // audio driver would. False when nothing could be rendered.
    bool render(float* left, float* right, int frames);

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
};

} // namespace mms
