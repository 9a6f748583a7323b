#pragma once

#include "sound/midiplayer.h"
#include "sound/synthengine.h"

#include <vector>

namespace mms::test {

// What a test wants the engine to do; the test keeps this while the player owns the engine.
struct EngineScript {
    QString unavailable;        // non-empty: the engine cannot be heard
    bool acceptTunes = true;    // false: load() refuses
    std::optional<qint64> tick; // what currentTick() reports
    std::vector<qint64> plays;  // ticks passed to play()
    int stops = 0;
    int loads = 0;
    int unloads = 0;
    bool loaded = false;
};

class FakeEngine final : public SynthEngine {
public:
    explicit FakeEngine(EngineScript& script) : s_(script) {}
    QString unavailableReason() const override { return s_.unavailable; }
    bool load(const QByteArray&) override {
        ++s_.loads;
        s_.loaded = s_.acceptTunes;
        return s_.loaded;
    }
    bool play(qint64 fromTick) override {
        s_.plays.push_back(fromTick);
        return s_.loaded;
    }
    void stop() override { ++s_.stops; }
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

} // namespace mms::test
