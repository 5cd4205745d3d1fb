#include "faults/engine_here.h"

#include "com/class_factory.h"
#include "common/call_points.h"
#include "common/program.h"
#include "engine/controller.h"

namespace beacon::standin {

EngineHere::EngineHere() : controller_(MakeController(clients_, monitor_)) {
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

EngineHere::~EngineHere() {
    CoRevokeClassObject(toolbarClass_);
    running_.Leave();
    CoDisconnectObject(controller_.Get(), 0);
}

void EngineHere::SendControl(const wchar_t* text) {
    for (const auto& channel : clients_.Connected(Side::Controller, std::nullopt)) channel->SendControl(text);
}

void EngineHere::SendMessageText(const wchar_t* text) {
    for (const auto& channel : clients_.Connected(Side::Controller, std::nullopt)) channel->SendMessageText(text);
}

void EngineHere::SendDisconnect(Side side) {
    for (const auto& channel : clients_.Connected(side, std::nullopt)) channel->SendDisconnect(channel->Handle());
}

void EngineHere::LetGo() {
    for (const Side side : {Side::Controller, Side::Engine})
        for (const auto& channel : clients_.Connected(side, std::nullopt)) channel->LetGo(false);
}

}  // namespace beacon::standin
