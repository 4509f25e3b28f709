#include <cmath>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"

bool MeasurePerSecond(const Measurement_t& measurement, uint64_t* perSecond) {
    constexpr uint64_t kPartOfASecond = 100;
    constexpr int kMostReadings = 10'000'000;  // gives up on a timer that doesn't move, after some seconds
    uint64_t countBefore, countAfter, timeBefore, time, ticks = 0;
    // Reads timer and counter in the same order both times, so that the delay between the two readings cancels out.
    if (!measurement.ReadTimer(measurement.context, &timeBefore) ||
        !measurement.ReadCounter(measurement.context, &countBefore))
        return false;
    for (int readings = 0; ticks < measurement.ticksPerSecond / kPartOfASecond; ++readings) {
        if (readings == kMostReadings || !measurement.ReadTimer(measurement.context, &time)) return false;
        ticks = (time - timeBefore) & measurement.timerMask;
    }
    if (!measurement.ReadCounter(measurement.context, &countAfter) || countAfter <= countBefore) return false;
    const double result = std::floor(static_cast<double>(countAfter - countBefore) *
                                     static_cast<double>(measurement.ticksPerSecond) / static_cast<double>(ticks));
    if (result < 1 || result >= 0x1p64) return false;
    *perSecond = static_cast<uint64_t>(result);
    return true;
}
