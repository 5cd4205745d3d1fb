#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace beacon::standin {

/// What the command line asks for.
struct Options {
    std::wstring version = L"10.0.2627";  // what Application.Version says
    int majorVersion = 10;                // 9 to 12: decides on windows and events
    std::wstring store;                   // JSON file; empty: no items
    std::wstring script;                  // empty: commands come from standard input
    bool interactive = false;             // go on with standard input after the script
    std::wstring itemOnly;                // entry (number or subject) shown alone, without an explorer
    std::wstring barsFile;                // where permanent command bars are kept; empty: in %AppData%
    bool noAddins = false;
    bool noStartupEvent = false;
    bool strictExit = false;
    std::chrono::milliseconds strictTimeout{10000};
    bool fastShutdown = false;
    bool help = false;

    /// Whether inspectors and items offer the event interfaces of Outlook 2002 beside those of Outlook 2000.
    bool HasNewEvents() const { return majorVersion > 9; }

    /// Throws UsageError.
    static Options Parse(const std::vector<std::wstring>& arguments);
    static std::wstring Usage();
};

}  // namespace beacon::standin
