#pragma once

#include <QDateTime>
#include <random>

namespace mms {

// The clock and the random source are seams: tests fix the time and the draws.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

class RandomSource {
public:
    virtual ~RandomSource() = default;
    // A uniform value in [0, 1).
    virtual double uniform() = 0;
};

class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

// Seeded once from the clock, as the program does at start-up.
class SystemRandom final : public RandomSource {
public:
    SystemRandom() : engine_(static_cast<std::mt19937::result_type>(QDateTime::currentMSecsSinceEpoch())) {}
    double uniform() override { return std::uniform_real_distribution<double>(0.0, 1.0)(engine_); }

private:
    std::mt19937 engine_;
};

} // namespace mms
