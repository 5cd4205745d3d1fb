#include "outlook/commands/script_runner.h"

#include "common/journal.h"

namespace beacon::standin {

ScriptRunner::ScriptRunner(Outlook& outlook) : outlook_(outlook) {
    for (const auto* commands :
         {&WindowCommands(), &ItemCommands(), &InputCommands(), &BarCommands(), &ProgramCommands()})
        Add(*commands, outlook_);
}

void ScriptRunner::Step() {
    if (!MayRun()) return;
    if (outlook_.IsQuitting()) {
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
    outlook_.RequestQuit(QuitMode::CloseWindows);
}

// Printed but not recorded: scripts cannot wait for the echo.
void ScriptRunner::Starting(const std::wstring& line) { TheJournal().Print(L"> " + line); }

void ScriptRunner::EndOfCommands() {
    if (!triedToQuit_) {
        triedToQuit_ = true;
        outlook_.RequestQuit(QuitMode::CloseWindows);
        return;
    }
    // An add-in cancels the closing of a window, and there are no more commands.
    Say(L"error: the quit was cancelled; quitting anyway");
    failed_ = true;
    outlook_.RequestQuit(QuitMode::Now);
}

}  // namespace beacon::standin
