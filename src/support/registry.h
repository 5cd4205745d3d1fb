#pragma once

#include <windows.h>

#include <string>

namespace beacon {

/// Registry access by the ANSI functions. Nothing here raises an error: reads leave the reason of a failure in
/// gRegLastError, writes ignore failures.

/// The text of the last failure, for whoever looks into one. GetRegValue empties it first, so that it is "" after its
/// success; nothing else does.
extern const std::wstring& gRegLastError;

/// Input that the thread has pending: the status of GetQueueStatus for keys, mouse buttons, painting and hot keys.
DWORD HasPendingInput();
/// Lets the message loop process what is pending, once, if HasPendingInput says there is something. Ends after a second
/// at the latest, but never inside a message. A WM_QUIT stays for the host's own loop.
void DoEventsIfPending();

/// Both return the Win32 error code; `key` is null after a failure. The caller closes the key.
long OpenRegKey(HKEY hive, const std::wstring& subKey, HKEY& key);
long CreateRegKey(HKEY hive, const std::wstring& subKey, HKEY& key);

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
