#pragma once

#include <memory>
#include <vector>

#include "outlook/outlook.h"
#include "outlook/script_parser.h"
#include "outlook/script_runner.h"

namespace beacon::standin {

struct Session {
    Outlook& outlook;
    ScriptRunner& runner;
};

struct Command {
    const wchar_t* name;
    const wchar_t* usage;
    const wchar_t* help;
    void (*run)(Session& session, Words& words);
};

/// The commands of each concern.
const std::vector<Command>& WindowCommands();
const std::vector<Command>& ItemCommands();
const std::vector<Command>& InputCommands();
const std::vector<Command>& BarCommands();
const std::vector<Command>& ProgramCommands();

/// Runs one command; throws ScriptError or com::Error.
void RunCommand(Words& words, Outlook& outlook, ScriptRunner& runner);
void SayHelp();

/// Arguments that several commands take.
std::shared_ptr<Item> TakeItem(Session& session, Words& words);
/// The window used last; throws when there is none.
std::shared_ptr<Frame> ActiveWindow(Session& session);
std::shared_ptr<Explorer> ActiveExplorerWindow(Session& session);
/// "explorer [K]", "inspector [K]", an item (its window), or nothing: the window used last.
std::shared_ptr<Frame> TakeWindow(Session& session, Words& words);

}  // namespace beacon::standin
