#pragma once

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

namespace beacon::bench {

/// Nanoseconds of one of `count` calls.
template <class Action>
double NanosecondsOf(int count, Action&& action) {
    LARGE_INTEGER frequency;
    LARGE_INTEGER start;
    LARGE_INTEGER end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    for (int i = 0; i < count; ++i) action();
    QueryPerformanceCounter(&end);
    return 1e9 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart) / count;
}

/// Times both sides in turn (A B A B), so that a busy machine affects both, and prints a line of JSON for
/// scripts/bench.py: the times of each round, in units of `unit` nanoseconds.
template <class Ours, class Reference>
void Compare(const std::string& row, int count, double unit, Ours&& ours, Reference&& reference) {
    std::vector<double> times[2];
    for (int round = 0; round < 15; ++round) {
        times[0].push_back(NanosecondsOf(count, ours) / unit);
        times[1].push_back(NanosecondsOf(count, reference) / unit);
    }
    const auto print = [](const char* name, const std::vector<double>& values) {
        std::printf(", \"%s\": [", name);
        for (size_t i = 0; i < values.size(); ++i) std::printf("%s%.3f", i == 0 ? "" : ", ", values[i]);
        std::printf("]");
    };
    std::printf("{\"row\": \"%s\"", row.c_str());
    print("ours", times[0]);
    print("reference", times[1]);
    std::printf("}\n");
    std::fflush(stdout);
}

}  // namespace beacon::bench
