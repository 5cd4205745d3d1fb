#include "engine/control_verbs.h"

#include <algorithm>

#include "support/string_values.h"

namespace beacon {

std::optional<std::wstring> MessageVerb(std::wstring_view message) {
    const std::wstring_view tail = message.substr(std::min<std::size_t>(1, message.size()));
    const std::size_t blank = tail.find(L' ');
    if (blank == std::wstring_view::npos || blank == 0) return std::nullopt;
    return UpperAscii(tail.substr(0, blank));
}

bool SwitchesAutoUpdateOn(std::wstring_view message) { return UpperAscii(message).find(L"TRUE") != std::wstring::npos; }

}  // namespace beacon
