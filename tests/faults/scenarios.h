#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/outlook_session.h"

namespace beacon::standin {

/// What the user does from Outlook's start to its end; the calls that the add-in makes meanwhile are the scenario's.
struct Scenario {
    const wchar_t* name;
    const wchar_t* toolbar;  // "EnableToolbar"
    std::vector<std::function<void(OutlookSession&)>> steps;
    void (OutlookSession::*end)();
};

const std::vector<Scenario>& Scenarios();

/// Null when there is none of that name.
const Scenario* FindScenario(const std::wstring& name);

/// An event inside a call, of Outlook's or the engine's: what it does; empty when there is none of that name.
std::function<void()> FindEvent(OutlookSession& session, const std::wstring& name);
std::vector<std::wstring> EventNames();

}  // namespace beacon::standin
