#pragma once

#include <windows.h>

#include <string>

#include "com/object.h"

namespace beacon {

/// Reads the texts of Outlook's controls. Raises errors of a document object. Returns "" for a window that is gone or
/// does not answer.

/// The text of a control, at most "MaxDocUnits" - 1 characters.
std::wstring WindowGetText(HWND window);

/// The HTML document of an "Internet Explorer_Server" window of this process; empty if there is none, or no answer
/// within 1000 ms.
com::Object WindowDOM(HWND window);

/// The selected text of a rich-edit control of this process; "" for other windows.
std::wstring EditSelection(HWND control);

/// The selected text of an HTML document.
std::wstring DocumentSelection(const com::Object& document);

/// The text of the rich-edit field that follows the label with exactly this text; "" for other fields.
std::wstring GetLabelledFieldText(HWND dialog, const std::wstring& labelText, const char* labelClass);

/// Copy a buffer of `length` bytes or 16-bit characters. The 8-bit text is cut at its first NUL.
std::wstring LPSTRtoBSTR(const char* address, long length);
std::wstring LPWSTRtoBSTR(const wchar_t* address, long length);

}  // namespace beacon
