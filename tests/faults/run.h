#pragma once

#include <string>
#include <vector>

#include "tests/faults/resource_points.h"
#include "tests/faults/scenarios.h"

namespace beacon::standin {

/// What happens at one call of a run.
struct CallFault {
    unsigned call = 0;   // from 1
    std::wstring what;   // a result in hexadecimal, an event, or "hang"
    bool after = false;  // it comes after the call's effect
    unsigned hang = 0;   // ms

    bool IsResult() const { return what.starts_with(L"0x"); }
};

/// One run: a scenario with its faults. "mails 17 0x80004005", "mails/log 17 selection after + 20 hang 200",
/// "items memory 40 10" (requests 40 to 49 are refused), "toolbar system 3", "mails" (nothing fails).
struct RunOrder {
    std::wstring scenario;
    bool logging = false;
    std::vector<CallFault> calls;
    ResourcePlan refused;

    /// Throws ScriptError.
    static RunOrder Parse(const std::wstring& line);

    bool HasFault() const { return !calls.empty() || refused.first != 0; }
};

struct RunOutcome {
    unsigned calls = 0;  // of the whole run
    unsigned memory = 0;
    unsigned system = 0;
    std::wstring met;  // the calls and the request that had faults
    std::vector<std::wstring> failures;
    std::vector<std::wstring> unavoidable;  // left, because only the failed call or an unheard Quit could release it
    bool damaged = false;                   // the process cannot be used for another run
};

/// Runs it. Throws com::Error or ScriptError when it cannot begin.
RunOutcome CarryOut(InProcessEngine& engine, const RunOrder& order);

}  // namespace beacon::standin
