#pragma once

#include <windows.h>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/words.h"

namespace beacon::standin {

/// A command of a program. Its name is the first word of the usage. If several commands have the same name, the first
/// runs and "help" lists all.
template <class Context>
struct CommandOf {
    const wchar_t* usage;
    const wchar_t* help;
    void (*run)(Context& context, Words& words);
};

/// Runs command lines from a script, from standard input, or from both in this order. All run on the thread that calls
/// Step, one at a time between messages; a waiting command does not block the message loop. Built-in commands: wait,
/// say and help.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    virtual ~Console() = default;

    /// The context must outlive the console.
    template <class Context>
    void Add(const std::vector<CommandOf<Context>>& commands, Context& context) {
        for (const CommandOf<Context>& command : commands)
            Add(command.usage, command.help, [&context, run = command.run](Words& words) { run(context, words); });
    }

    /// Throws com::Error when the file cannot be read.
    void ReadScript(const std::wstring& path);
    /// Starts the thread that reads standard input.
    void ReadStandardInput();

    /// Runs the next command; false if there is none or one is still waiting.
    bool Step();
    /// Whether all commands have run and no more can come.
    bool IsDone() const;

    /// Event that is signalled when a line of standard input arrives.
    HANDLE Arrived() const;
    /// How long the message loop may sleep, in milliseconds.
    DWORD Patience() const;

protected:
    struct Failure {
        std::wstring command;  // empty: unknown command
        int line;              // in the script; 0: standard input
        std::wstring text;
    };

    /// Prints a line.
    virtual void SayLine(const std::wstring& line) = 0;
    /// A command failed or a wait timed out.
    virtual void Failed(const Failure& failure) = 0;

    /// Called before a command runs.
    virtual void Starting(const std::wstring&) {}

    /// False while a command runs or waits.
    bool MayRun();

    /// Number of script lines that have not run.
    size_t ScriptLines() const { return script_.size(); }

    void DropScript() { script_.clear(); }

    /// Ignores further standard input.
    void IgnoreInput() { readsInput_ = false; }

private:
    struct Input;

    struct Command {
        std::wstring usage;
        std::wstring help;
        std::function<void(Words&)> run;
    };

    struct Line {
        std::wstring text;
        int number;  // 0: standard input
    };

    void Add(const wchar_t* usage, const wchar_t* help, std::function<void(Words&)> run);
    std::optional<Line> NextLine();
    void Run(const Line& line);
    void Wait(Words& words);
    void SayHelp();

    std::vector<Command> commands_;
    std::deque<Line> script_;
    const std::shared_ptr<Input> input_;  // its thread may outlive the console
    bool readsInput_ = false;
    bool running_ = false;
    Failure current_{{}, 0, {}};
    std::optional<std::chrono::steady_clock::time_point> until_;
    std::optional<std::wstring> pattern_;  // awaited until `until_`
};

}  // namespace beacon::standin
