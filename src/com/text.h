#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace beacon::com {

/// The characters of a BSTR, embedded NULs included. A null BSTR is the empty text.
inline std::wstring ToText(BSTR value) {
    return value == nullptr ? std::wstring() : std::wstring(value, SysStringLen(value));
}

/// A new BSTR with these characters; the caller owns it. Throws std::bad_alloc.
BSTR NewBstr(std::wstring_view text);

/// Conversion by the ANSI code page, as the ...A functions of Windows do it. Characters without an equivalent become
/// "?".
std::string ToAnsi(std::wstring_view text);
std::wstring FromAnsi(std::string_view text);

/// The same from a code page of the system's.
std::wstring FromCodePage(std::string_view text, UINT codePage);

/// The same in UTF-8.
std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);

}  // namespace beacon::com
