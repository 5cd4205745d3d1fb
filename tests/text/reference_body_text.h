#pragma once

#include <string>
#include <string_view>
#include <vector>

// The body rules as they are worded, pass by pass and search by search, without regard to time: what the linear
// routines are compared with.
namespace beacon::reference {

std::wstring StripReplyPrefixes(std::wstring subject);
/// For a hyperlink field without a closing quote the passes as worded would never end. Here, as in the routine itself,
/// such a field changes nothing; body_text_test.cpp has the cases that say so.
std::wstring CleanBodyText(std::wstring text);
std::wstring RemoveBreakChars(std::wstring piece);
std::vector<std::wstring> Split(std::wstring text);

}  // namespace beacon::reference
