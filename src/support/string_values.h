#pragma once

#include <string>
#include <string_view>

namespace beacon {

/// ASCII letters in upper case, in every locale; other characters are not changed.
std::wstring UpperAscii(std::wstring_view text);

/// Shortens a text to this many code units, or one fewer if the last would be half a character.
void Shorten(std::wstring& text, std::size_t most);

/// A view of the part before the first NUL, or of the whole text.
inline std::string_view StripNulls(std::string_view text) { return text.substr(0, text.find('\0')); }

inline std::wstring_view StripNulls(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

/// The strings of a REG_MULTI_SZ, each followed by one NUL: two NULs in a row become one.
std::string SeveralStrings(std::string_view bytes);

}  // namespace beacon
