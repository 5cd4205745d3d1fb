#pragma once

#include <optional>
#include <string>
#include <vector>

namespace beacon::standin {

/// What the command line asks for.
struct Options {
    bool help = false;
    bool registerOnly = false;
    bool unregister = false;
    bool embedding = false;  // started by COM, for the toolbar's configuration alone
    bool raw = false;
    bool toolbar = false;
    bool untilEof = false;
    std::wstring log;
    std::wstring script;
    std::optional<long> engineState;  // nothing: see ToolbarSettings

    /// Throws UsageError.
    static Options Parse(std::vector<std::wstring> arguments);
    static std::wstring Usage();
};

}  // namespace beacon::standin
