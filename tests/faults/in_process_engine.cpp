#include "tests/faults/in_process_engine.h"

#include "com/class_factory.h"
#include "common/call_points.h"
#include "common/program.h"
#include "engine/controller.h"

namespace beacon::standin {

InProcessEngine::InProcessEngine() : controller_(MakeController(clients_, monitor_)) {
    toolbar.bitmaps = ProgramFolder() + L"\\bitmaps";
    toolbar.engineState = 3;
    SinkReference::ClientsAreHere();
    com::Check(running_.Enter(controller_.Get()));
    const auto factory = com::MakeClassFactory([this] {
        const CallPoint call(CallPoint::OnBehalf{}, [] { return std::wstring(L"create ToolbarConfig"); });
        com::Check(call.Result());
        return MakeToolbarConfig(toolbar, monitor_);
    });
    com::Check(CoRegisterClassObject(kToolbarConfigClass, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                     &toolbarClass_));
}

InProcessEngine::~InProcessEngine() {
    CoRevokeClassObject(toolbarClass_);
    running_.Leave();
    CoDisconnectObject(controller_.Get(), 0);
}

void InProcessEngine::SendControl(const wchar_t* text) {
    for (const auto& channel : clients_.Connected(Side::Controller, std::nullopt)) channel->SendControl(text);
}

void InProcessEngine::SendButtonClick() {
    for (const auto& channel : clients_.Connected(Side::Controller, std::nullopt))
        channel->SendMessageText(L"<BUTTON_CLICK id=\"1\"/>");
}

void InProcessEngine::SendDisconnect(Side side) {
    for (const auto& channel : clients_.Connected(side, std::nullopt)) channel->SendDisconnect(channel->Handle());
}

void InProcessEngine::RejectCalls(unsigned count) {
    TheCallPoints().SetListener([count](unsigned number, const std::wstring& name) mutable {
        const bool ofEngine =
            name.starts_with(L"AppTo") || name.starts_with(L"Controller.") || name.starts_with(L"Engine.");
        if (!ofEngine || count == 0) return;
        --count;
        TheCallPoints().Add({number, RPC_E_CALL_REJECTED, 0, {}, {}});
    });
}

void InProcessEngine::LetGo() {
    for (const Side side : {Side::Controller, Side::Engine})
        for (const auto& channel : clients_.Connected(side, std::nullopt)) channel->DropSink(false);
}

}  // namespace beacon::standin
