#pragma once

#include <functional>
#include <string>
#include <vector>

#include "outlook/program/outlook.h"

namespace beacon::standin {

/// Something that may happen to an add-in while it is inside a call of its own. One that has nothing to happen to (no
/// window, no such button) does nothing.
struct OutlookEvent {
    const wchar_t* name;
    void (*raise)(Outlook& outlook);
};

const std::vector<OutlookEvent>& OutlookEvents();

/// Raises it in this Outlook, which must outlive the function; empty when none has the name.
std::function<void()> FindOutlookEvent(Outlook& outlook, const std::wstring& name);

/// The timers of the adapter's hidden forms, by their numbers.
enum class FormTimer : WPARAM { Analysis = 1, Reconnect, Disconnect, Toolbar };

/// The message-only windows of this thread that the add-ins have made.
std::vector<HWND> HiddenForms(const Outlook& outlook);

}  // namespace beacon::standin
