#pragma once

#include <string>
#include <string_view>

/// The engine's text encodings. The engine link writes their log lines.
namespace beacon {

/// Applies ExpandEntity to every character, so that the text is safe in an attribute of a message. Moves the argument
/// to the result when nothing changes.
std::wstring XmlEncode(std::wstring text);

/// The entity of one character, the character itself, or "" for the control characters 0x01 to 0x08, 0x0B, 0x0C, 0x0E,
/// 0x19 and 0x1B to 0x1F. The engine expects exactly this irregular set.
std::wstring ExpandEntity(wchar_t character);

/// Replaces reserved and unsafe characters by "%" and their code in upper-case hexadecimal.
std::wstring UrlEncode(std::wstring_view text);

/// Reverses UrlEncode. An invalid digit counts as 0. Copies a "%" that fewer than two characters follow.
std::wstring UrlDecode(std::wstring_view text);

/// Value of a hexadecimal digit, 0 to 15; 0 for any other character.
int cHex(wchar_t digit);

}  // namespace beacon
