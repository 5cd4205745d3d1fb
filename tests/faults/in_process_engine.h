#pragma once

#include "engine/clients.h"
#include "engine/controller_entry.h"
#include "engine/toolbar_config.h"

namespace beacon::standin {

/// The engine and the class of the toolbar's configuration in this process. The engine is in the running object table.
class InProcessEngine {
public:
    InProcessEngine();
    InProcessEngine(const InProcessEngine&) = delete;
    InProcessEngine& operator=(const InProcessEngine&) = delete;
    ~InProcessEngine();

    void SendControl(const wchar_t* text);
    void SendButtonClick();
    void SendDisconnect(Side side);

    /// The connected windows.
    std::vector<long> Handles() const { return clients_.Handles(); }

    /// The next `count` calls of the engine's objects fail with RPC_E_CALL_REJECTED.
    static void RejectCalls(unsigned count);

    /// Drops every client without telling it.
    void LetGo();

    ToolbarSettings toolbar;

private:
    Monitor monitor_{true};
    InjectedFaults faults_;
    Clients clients_{monitor_, faults_};
    com::ComPtr<IDispatch> controller_;
    RunningController running_;
    DWORD toolbarClass_ = 0;
};

}  // namespace beacon::standin
