#pragma once

#include <string_view>

namespace beacon {

/// The part before the first NUL, or all of it. Refers to the text given.
std::wstring_view StripNulls(std::wstring_view text);

}  // namespace beacon
