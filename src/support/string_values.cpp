#include "support/string_values.h"

namespace beacon {

std::wstring UpperAscii(std::wstring_view text) {
    std::wstring upper(text);
    for (wchar_t& character : upper)
        if (character >= L'a' && character <= L'z') character = static_cast<wchar_t>(character - L'a' + L'A');
    return upper;
}

void Shorten(std::wstring& text, std::size_t most) {
    if (text.size() < most) return;
    text.resize(most);
    if (most != 0 && text.back() >= 0xD800 && text.back() <= 0xDBFF) text.pop_back();
}

std::string SeveralStrings(std::string_view bytes) {
    std::string result;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        result += bytes[i];
        if (bytes[i] == '\0' && i + 1 < bytes.size() && bytes[i + 1] == '\0') ++i;
    }
    return result;
}

}  // namespace beacon
