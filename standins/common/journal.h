#pragma once

#include <windows.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <regex>
#include <string>
#include <string_view>
#include <utility>

#include "com/text.h"

namespace beacon::standin {

/// The lines in which a stand-in tells what it does and what happens. Everything is written in UTF-8, whatever the
/// console, and at once. For one thread.
class Journal {
public:
    Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal();

    /// Makes or empties a file for the lines that are kept. False when that cannot be done.
    bool OpenLog(const std::wstring& path);

    /// From now on lines that would be shown are given to this function instead; empty: they are shown.
    void Divert(std::function<void(std::wstring_view)> take) { take_ = std::move(take); }

    /// Shows a line on standard output.
    void Print(std::wstring_view line);
    /// Logs a line and remembers it for a command that waits. The newest few thousand are remembered.
    void Keep(std::wstring line);

    /// Looks for a line that matches, among those that came after the one found last (at first: since the start).
    /// Lines are matched by their first 2000 characters.
    void Await(std::wregex pattern);
    /// Whether it has come.
    bool HasCome();

private:
    std::function<void(std::wstring_view)> take_;
    HANDLE log_ = INVALID_HANDLE_VALUE;
    std::deque<std::wstring> lines_;
    std::wregex pattern_;
    size_t searched_ = 0;  // so many of the lines do not match
};

/// The one journal of the process.
Journal& TheJournal();
/// Shows a line and keeps it.
void Say(std::wstring_view line);
/// A line on standard error: why the program cannot start.
void Complain(std::wstring_view line);

/// A window as every line and the add-in's log name it: the handle in decimal.
std::wstring DecimalHandle(HWND window);
/// A result as 0x8004010F.
std::wstring ResultText(HRESULT result);
/// Text for a journal line: in quotes, cut when long, without line breaks.
std::wstring Quoted(std::wstring_view text);

using com::FromUtf8;
using com::ToUtf8;

}  // namespace beacon::standin
