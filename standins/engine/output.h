#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "com/text.h"

namespace beacon::standin {

/// Standard output and the optional log file. Everything is UTF-8, whatever the console, and is written at once.
class Output {
public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Makes or empties the log file. False when that cannot be done.
    bool OpenLog(const std::wstring& path);

    void Print(std::wstring_view line);
    void Log(std::wstring_view line);

private:
    HANDLE log_ = INVALID_HANDLE_VALUE;
};

using com::FromUtf8;  // bytes that are not UTF-8 become U+FFFD
using com::ToUtf8;

}  // namespace beacon::standin
