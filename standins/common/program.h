#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace beacon::standin {

/// The command line without the program's name.
std::vector<std::wstring> Arguments();

/// The program's file, and the folder of it, without a backslash at its end.
std::wstring ProgramPath();
std::wstring ProgramFolder();

/// Throws com::Error 5, which says what was wrong.
[[noreturn]] void Fail(const std::wstring& text);

/// Handles every message that is waiting.
void PumpMessages();

/// Waits for a message, the event (null: none) or the time, then handles every message.
void WaitAndPump(HANDLE event, DWORD milliseconds);

}  // namespace beacon::standin
