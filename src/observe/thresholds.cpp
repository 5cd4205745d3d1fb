#include "observe/thresholds.h"

#include <algorithm>

#include "support/numbers.h"

namespace beacon {
namespace {

long TicksIn(double seconds, long interval) {
    return RoundHalfEven(seconds * 1000.0 / static_cast<double>(std::max(interval, 1L)));
}

}  // namespace

long InitialUpdateThreshold(long delay) { return TicksIn(10.0, delay); }

long PeriodicUpdateThreshold(long interval) { return TicksIn(120.0, interval); }

long BailOutUpdateThreshold(long interval) {
    const long seconds = std::max(RoundHalfEven(static_cast<double>(interval) / 1000.0), 1L);
    return RoundHalfEven(30.0 / static_cast<double>(seconds));
}

}  // namespace beacon
