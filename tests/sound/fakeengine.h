#pragma once

#include "sound/midi_testfile.h"
#include "sound/midiplayer.h"

#include <vector>

namespace mms::test {

// A scripted engine: the test keeps the script while the player owns the engine.
struct EngineScript {
    QString unavailable;        // non-empty: the engine cannot be heard
    bool acceptTunes = true;    // false: load() refuses
    std::optional<qint64> tick; // what currentTick() reports
    std::vector<qint64> plays;  // ticks passed to play()
    int loads = 0, unloads = 0;
    bool loaded = false;
};

class FakeEngine final : public SynthEngine {
public:
    explicit FakeEngine(EngineScript& script) : s_(script) {}
    QString unavailableReason() const override { return s_.unavailable; }
    bool load(const QByteArray&) override {
        ++s_.loads;
        return s_.loaded = s_.acceptTunes;
    }
    bool play(qint64 fromTick) override {
        s_.plays.push_back(fromTick);
        return s_.loaded;
    }
    void stop() override {}
    std::optional<qint64> currentTick() override { return s_.loaded ? s_.tick : std::nullopt; }
    void unload() override {
        ++s_.unloads;
        s_.loaded = false;
    }

private:
    EngineScript& s_;
};

class FakeClock final : public ElapsedClock {
public:
    explicit FakeClock(qint64& ms) : ms_(ms) {}
    qint64 msecs() const override { return ms_; }

private:
    qint64& ms_;
};

// 96 ticks per quarter; the tempo track changes tempo twice: 120 bpm for two beats (1 s), 240 bpm
// for two beats (0.5 s), 60 bpm for four beats (4 s). Eight quarter notes: 768 ticks, 5.5 s.
inline QByteArray threeTempoTune() {
    midifile::Track tempos, notes;
    tempos.tempo(500000).tempo(250000, 192).tempo(1000000, 192).end();
    for (int i = 0; i < 8; ++i)
        notes.note(0, 96, 0, 60 + i);
    notes.end();
    return midifile::midiFile(96, {tempos, notes});
}

} // namespace mms::test
