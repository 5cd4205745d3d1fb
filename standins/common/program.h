#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace beacon::standin {

/// The command line without the program name.
std::vector<std::wstring> Arguments();

/// The file of the program, and its folder without a trailing backslash.
std::wstring ProgramPath();
std::wstring ProgramFolder();

/// Throws com::Error 5 with this description.
[[noreturn]] void Fail(const std::wstring& text);

/// Dispatches all pending messages.
void PumpMessages();

/// Waits for a message, the event (null: none) or the time, then dispatches all pending messages.
void WaitAndPump(HANDLE event, DWORD milliseconds);

}  // namespace beacon::standin
