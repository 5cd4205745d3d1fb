#include <benchmark/benchmark.h>

#include <string>

#include "observe/body_text.h"

// Bodies and subjects crafted to make the passes long, at the longest body a setting can allow (32,767 characters) or
// more. Cleaning and splitting must stay far below the time a user notices: 50 ms each.
namespace {

constexpr std::size_t kLongestBody = 32767;

std::wstring Repeat(std::wstring_view unit, std::size_t count) {
    std::wstring text;
    text.reserve(unit.size() * count);
    for (std::size_t i = 0; i < count; ++i) text += unit;
    return text;
}

std::wstring Dashes() { return std::wstring(kLongestBody, L'-'); }

std::wstring Fields() { return Repeat(L"x HYPERLINK \"http://a/b\" y ", 5000); }

std::wstring FieldsThenDashes() { return Repeat(L"HYPERLINK \"\"", 1300) + Repeat(L"--", 8000); }

std::wstring UnclosedField() { return L"before -- HYPERLINK \"" + Repeat(L"\\n--", kLongestBody / 4); }

std::wstring Escapes() { return Repeat(L"\\n", kLongestBody / 2); }

std::wstring Urls() { return Repeat(L"http://a ", kLongestBody / 9); }

std::wstring NestedHalves() {
    return Repeat(L"http:/", kLongestBody / 16) + Repeat(L"/ ", kLongestBody / 16) + Repeat(L"-http://a ", 1000);
}

std::wstring VerticalTabs() { return std::wstring(kLongestBody - 1, L'\v') + L'\r'; }

void CleanAndSplit(benchmark::State& state, const std::wstring& body) {
    const bool quiet = false;
    std::size_t pieces = 0;
    for (auto _ : state) {
        const std::wstring text = beacon::CleanBodyText(body, quiet);
        beacon::BodySplitter splitter(text);
        while (const auto raw = splitter.Next()) {
            const std::wstring piece = beacon::RemoveBreakChars(*raw, quiet);
            benchmark::DoNotOptimize(beacon::PieceEmphasis(piece, quiet));
            ++pieces;
        }
    }
    benchmark::DoNotOptimize(pieces);
}

void StripPrefixes(benchmark::State& state, const std::wstring& subject) {
    for (auto _ : state) benchmark::DoNotOptimize(beacon::StripReplyPrefixes(subject));
}

void OnePiece(benchmark::State& state, const std::wstring& piece) {
    const bool quiet = false;
    for (auto _ : state) benchmark::DoNotOptimize(beacon::RemoveBreakChars(piece, quiet));
}

BENCHMARK_CAPTURE(CleanAndSplit, dashes, Dashes())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, fields, Fields())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, fields_then_dashes, FieldsThenDashes())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, unclosed_field, UnclosedField())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, escapes, Escapes())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, urls, Urls())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, nested_halves, NestedHalves())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CleanAndSplit, vertical_tabs, VerticalTabs())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OnePiece, tabs, std::wstring(32766, L'\t') + L'\r')->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StripPrefixes, thousand_re, Repeat(L"RE: ", 1000))->Unit(benchmark::kMillisecond);

}  // namespace
