#pragma once

#include <optional>
#include <string>
#include <vector>

namespace beacon::standin {

/// The command line, understood.
struct Options {
    bool help = false;
    bool registerOnly = false;
    bool unregister = false;
    bool embedding = false;  // started by COM, for the toolbar's configuration alone
    bool raw = false;
    bool trace = false;
    bool toolbar = false;
    bool untilEof = false;
    std::wstring log;
    std::wstring script;
    std::wstring bitmaps;
    long contextMode = 1;
    std::optional<long> engineState;
    std::wstring error;  // what is wrong with the command line; empty when nothing is
};

Options ParseOptions(const std::vector<std::wstring>& arguments);

/// A whole decimal number, or nothing.
std::optional<long> ParseNumber(const std::wstring& text);

const wchar_t* UsageText();

}  // namespace beacon::standin
