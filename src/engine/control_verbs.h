#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace beacon {

/// The verb of a controller's message, in upper case: the text between the first character (normally "<") and the next
/// blank. nullopt when it is empty or no blank follows, as in "<EXIT/>".
std::optional<std::wstring> MessageVerb(std::wstring_view message);

/// Whether a SET_AUTOUPDATE message contains "true", in any case and anywhere.
bool SwitchesAutoUpdateOn(std::wstring_view message);

}  // namespace beacon
