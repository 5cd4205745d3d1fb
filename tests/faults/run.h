#pragma once

#include <string>
#include <vector>

#include "tests/faults/scenarios.h"

namespace beacon::standin {

/// One run: a scenario in which one call meets something. "mails 17 0x80004005", "mails 17 selection after",
/// "mails 17 hang 200"; call 0 is none.
struct RunOrder {
    std::wstring scenario;
    unsigned call = 0;
    std::wstring what;   // a result in hexadecimal, an event, or "hang"
    bool after = false;  // the event comes after the call's effect
    unsigned hang = 0;   // ms

    /// Throws ScriptError.
    static RunOrder Parse(const std::wstring& line);
};

struct RunOutcome {
    unsigned calls = 0;  // of the whole run
    std::wstring met;    // the call that was planned
    std::vector<std::wstring> shortfalls;
    std::vector<std::wstring> apart;  // what nobody but the failed call could mend, or but an unheard Quit
    bool damaged = false;             // the process is not to be used for another run
};

/// Runs it. Throws com::Error or ScriptError when it cannot begin.
RunOutcome CarryOut(InProcessEngine& engine, const RunOrder& order);

}  // namespace beacon::standin
