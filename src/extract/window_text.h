#pragma once

#include <windows.h>

#include <string>

#include "com/object.h"

namespace beacon {

/// Reading what Outlook's own controls show. Errors of a document object are raised; a window that is gone or does not
/// answer gives "".

/// The text of a control, at most "MaxDocUnits" - 1 characters.
std::wstring WindowGetText(HWND window);

/// The HTML document behind an "Internet Explorer_Server" window; empty when there is none or the window does not
/// answer within 1000 ms.
com::Object WindowDOM(HWND window);

/// The selected text of a rich-edit control, whole. Other windows do not answer the message and give "".
std::wstring EditSelection(HWND control);

/// The selected text of an HTML document.
std::wstring DocumentSelection(const com::Object& document);

/// The text of the rich-edit field that follows the label with exactly this text; "" for any other field.
std::wstring GetLabelledFieldText(HWND dialog, const std::wstring& labelText, const char* labelClass);

/// Copies out of foreign buffers, of `length` bytes or 16-bit characters; the 8-bit one is cut at its first NUL.
std::wstring LPSTRtoBSTR(const char* address, long length);
std::wstring LPWSTRtoBSTR(const wchar_t* address, long length);

}  // namespace beacon
