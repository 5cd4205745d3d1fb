#pragma once

#include <string>
#include <string_view>
#include <vector>

// The body rules exactly as they are worded, pass by pass, in quadratic time. The linear routines must give the same.
namespace beacon::reference {

std::wstring StripReplyPrefixes(std::wstring subject);
/// The passes as worded never end on a hyperlink field without a closing quote. Here, as in the routine itself, such a
/// field changes nothing; body_text_test.cpp has its cases.
std::wstring CleanBodyText(std::wstring text);
std::wstring RemoveBreakChars(std::wstring piece);
std::vector<std::wstring> Split(std::wstring text);

}  // namespace beacon::reference
