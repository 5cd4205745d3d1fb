#pragma once

#include "check/report.h"

namespace beacon::check {

/// Whether the engine's controller is in the running object table and knows the members that the add-in calls. It is
/// asked on a thread of its own, which goes on to wait when the time is over: end this process without waiting for it.
ControllerState AskController(DWORD patience);

}  // namespace beacon::check
