#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace beacon {

/// The verb of a message from the controller, upper-cased: what stands between the first character (normally "<") and
/// the first blank after it. nullopt when no blank ends it, so "<EXIT/>" has no verb, or when it would be empty.
std::optional<std::wstring> MessageVerb(std::wstring_view message);

/// Whether a SET_AUTOUPDATE message switches on: "true", in any case and anywhere in the message.
bool SwitchesAutoUpdateOn(std::wstring_view message);

}  // namespace beacon
