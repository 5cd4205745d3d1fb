#pragma once

#include "engine/clients.h"
#include "engine/controller_entry.h"
#include "engine/toolbar_config.h"

namespace beacon::standin {

/// The engine in this process, for all runs: in the running object table, and with the class of the toolbar's
/// configuration.
class InProcessEngine {
public:
    InProcessEngine();
    InProcessEngine(const InProcessEngine&) = delete;
    InProcessEngine& operator=(const InProcessEngine&) = delete;
    ~InProcessEngine();

    void SendControl(const wchar_t* text);
    void SendMessageText(const wchar_t* text);
    void SendDisconnect(Side side);

    /// The windows that are connected.
    std::vector<long> Handles() const { return clients_.Handles(); }

    /// Lets go of every client without a word.
    void LetGo();

    ToolbarSettings toolbar;

private:
    Monitor monitor_{true};
    Mischief mischief_;
    Clients clients_{monitor_, mischief_};
    com::ComPtr<IDispatch> controller_;
    RunningController running_;
    DWORD toolbarClass_ = 0;
};

}  // namespace beacon::standin
