#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <regex>
#include <string>

#include "monitor.h"

namespace beacon::standin {

/// Commands in their order, from standard input or a script. Lines may be added from any thread; they run on the COM
/// thread, between messages, so that waiting never keeps the engine from answering.
class CommandSource {
public:
    using Runner = std::function<void(const std::wstring& line, CommandSource& source)>;

    /// `wake` is an event that is set when there is something to run.
    explicit CommandSource(HANDLE wake) : wake_(wake) {}

    void Add(std::wstring line);
    void End();

    /// Runs what can be run now. Empty lines and lines that begin with "#" are skipped.
    void Run(Monitor& monitor, const Runner& runner);

    bool IsWaiting() const { return until_.has_value(); }

    /// Nothing more will come.
    bool IsDone();

    /// Holds back the following commands for some milliseconds.
    void Wait(uint64_t milliseconds);
    /// Holds them back until a raw line matches that came after the one matched last (at first: any line of this run).
    /// Reports an error when none has come in time. Lines are matched by their first 2000 characters.
    void WaitFor(const std::wstring& pattern, uint64_t milliseconds);

private:
    bool MayRun(Monitor& monitor);
    std::optional<std::wstring> Next();

    const HANDLE wake_;
    std::mutex mutex_;
    std::deque<std::wstring> lines_;
    bool ended_ = false;

    std::optional<uint64_t> until_;
    std::optional<std::wregex> pattern_;
    std::wstring patternText_;
    uint64_t nextLine_ = 0;
};

/// Starts a thread that reads standard input to its end. It may outlive the source's user.
void ReadStandardInput(const std::shared_ptr<CommandSource>& source);
/// False when the file cannot be read.
bool ReadScript(CommandSource& source, const std::wstring& path);

}  // namespace beacon::standin
