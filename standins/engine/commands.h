#pragma once

#include "common/console.h"
#include "engine/clients.h"
#include "engine/controller_entry.h"
#include "engine/toolbar_config.h"

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

/// The console of the engine. What is wrong with a command is reported on the monitor.
class EngineConsole final : public Console {
public:
    explicit EngineConsole(Engine& engine);

private:
    void SayLine(const std::wstring& line) override { engine_.monitor.Event(line); }

    void Failed(const Failure& failure) override;

    Engine& engine_;
};

/// Asks every client to go, as the command "exit" does.
void SendExitToAll(Engine& engine);

}  // namespace beacon::standin
