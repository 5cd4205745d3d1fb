#pragma once

#include <string>
#include <string_view>
#include <vector>

// The body rules as they are worded, pass by pass and search by search, without regard to time: what the linear
// routines are compared with.
namespace beacon::reference {

std::wstring StripReplyPrefixes(std::wstring subject);
std::wstring CleanBodyText(std::wstring text);
std::wstring RemoveBreakChars(std::wstring piece);
std::vector<std::wstring> Split(std::wstring text);

}  // namespace beacon::reference
