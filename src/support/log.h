#pragma once

#include <string>
#include <string_view>

namespace beacon {

/// The two log files under %AppData%\Corvantis\Beacon\logs: level 1 holds begin and end lines (OlkLog1.txt), level 2
/// details (OlkLog2.txt). Each is emptied at its first line in a process and opened and closed for every line. The
/// folder is not created here; without it, or with a locked file, lines are lost silently.

/// The path of a level's file, which is created with its header line at first use and kept for the process; "" while
/// "AppData" is not set. Raises an error when the file cannot be created.
std::wstring GetLogFilePath(int level);

/// Starts again as in a new process: the switches are read again, and each level's next line empties its file.
void RestartLog() noexcept;

/// Writes one line if logging is on. Always true.
bool WriteLogLine(const std::wstring& text, int level);

/// Whether the switch "Logging" is on; reads it at the first call.
bool LoggingIsOn();

namespace log_detail {
inline void Append(std::wstring& line, std::wstring_view piece) { line += piece; }

inline void Append(std::wstring& line, long number) { line += std::to_wstring(number); }

inline void Append(std::wstring& line, int number) { line += std::to_wstring(number); }
}  // namespace log_detail

/// Write their pieces (texts, and numbers in decimal) as one line of level 1 or 2. While logging is off the line is not
/// even put together.
template <class... Pieces>
bool LogMsg(const Pieces&... pieces) {
    if (!LoggingIsOn()) return true;
    std::wstring line;
    (log_detail::Append(line, pieces), ...);
    return WriteLogLine(line, 1);
}

template <class... Pieces>
bool LogMsg2(const Pieces&... pieces) {
    if (!LoggingIsOn()) return true;
    std::wstring line;
    (log_detail::Append(line, pieces), ...);
    return WriteLogLine(line, 2);
}

}  // namespace beacon
