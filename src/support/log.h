#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "support/settings.h"

namespace beacon {

/// The two log files under %AppData%\Corvantis\Beacon\logs: level 1 holds begin and end lines (OlkLog1.txt), level 2
/// details (OlkLog2.txt). Each is emptied at its first line in a process and opened and closed for every line. The
/// folder is not created here; without it, with a locked file or out of memory, lines are lost silently.

/// The folder, with a "\" at its end; "" while "AppData" is not set. The files in it.
std::wstring LogFolder();
inline constexpr const wchar_t* kLogFiles[] = {L"OlkLog1.txt", L"OlkLog2.txt"};

/// The paths of the files; "" until the first use in this process.
inline std::wstring gLogPath1;
inline std::wstring gLogPath2;

/// The path of a level's file, which is created with its header at first use; "" if "AppData" is not set. Raises an
/// error if the file cannot be created.
std::wstring GetLogFilePath(int level);

/// Writes one line if logging is on. Always true.
bool WriteLogLine(const std::wstring& text, int level) noexcept;

/// Whether the switch "Logging" is on; reads it at the first call.
bool LoggingIsOn();

/// One piece of a line: a text, which must outlive it, or a number, written in decimal.
struct LogPiece {
    LogPiece(const wchar_t* words) : text(words) {}

    LogPiece(std::wstring_view words) : text(words) {}

    LogPiece(const std::wstring& words) : text(words) {}

    LogPiece(long value) : number(value) {}

    LogPiece(int value) : number(value) {}

    std::wstring_view text;
    std::optional<long> number;
};

/// Joins the pieces into one line of a level, if logging is on. Always true.
bool WriteLogPieces(std::initializer_list<LogPiece> pieces, int level) noexcept;

/// Write their pieces as one line of level 1 or 2. While logging is off, nothing is made of them.
template <class... Pieces>
bool LogMsg(const Pieces&... pieces) noexcept {
    return (gLoggingRead && !gLogging) || WriteLogPieces({pieces...}, 1);
}

template <class... Pieces>
bool LogMsg2(const Pieces&... pieces) noexcept {
    return (gLoggingRead && !gLogging) || WriteLogPieces({pieces...}, 2);
}

}  // namespace beacon
