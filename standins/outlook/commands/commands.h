#pragma once

#include <memory>
#include <vector>

#include "common/console.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

using Command = CommandOf<Outlook>;

// The commands, by subject.
const std::vector<Command>& WindowCommands();
const std::vector<Command>& ItemCommands();
const std::vector<Command>& InputCommands();
const std::vector<Command>& BarCommands();
const std::vector<Command>& ProgramCommands();

// Arguments that several commands take.
std::shared_ptr<Item> TakeItem(Outlook& outlook, Words& words);
/// The most recently used window; throws ScriptError if there is none.
std::shared_ptr<Frame> ActiveWindow(Outlook& outlook);
std::shared_ptr<Explorer> ActiveExplorerWindow(Outlook& outlook);
/// "explorer [K]", "inspector [K]", an item (its window), or nothing: the most recently used window.
std::shared_ptr<Frame> TakeWindow(Outlook& outlook, Words& words);

}  // namespace beacon::standin
