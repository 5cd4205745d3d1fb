#pragma once

#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "com/text.h"

namespace beacon::standin {

/// What the stand-in says: one line for everything it does and everything that happens, on standard output in UTF-8,
/// flushed at once. Lines are kept, so that a script can wait for one.
class Journal {
public:
    void Say(std::wstring_view line);
    /// A command that is about to run: shown, but no line that a script could wait for.
    void Echo(std::wstring_view command);
    /// True when a line not yet consumed matches; it and all before it are consumed.
    bool Consume(const std::wregex& pattern);

    const std::vector<std::wstring>& Lines() const { return lines_; }

private:
    static void Print(std::wstring_view line);

    std::vector<std::wstring> lines_;
    size_t consumed_ = 0;
};

/// The one journal of the process.
Journal& TheJournal();
void Say(std::wstring_view line);

/// A window as every line and the add-in's log name it: the handle in decimal.
std::wstring HandleText(void* window);
/// A result as 0x8004010F.
std::wstring ResultText(long result);
/// Text for a journal line: in quotes, cut when long, without line breaks.
std::wstring Quoted(std::wstring_view text);

using com::FromUtf8;
using com::ToUtf8;

}  // namespace beacon::standin
