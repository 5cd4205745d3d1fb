#include "engine/control_verbs.h"

#include <algorithm>

namespace beacon {
namespace {

// Verbs and switches are ASCII, so no locale's case rules apply.
std::wstring UpperAscii(std::wstring_view text) {
    std::wstring upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](wchar_t character) {
        return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
    });
    return upper;
}

}  // namespace

std::optional<std::wstring> MessageVerb(std::wstring_view message) {
    const std::wstring_view tail = message.substr(std::min<std::size_t>(1, message.size()));
    const std::size_t blank = tail.find(L' ');
    if (blank == std::wstring_view::npos || blank == 0) return std::nullopt;
    return UpperAscii(tail.substr(0, blank));
}

bool SwitchesAutoUpdateOn(std::wstring_view message) { return UpperAscii(message).find(L"TRUE") != std::wstring::npos; }

}  // namespace beacon
