#pragma once

#include <string>
#include <string_view>

/// The bytes of string values, which come from the registry as whoever wrote them has left them: with a NUL at the end,
/// without one, or with any number of them.
namespace beacon {

/// The part before the first NUL, or all of it. Refers to the text given.
inline std::string_view StripNulls(std::string_view text) { return text.substr(0, text.find('\0')); }

inline std::wstring_view StripNulls(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

/// The strings of a REG_MULTI_SZ, each with one NUL behind it: two NULs in a row have become one.
std::string SeveralStrings(std::string_view bytes);

}  // namespace beacon
