#pragma once

#include <string>

#include "clients.h"
#include "command_source.h"
#include "running_controller.h"
#include "toolbar_config.h"

namespace beacon::standin {

/// Everything that commands act on.
struct Engine {
    Monitor& monitor;
    Clients& clients;
    Mischief& mischief;
    ToolbarSettings& toolbar;
    RunningController& running;
    com::ComPtr<IDispatch> controller;
    bool quit = false;  // set by the command "quit"; the main loop then ends in order
};

/// Carries out one command line. What is wrong with it is reported on the monitor.
void RunCommand(Engine& engine, const std::wstring& line, CommandSource& source);

/// Asks every client to go, as the command "exit" does.
void SendExitToAll(Engine& engine);

}  // namespace beacon::standin
