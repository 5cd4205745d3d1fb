#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/outlook_session.h"

namespace beacon::standin {

/// What the user does from Outlook's start to its end.
struct Scenario {
    const wchar_t* name;
    const wchar_t* toolbar;  // "EnableToolbar"
    std::vector<std::function<void(OutlookSession&)>> steps;
    void (OutlookSession::*end)();
};

const std::vector<Scenario>& Scenarios();

/// Throws ScriptError.
const Scenario& FindScenario(const std::wstring& name);

}  // namespace beacon::standin
