#pragma once

#include <windows.h>

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <regex>
#include <string>

#include "outlook/script_parser.h"

namespace beacon::standin {

class Outlook;

/// Runs commands one at a time, each when the message queue is empty: from a file, from standard input, or from both in
/// turn. An error in a file ends the script and quits with exit code 2; an error of standard input is only said.
class ScriptRunner {
public:
    explicit ScriptRunner(Outlook& outlook);
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;
    ~ScriptRunner();

    /// Throws com::Error when the file cannot be read.
    void ReadFile(const std::wstring& path);
    /// Starts the thread that reads standard input.
    void ReadStandardInput();

    void Step();

    /// Signalled when the other thread brought lines.
    HANDLE LinesArrived() const { return arrived_; }

    /// How long the message loop may sleep, in milliseconds.
    DWORD Patience() const;

    bool Failed() const { return failed_; }

    /// For commands: nothing runs before this time, or before the journal has a matching line.
    void WaitFor(std::chrono::milliseconds time);
    void WaitForLine(const std::wstring& pattern, std::chrono::milliseconds limit);

private:
    struct Line {
        std::wstring text;
        int number;  // 0: typed
    };

    bool IsWaiting();
    void Run(const Line& line);
    void Fail(const Line& line, const std::wstring& text);
    bool Next(Line& line);
    void EndOfCommands();
    static void ReadInput(ScriptRunner& runner);

    Outlook& outlook_;
    std::deque<Line> file_;
    bool endsWithFile_ = true;  // nothing else will bring commands
    bool failed_ = false;
    bool triedToQuit_ = false;
    Line current_{L"", 0};
    std::chrono::steady_clock::time_point until_{};
    bool stepping_ = false;
    bool waitsForTime_ = false;
    bool waitsForLine_ = false;
    std::wregex pattern_;
    std::wstring patternText_;

    HANDLE arrived_;
    std::mutex mutex_;
    std::deque<std::wstring> typed_;
    bool inputEnded_ = false;
};

}  // namespace beacon::standin
