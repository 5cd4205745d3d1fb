#pragma once

#include <windows.h>

#include <cstdio>
#include <vector>

namespace beacon::bench {

/// Nanoseconds that the action takes.
template <class Action>
double NanosecondsOf(Action&& action) {
    LARGE_INTEGER frequency;
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    action();
    QueryPerformanceCounter(&end);
    return 1e9 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

/// One line of JSON for scripts/bench.py: the values of each side, in order of measurement. What the values are is the
/// script's business.
inline void Report(const char* row, const std::vector<double>& ours, const std::vector<double>& bare = {}) {
    std::printf("{\"row\": \"%s\", \"ours\": [", row);
    for (size_t i = 0; i < ours.size(); ++i) std::printf("%s%.3f", i == 0 ? "" : ", ", ours[i]);
    std::printf("], \"bare\": [");
    for (size_t i = 0; i < bare.size(); ++i) std::printf("%s%.3f", i == 0 ? "" : ", ", bare[i]);
    std::printf("]}\n");
    std::fflush(stdout);
}

/// Both sides in turns (A B A B), so that whatever else the machine does meets both: nanoseconds of `count` calls each.
template <class Ours, class Bare>
void Compare(const char* row, int rounds, int count, Ours&& ours, Bare&& bare) {
    std::vector<double> times[2];
    for (int round = 0; round < rounds; ++round) {
        times[0].push_back(NanosecondsOf([&] {
                               for (int i = 0; i < count; ++i) ours();
                           }) /
                           count);
        times[1].push_back(NanosecondsOf([&] {
                               for (int i = 0; i < count; ++i) bare();
                           }) /
                           count);
    }
    Report(row, times[0], times[1]);
}

}  // namespace beacon::bench
