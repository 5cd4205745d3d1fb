#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "support/settings.h"

namespace beacon {

/// The log files under %AppData%\Corvantis\Beacon\logs: level 1 has begin and end lines (OlkLog1.txt), level 2 details
/// (OlkLog2.txt). The first line of a process empties its file; every line opens and closes it. A line is silently lost
/// if the folder does not exist (it is not created here), the file is locked or memory is short.

/// The folder, ending in "\"; "" if "AppData" is not set.
std::wstring LogFolder();
inline constexpr const wchar_t* kLogFiles[] = {L"OlkLog1.txt", L"OlkLog2.txt"};

/// The paths of the files; "" until the first use in this process.
inline std::wstring gLogPath1;
inline std::wstring gLogPath2;

/// The path of a level's file, which is created with its header at first use; "" if "AppData" is not set. Raises an
/// error if the file cannot be created.
std::wstring GetLogFilePath(int level);

/// Writes one line if logging is on. Returns true.
bool WriteLogLine(const std::wstring& text, int level) noexcept;

/// Whether "Logging" is on.
bool LoggingIsOn();

/// A part of a line: a text, which is not copied, or a number, written in decimal.
struct LogPiece {
    LogPiece(const wchar_t* words) : text(words) {}

    LogPiece(std::wstring_view words) : text(words) {}

    LogPiece(const std::wstring& words) : text(words) {}

    LogPiece(long value) : number(value) {}

    LogPiece(int value) : number(value) {}

    std::wstring_view text;
    std::optional<long> number;
};

/// Writes the pieces as one line if logging is on. Returns true.
bool WriteLogPieces(std::initializer_list<LogPiece> pieces, int level) noexcept;

/// Write the pieces as one line of level 1 or 2. They cost nothing while logging is off.
template <class... Pieces>
bool LogMsg(const Pieces&... pieces) noexcept {
    return (gLoggingRead && !gLogging) || WriteLogPieces({pieces...}, 1);
}

template <class... Pieces>
bool LogMsg2(const Pieces&... pieces) noexcept {
    return (gLoggingRead && !gLogging) || WriteLogPieces({pieces...}, 2);
}

}  // namespace beacon
