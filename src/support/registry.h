#pragma once

#include <windows.h>

#include <string>

#include "com/handle.h"

namespace beacon {

/// Registry access by the ANSI functions. The registry's failures raise no error: reads describe them in gRegLastError,
/// writes ignore them.

/// The text of the last failure. Only GetRegValue clears it, so it is "" after a successful GetRegValue.
extern const std::wstring& gRegLastError;

/// The thread's pending input: the status of GetQueueStatus for keys, mouse buttons, painting and hot keys.
DWORD HasPendingInput();
/// If input is pending, dispatches the thread's messages until none is left, for at most one second plus the last
/// message. Leaves WM_QUIT to the host's own loop.
void DoEventsIfPending();

/// Both return the Win32 error code. `key` is null after a failure.
long OpenRegKey(HKEY hive, const std::wstring& subKey, com::UniqueKey& key);
long CreateRegKey(HKEY hive, const std::wstring& subKey, com::UniqueKey& key);

/// The text of a string value ("" on failure). REG_EXPAND_SZ comes unexpanded; the strings of a REG_MULTI_SZ come each
/// followed by a carriage return. A leading "\" of the key is ignored.
std::wstring modGetString(HKEY hive, const std::wstring& key, const std::wstring& name);
/// The number of a REG_DWORD value; 0 on failure and, without an error text, for other types of at most 4 bytes.
long modGetDword(HKEY hive, const std::wstring& key, const std::wstring& name);
/// Reads a setting as text, a REG_DWORD in decimal. False and "" when it cannot be read. A leading "\" of the key is
/// ignored.
bool GetRegValue(HKEY hive, const std::wstring& key, const std::wstring& name, std::wstring& value);

/// Writes a REG_SZ and lets pending input be processed: the caller can be re-entered by Outlook events here.
void SetRegString(HKEY hive, const std::wstring& key, const std::wstring& name, const std::wstring& value);
void SetRegDword(HKEY hive, const std::wstring& key, const std::wstring& name, long value);

}  // namespace beacon
