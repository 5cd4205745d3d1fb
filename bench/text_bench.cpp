#include <benchmark/benchmark.h>

#include <string>

#include "text_bodies.h"

// Nanoseconds for each character of a body, by kind and by length: 1,024 characters, and the longest body that a
// setting can allow.
namespace {

void CleanSplitEncode(benchmark::State& state, const std::wstring& body) {
    std::size_t out = 0;
    for (auto _ : state) benchmark::DoNotOptimize(out += beacon::bench::CleanSplitEncode(body));
    state.counters["per_character"] = benchmark::Counter(
        static_cast<double>(body.size()), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const beacon::bench::BodyKind& kind : beacon::bench::kBodyKinds)
        for (const std::size_t size : {1024, 32767}) {
            const std::string name = std::string(kind.name) + "/" + std::to_string(size);
            benchmark::RegisterBenchmark(name.c_str(), CleanSplitEncode, kind.make(size));
        }
    benchmark::RunSpecifiedBenchmarks();
}
