#pragma once

#include "check/report.h"

namespace beacon::check {

/// Whether the engine's controller is in the running object table and has the members that the add-in calls; it calls
/// none of them. Waits at most `timeout` milliseconds, twice that if COM's services must start first. After a time-out
/// a thread is still blocked: end the process without waiting for it.
ControllerState AskController(DWORD timeout);

}  // namespace beacon::check
