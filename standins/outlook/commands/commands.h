#pragma once

#include <memory>
#include <vector>

#include "common/console.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {

/// What commands act on.
struct Session {
    Outlook& outlook;
};

using Command = CommandOf<Session>;

/// The commands of each concern.
const std::vector<Command>& WindowCommands();
const std::vector<Command>& ItemCommands();
const std::vector<Command>& InputCommands();
const std::vector<Command>& BarCommands();
const std::vector<Command>& ProgramCommands();

/// Arguments that several commands take.
std::shared_ptr<Item> TakeItem(Session& session, Words& words);
/// The window used last; throws when there is none.
std::shared_ptr<Frame> ActiveWindow(Session& session);
std::shared_ptr<Explorer> ActiveExplorerWindow(Session& session);
/// "explorer [K]", "inspector [K]", an item (its window), or nothing: the window used last.
std::shared_ptr<Frame> TakeWindow(Session& session, Words& words);

}  // namespace beacon::standin
