#pragma once

#include "sound/playercontrol.h"
#include "sound/synthengine.h"
#include "sound/tempomap.h"

#include <QElapsedTimer>
#include <QTimer>
#include <memory>
#include <optional>

namespace mms {

// A monotonic millisecond clock; a seam so tests can move time by hand.
class ElapsedClock {
public:
    virtual ~ElapsedClock() = default;
    virtual qint64 msecs() const = 0;
};

class SteadyClock final : public ElapsedClock {
public:
    SteadyClock() { timer_.start(); }
    qint64 msecs() const override { return timer_.elapsed(); }

private:
    QElapsedTimer timer_;
};

// The MIDI player control. Position and Length are milliseconds computed from the file's own tempo
// map: the engine only reports ticks, and its end-of-tune status lags the music, so the player
// stops at the end point itself. When the engine cannot be heard (no soundfont, no audio output,
// a tune it refuses) the player keeps time with the clock, so everything built on Position works.
class MidiPlayer final : public PlayerControl {
    Q_OBJECT
public:
    // Plays through FluidSynth with the default soundfont on the default audio output.
    explicit MidiPlayer(QObject* parent = nullptr);
    MidiPlayer(std::unique_ptr<SynthEngine> engine, std::unique_ptr<ElapsedClock> clock,
               QObject* parent = nullptr);
    ~MidiPlayer() override;
    Q_DISABLE_COPY_MOVE(MidiPlayer)

    Status open(const QString& path) override;
    void close() override;
    Status play() override;
    void stop() override;
    void prev() override;
    void seek(qint64 ms) override;
    void setFrom(qint64 ms) override { from_ = ms; }
    void setTo(qint64 ms) override { to_ = ms; }
    bool isOpen() const override { return open_; }
    bool isPlaying() const override { return playing_; }
    qint64 position() const override;
    qint64 length() const override { return length_; }

    bool isStatusTimerActive() const { return statusTimer_.isActive(); }
    // Why the engine cannot be heard at all; empty when it can.
    QString unavailableReason() const { return engine_->unavailableReason(); }
    // True while the open tune is heard rather than timed by the clock.
    bool isAudible() const { return audible_; }

    // One tick of the control: stops at the end point, then sends the status update. The timers
    // call it; tests call it directly after moving their clock.
    void poll();

private:
    void checkEnd();
    double playedMs() const;
    void scheduleEndCheck();

    std::unique_ptr<SynthEngine> engine_;
    std::unique_ptr<ElapsedClock> clock_;
    QTimer statusTimer_;
    QTimer endTimer_; // fires close to the end point, so a stretch stops when it should, not up to an
                      // interval late
    TempoMap tempo_;
    bool open_ = false;
    bool playing_ = false;
    bool audible_ = false;
    qint64 length_ = 0;
    qint64 posMs_ = 0;   // position while stopped
    qint64 startMs_ = 0; // where the running play started
    qint64 stopMs_ = 0;  // where the running play ends
    qint64 clockStart_ = 0;
    std::optional<qint64> from_;
    std::optional<qint64> to_;
};

} // namespace mms
