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

/// A command of a program; its name is the first word of the usage, and no word may follow where none is shown. Where
/// several have one name, the first is run and all are shown.
template <class Session>
struct CommandOf {
    const wchar_t* usage;
    const wchar_t* help;
    void (*run)(Session& session, Words& words);
};

/// Runs command lines, from a script, from standard input, or from the script first and then from standard input. All
/// run on the thread that calls Step, one at a time and between messages, so that a command that waits keeps nothing
/// from being answered. A console knows the commands wait, say and help; a program adds its own.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    virtual ~Console() = default;

    /// The session must outlive the console.
    template <class Session>
    void Add(const std::vector<CommandOf<Session>>& commands, Session& session) {
        for (const CommandOf<Session>& command : commands)
            Add(command.usage, command.help, [&session, run = command.run](Words& words) { run(session, words); });
    }

    /// Throws com::Error when the file cannot be read.
    void ReadScript(const std::wstring& path);
    /// Starts the thread that reads standard input.
    void ReadStandardInput();

    /// Runs the next command, unless there is none or one holds it back. Whether it has run one.
    bool Step();
    /// All commands have run, and no more will come.
    bool IsDone() const;

    /// Signalled when a line of standard input has come.
    HANDLE Arrived() const;
    /// How long the message loop may sleep, in milliseconds.
    DWORD Patience() const;

protected:
    struct Failure {
        std::wstring command;  // empty: there is none of that name
        int line;              // of the script; 0: of standard input
        std::wstring text;
    };

    /// A line for the user.
    virtual void SayLine(const std::wstring& line) = 0;
    /// What is wrong with a command, or with a wait that was in vain.
    virtual void Failed(const Failure& failure) = 0;

    /// A command line is about to run.
    virtual void Starting(const std::wstring&) {}

    /// False while a command runs or waits.
    bool MayRun();

    /// Lines of the script that have not run.
    size_t ScriptLines() const { return script_.size(); }

    void DropScript() { script_.clear(); }

    /// What comes on standard input is of no interest any more.
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
        int number;  // 0: of standard input
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
    std::optional<std::wstring> pattern_;  // waited for until then
};

}  // namespace beacon::standin
