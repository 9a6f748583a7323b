#pragma once

#include "model/clockrandom.h"

#include <QDateTime>
#include <deque>

namespace mms::test {

class FixedClock final : public Clock {
public:
    QDateTime now() const override { return time; }
    QDateTime time = QDateTime(QDate(2024, 5, 17), QTime(14, 30, 5));
};

// Draws from a queue; 0 when it is empty.
class ScriptedRandom final : public RandomSource {
public:
    double uniform() override {
        if (draws.empty()) return 0.0;
        const double d = draws.front();
        draws.pop_front();
        return d;
    }
    std::deque<double> draws;
};

} // namespace mms::test
