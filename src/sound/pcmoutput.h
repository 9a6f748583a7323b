#pragma once

#include <QString>
#include <QtGlobal>
#include <functional>
#include <memory>
#include <vector>

namespace mms {

// Where decoded sound is heard: 16-bit mono samples, played once from the start. A seam, so that
// devices built on it can be tested with a scripted output.
class PcmOutput {
public:
    virtual ~PcmOutput() = default;
    // Empty when sound can be heard; otherwise why not (no audio output).
    virtual QString unavailableReason() = 0;
    // Starts `samples`, replacing anything playing. `finished` runs on the calling thread once the
    // last sample has been heard, never after stop(). False when the output refuses to start.
    virtual bool start(std::vector<qint16> samples, int sampleRate, std::function<void()> finished) = 0;
    // Holds the sound where it is, and goes on from there.
    virtual void pause() = 0;
    virtual void resume() = 0;
    virtual void stop() = 0;
    // Milliseconds of the started sound played so far; 0 once stopped or finished.
    virtual qint64 positionMs() const = 0;
};

// The system's default audio output, through Qt Multimedia.
std::unique_ptr<PcmOutput> makeSystemPcmOutput();

} // namespace mms
