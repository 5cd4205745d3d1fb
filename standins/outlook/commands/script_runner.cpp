#include "outlook/commands/script_runner.h"

#include "common/journal.h"

namespace beacon::standin {

ScriptRunner::ScriptRunner(Outlook& outlook) : session_{outlook} {
    for (const auto* commands :
         {&WindowCommands(), &ItemCommands(), &InputCommands(), &BarCommands(), &ProgramCommands()})
        Add(*commands, session_);
}

void ScriptRunner::Step() {
    if (!MayRun()) return;
    if (session_.outlook.IsQuitting()) {
        if (ScriptLines() == 0) return;
        Say(L"script: " + std::to_wstring(ScriptLines()) + L" lines after the end were not run");
        DropScript();
    } else if (IsDone()) {
        EndOfCommands();
    } else {
        Console::Step();
    }
}

void ScriptRunner::SayLine(const std::wstring& line) { Say(line); }

void ScriptRunner::Failed(const Failure& failure) {
    if (failure.line == 0) return Say(L"error: " + failure.text);
    Say(L"error: line " + std::to_wstring(failure.line) + L": " + failure.text);
    failed_ = true;
    DropScript();
    IgnoreInput();
    session_.outlook.RequestQuit(QuitMode::CloseWindows);
}

// The echo is no line that a script could wait for.
void ScriptRunner::Starting(const std::wstring& line) { TheJournal().Print(L"> " + line); }

void ScriptRunner::EndOfCommands() {
    if (!triedToQuit_) {
        triedToQuit_ = true;
        session_.outlook.RequestQuit(QuitMode::CloseWindows);
        return;
    }
    // An add-in keeps a window open, and no command is left that could change that.
    Say(L"error: the quit was cancelled; quitting all the same");
    failed_ = true;
    session_.outlook.RequestQuit(QuitMode::Now);
}

}  // namespace beacon::standin
