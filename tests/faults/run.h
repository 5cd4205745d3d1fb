#pragma once

#include <string>

#include "tests/faults/in_process_engine.h"

namespace beacon::standin {

struct RunOutcome {
    unsigned calls = 0;  // of the whole run
    unsigned memory = 0;
    unsigned system = 0;
    std::wstring met;          // the calls and the request that had faults
    std::wstring failures;     // separated by semicolons
    std::wstring unavoidable;  // left, because only the failed call or an unheard Quit could release it
    bool damaged = false;      // the process cannot be used for another run
};

/// Runs a scenario with its faults: "mails 17 0x80004005", "mails/log 17 selection after + 20 hang 200",
/// "items memory 40 10" (requests 40 to 49 are refused), "toolbar system 3", "mails" (nothing fails). Throws com::Error
/// or ScriptError when it cannot begin.
RunOutcome CarryOut(InProcessEngine& engine, const std::wstring& order);

}  // namespace beacon::standin
