#include "engine/engine_link.h"

#include "engine/message_formats.h"
#include "engine/running_controller.h"
#include "support/error_styles.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::FromLong;
using com::FromText;
using com::Need;
using com::Object;

ComPtr<IMessageDispatch> MessageInterfaceOf(const Object& owner, const wchar_t* channel, long id) {
    const Object dispatcher = owner.CallObject(L"GetMessageInterface", {FromText(channel), FromLong(id)});
    ComPtr<IMessageDispatch> result;
    if (dispatcher) com::Check(dispatcher.Get()->QueryInterface(IID_PPV_ARGS(&result)), dispatcher.Get());
    return Need(result);
}

void ConnectTo(IMessageDispatch* end, const wchar_t* channel, IMessageDispatch* peer, long id) {
    _variant_t ignored;
    com::Check(end->Connect(_bstr_t(channel), peer, id, &ignored), end);
}

template <class Sink>
void Drop(ComPtr<Sink>& member) noexcept {
    if (member == nullptr) return;
    const ComPtr<Sink> sink = member;
    member.Reset();  // before the sink ends, since that may call the link
    CoDisconnectObject(sink->MDispatch(), 0);
}

/// Delivers a message to the sink's peer by `call`, which gets the peer, the text and the place for the result.
template <class Sink, class Call>
_variant_t Deliver(std::wstring_view routine, const ComPtr<Sink>& sink, const std::wstring& message, Call&& call) {
    _variant_t result;
    StopOnError([&] {
        LogMsg(routine, L" begin ", message);
        const ComPtr<IMessageDispatch> peer = Need(sink)->ReturnMessageDispatch;
        if (peer == nullptr) {
            LogMsg(routine, L". Invalid ReturnMessageDispatch");
            return;
        }
        const _variant_t text = FromText(message);
        com::Check(call(*peer.Get(), text.bstrVal, &result), peer.Get());
        LogMsg(routine, L" end");
    });
    return result;
}

}  // namespace

void Application::Init(long appHWND, LinkHost* BeaconConn) {
    gAppHwnd = appHWND;
    gBeaconConnection = BeaconConn;
}

void Application::Final() noexcept {
    // The sinks may outlive this link, and must not call it from here on.
    *address_ = nullptr;
    DisconnectPeers();
}

void Application::DropControllerInterface() { Drop(gControllerInterface); }

void Application::DropEngineInterface() { Drop(gEngineInterface); }

void Application::DropSinks() {
    if (!WindowExists()) DisconnectPeers();
    DropControllerInterface();
    DropEngineInterface();
}

bool Application::WindowExists() const {
    const HWND window = static_cast<HWND>(LongToHandle(gAppHwnd));
    return IsWindow(window) == 1 || IsWindowVisible(window) == 1;
}

bool Application::GetDefaultAutoUpdate() { return ReadDefaultAutoUpdate(); }

void Application::StartUp() {
    const ComPtr<Application> alive(this);
    if (hasLostOwner_ || isStartingUp_) return;
    StopOnError([&] { TryToStart(); });
}

void Application::TryToStart() {
    LogMsg(L"App StartUp begin: ", gAppHwnd);
    if (!WindowExists()) {
        LogMsg(L"StartUp: bad gAppHwnd = ", gAppHwnd);
        return;
    }
    gClosePending = false;
    gAutoUpdate = false;
    gAutoUpdate = GetDefaultAutoUpdate();
    if (gAppAdapterStarted) return;
    isStartingUp_ = true;
    ConnectToRunningController();
    isStartingUp_ = false;
    if (hasLostOwner_) DisconnectPeers();
}

void Application::ConnectToRunningController() {
    const Object controller = RunningController();
    if (hasLostOwner_) return;
    if (!controller) {
        LogMsg(L"App Startup: Failed to obtain BeaconController.Application");
        return;
    }
    LogMsg(L"App Startup: Obtained BeaconController.Application");
    ReportOnError([&] { Connect(controller); },
                  [&](const com::Error& error) {
                      if (hasLostOwner_) return;
                      LogMsg(L"App StartUp error ", error.number, L" ", error.Source(), L" ", error.Description());
                      ShutdownNoEnd();
                      if (!hasLostOwner_) LogMsg(L"App StartUp errorhandler end");
                  });
}

void Application::NeedOwner() const {
    if (hasLostOwner_) com::Raise(com::kNoObject);
}

void Application::Connect(const Object& controller) {
    WireChannels(controller);
    gAppAdapterStarted = true;
    PutMessage(HelloMessage(gAppHwnd), nullptr, gAppHwnd);
    const ComPtr<LinkHost> owner(gBeaconConnection);  // null if it has ended meanwhile
    if (owner != nullptr) owner->ReplayPendingClick();
    NeedOwner();
    if (owner != nullptr) owner->SetUpWindowsHook();
    LogMsg(L"App StartUp end");
}

template <class Sink>
ComPtr<Sink> Application::MakeSink(ComPtr<Sink>& member, const wchar_t* channel, IMessageDispatch* peer) {
    const ComPtr<Sink> sink = com::MakeObject<Sink>();
    Drop(member);
    member = sink;
    sink->SetApplication(address_);
    ConnectTo(sink->MDispatch(), channel, peer, gAppHwnd);
    return sink;
}

void Application::WireChannels(const Object& controller) {
    // A peer may disconnect a sink inside the call that passes it, so the call keeps a reference.
    const ComPtr<IMessageDispatch> toController = MessageInterfaceOf(controller, L"AppToController", gAppHwnd);
    NeedOwner();
    const auto controllerSink = MakeSink(gControllerInterface, L"AppToController", toController.Get());
    ConnectTo(toController.Get(), L"ControllerToApp", controllerSink->MDispatch(), gAppHwnd);
    NeedOwner();

    const Object engine = controller.CallObject(L"GetEngineInterface", {FromText(L"AppToEngine"), FromLong(gAppHwnd)});
    NeedOwner();
    const ComPtr<IMessageDispatch> toEngine = MessageInterfaceOf(engine, L"AppToEngine", gAppHwnd);
    NeedOwner();
    const auto engineSink = MakeSink(gEngineInterface, L"AppToEngine", toEngine.Get());
    // Unlike the controller's channel, both directions have the same name.
    ConnectTo(toEngine.Get(), L"AppToEngine", engineSink->MDispatch(), gAppHwnd);
    NeedOwner();
}

_variant_t Application::PutMessage(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id) {
    return Deliver(L"App PutMessage", gEngineInterface, vstrMsg,
                   [&](IMessageDispatch& peer, BSTR text, VARIANT* result) {
                       return peer.PutMessage(text, pInterface, id, result);
                   });
}

_variant_t Application::PutControl(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id) {
    return Deliver(L"App PutControl", gControllerInterface, vstrMsg,
                   [&](IMessageDispatch& peer, BSTR text, VARIANT* result) {
                       return peer.PutControl(text, pInterface, id, result);
                   });
}

void Application::Update() {
    StopOnError([&] { Need(ComPtr<LinkHost>(gBeaconConnection))->ReSend(true); });
}

void Application::SetAutoUpdate(bool on) {
    if (!on) {
        gAutoUpdate = false;
    } else if (!gAutoUpdate) {
        gAutoUpdate = true;
        if (gEngineInterface != nullptr) Need(ComPtr<LinkHost>(gBeaconConnection))->ReSend(false);
    }
}

}  // namespace beacon
