#pragma once

#include "common/console.h"
#include "engine/clients.h"
#include "engine/controller_entry.h"
#include "engine/toolbar_config.h"

namespace beacon::standin {

/// The objects that commands use.
struct Engine {
    Monitor& monitor;
    Clients& clients;
    InjectedFaults& faults;
    ToolbarSettings& toolbar;
    RunningController& running;
    com::ComPtr<IDispatch> controller;
    bool quit = false;  // set by the command "quit"; ends the main loop
};

/// The console of the engine. Errors of commands appear on the monitor.
class EngineConsole final : public Console {
public:
    explicit EngineConsole(Engine& engine);

private:
    void SayLine(const std::wstring& line) override { engine_.monitor.Event(line); }

    void Failed(const Failure& failure) override;

    Engine& engine_;
};

/// Sends EXIT to every client, as the command "exit" does.
void SendExitToAll(Engine& engine);

}  // namespace beacon::standin
