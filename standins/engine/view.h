#pragma once

#include <string>
#include <string_view>

#include "engine/conversation.h"

namespace beacon::standin {

/// The line of the live view for one observation of one client. Control characters are written as \r \n \t or \xNN; a
/// text longer than `width` characters is cut there and its whole length named.
std::wstring DescribeObservation(long handle, const Observation& observation, size_t width = 72);

/// A text as the raw output writes it: backslash, CR and LF as \\ \r \n, everything else as it is, so that a line holds
/// it.
std::wstring EscapeRaw(std::wstring_view text);

}  // namespace beacon::standin
