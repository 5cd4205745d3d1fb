#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace beacon::com {

/// The characters of a BSTR, including NULs; "" for a null BSTR.
inline std::wstring ToText(BSTR value) {
    return value == nullptr ? std::wstring() : std::wstring(value, SysStringLen(value));
}

/// A new BSTR, owned by the caller. Throws std::bad_alloc.
BSTR NewBstr(std::wstring_view text);

/// Convert to and from the ANSI code page, as the ...A functions of Windows do. A character that the code page lacks
/// becomes "?".
std::string ToAnsi(std::wstring_view text);
std::wstring FromAnsi(std::string_view text);

/// Converts from any code page of the system.
std::wstring FromCodePage(std::string_view text, UINT codePage);

/// Convert to and from UTF-8.
std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);

}  // namespace beacon::com
