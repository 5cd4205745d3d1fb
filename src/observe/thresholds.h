#pragma once

/// Number of start-analysis ticks after which an open item is sent again. Intervals are in ms and at least 1.
namespace beacon {

/// About 10 seconds, after loading.
long InitialUpdateThreshold(long delay);

/// About 120 seconds, after a periodic send.
long PeriodicUpdateThreshold(long interval);

/// About 30 seconds, after a send that was put off. The interval is rounded to seconds.
long BailOutUpdateThreshold(long interval);

}  // namespace beacon
