#pragma once

#include <functional>
#include <vector>

#include "tests/faults/outlook_session.h"

namespace beacon::standin {

/// Does nothing without its target (no window, no such button).
using Action = std::function<void(OutlookSession&)>;

/// What the user does from Outlook's start to its end.
struct Scenario {
    const wchar_t* name;
    const wchar_t* toolbar;  // "EnableToolbar"
    std::vector<Action> steps;
    Action end;
};

/// An event inside an outgoing call of the adapter.
struct Event {
    const wchar_t* name;
    Action raise;
};

extern const std::vector<Scenario> kScenarios;
extern const std::vector<Event> kEvents;

}  // namespace beacon::standin
