#pragma once

#include <string>
#include <string_view>

/// The engine's text encodings. The engine link writes the log lines around them.
namespace beacon {

/// Text safe inside an attribute of an engine message: every character through ExpandEntity. A text in which nothing
/// changes is handed back without a copy, when it was moved in.
std::wstring XmlEncode(std::wstring text);

/// What one character becomes in an attribute: an entity, the character itself, or nothing for the control characters
/// 0x01 to 0x08, 0x0B, 0x0C, 0x0E, 0x19 and 0x1B to 0x1F. The engine relies on exactly this uneven set.
std::wstring ExpandEntity(wchar_t character);

/// Reserved and unsafe characters as "%" and their code in upper-case hexadecimal; all others are copied.
std::wstring UrlEncode(std::wstring_view text);

/// The reverse. A digit that is not hexadecimal counts as 0; a "%" without two characters after it is copied.
std::wstring UrlDecode(std::wstring_view text);

/// Value of a hexadecimal digit, 0 to 15; 0 for any other character.
int cHex(wchar_t digit);

}  // namespace beacon
