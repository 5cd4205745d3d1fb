#pragma once

#include "com/class_factory.h"
#include "common/call_points.h"
#include "common/program.h"
#include "engine/clients.h"
#include "engine/controller.h"
#include "engine/controller_entry.h"
#include "engine/toolbar_config.h"

namespace beacon::standin {

/// The engine and the class of the toolbar's configuration in this process, until its end. The engine is in the running
/// object table.
class InProcessEngine {
public:
    InProcessEngine() : clients(monitor_, faults_), controller_(MakeController(clients, monitor_)) {
        toolbar.bitmaps = ProgramFolder() + L"\\bitmaps";
        toolbar.engineState = 3;
        SinkReference::ClientsAreHere();
        com::Check(running_.Enter(controller_.Get()));
        const auto factory = com::MakeClassFactory([this] {
            const CallPoint call(CallPoint::OnBehalf{}, [] { return std::wstring(L"create ToolbarConfig"); });
            com::Check(call.Result());
            return MakeToolbarConfig(toolbar, monitor_);
        });
        DWORD cookie = 0;
        com::Check(CoRegisterClassObject(kToolbarConfigClass, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                         &cookie));
    }

    /// Carries out the action on every connected channel of a side.
    template <class Action>
    void Each(Side side, Action&& action) {
        for (const auto& channel : clients.Connected(side, std::nullopt)) action(*channel.Get());
    }

private:
    Monitor monitor_{true};
    InjectedFaults faults_;

public:
    Clients clients;
    ToolbarSettings toolbar;

private:
    com::ComPtr<IDispatch> controller_;
    RunningController running_;
};

}  // namespace beacon::standin
