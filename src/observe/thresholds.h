#pragma once

/// After how many ticks of the start-analysis timer an open item is sent again. Intervals are milliseconds; one below 1
/// counts as 1.
namespace beacon {

/// About 10 seconds' worth of ticks, from the configured delay.
long InitialUpdateThreshold(long delay);

/// About 120 seconds' worth, after a quiet periodic send.
long PeriodicUpdateThreshold(long interval);

/// About 30 seconds' worth, after a send that was given up early; the interval counts in whole seconds.
long BailOutUpdateThreshold(long interval);

}  // namespace beacon
