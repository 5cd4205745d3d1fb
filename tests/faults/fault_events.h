#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/faults/outlook_session.h"

namespace beacon::standin {

/// The names of the events that can happen while the adapter is inside an outgoing call.
std::vector<std::wstring> EventNames();

/// Raises an event in the session, which must outlive the function. The event does nothing if it has no target (no
/// window, no such button). Throws ScriptError for an unknown name.
std::function<void()> FindEvent(OutlookSession& session, const std::wstring& name);

}  // namespace beacon::standin
