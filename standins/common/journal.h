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

/// The output lines of a stand-in. Lines are written in UTF-8 and not buffered. One thread only.
class Journal {
public:
    Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal();

    /// Creates or truncates the log file for recorded lines; false on failure.
    bool OpenLog(const std::wstring& path);

    /// Redirects printed lines to this function; empty: to standard output.
    void Redirect(std::function<void(std::wstring_view)> take) { take_ = std::move(take); }

    /// Prints a line.
    void Print(std::wstring_view line);
    /// Writes a line to the log and remembers it for Await. Only the newest 1000 lines are remembered.
    void Record(std::wstring_view line);

    /// Starts to look for a matching line after the last line found. Only the first 2000 characters of a line are
    /// matched.
    void Await(std::wregex pattern);
    /// Whether the awaited line has been recorded.
    bool HasMatch();

private:
    std::function<void(std::wstring_view)> take_;
    HANDLE log_ = INVALID_HANDLE_VALUE;
    std::deque<std::wstring> lines_;
    std::wregex pattern_;
    size_t searched_ = 0;  // number of lines that do not match
};

/// The journal of the process.
Journal& TheJournal();
/// Prints and records a line.
void Say(std::wstring_view line);
/// Prints a line to standard error.
void PrintError(std::wstring_view line);

/// The handle in decimal, as in the log of the add-in.
std::wstring DecimalHandle(HWND window);
/// A result in the form 0x8004010F.
std::wstring ResultText(HRESULT result);
/// The text in quotes, on one line, truncated to 100 characters.
std::wstring Quoted(std::wstring_view text);

using com::FromUtf8;
using com::ToUtf8;

}  // namespace beacon::standin
