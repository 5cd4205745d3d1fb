#include "engine/engine_link.h"

#include "engine/message_formats.h"
#include "engine/running_controller.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/registry.h"
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

void DisconnectFrom(IMessageDispatch* end, long id) {
    _variant_t ignored;
    com::Check(end->Disconnect(id, &ignored), end);
}

/// Assigns nothing to the default member, late-bound: the older engines' way of releasing what a dispatcher holds.
void ClearDefaultMember(IMessageDispatch* dispatcher) {
    Object(dispatcher).Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {com::FromObject(nullptr)});
}

template <class Sink>
void Drop(ComPtr<Sink>& member) noexcept {
    if (member == nullptr) return;
    const ComPtr<Sink> sink = std::move(member);  // the member is empty while the sink ends
    CoDisconnectObject(sink->MDispatch(), 0);
}

}  // namespace

void Application::Init(long appHWND, LinkHost* BeaconConn) {
    gAppHwnd = appHWND;
    gBeaconConnection = BeaconConn;
}

void Application::Final() noexcept {
    // The sinks' own termination, and calls of a peer that still holds one, would act on a link that no longer exists.
    *address_ = nullptr;
    DropControllerInterface();
    DropEngineInterface();
}

void Application::DropControllerInterface() { Drop(gControllerInterface); }

void Application::DropEngineInterface() { Drop(gEngineInterface); }

bool Application::GetDefaultAutoUpdate() { return ReadDefaultAutoUpdate(); }

void Application::StartUp() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App StartUp begin: ", gAppHwnd);
    const HWND window = static_cast<HWND>(LongToHandle(gAppHwnd));
    if (IsWindow(window) != 1 && IsWindowVisible(window) != 1) {
        LogMsg(L"StartUp: bad gAppHwnd = ", gAppHwnd);
        return;
    }
    gClosePending = false;
    gAutoUpdate = false;
    gAutoUpdate = GetDefaultAutoUpdate();
    if (gAppAdapterStarted) return;
    const Object controller = RunningController();
    if (!controller) {
        LogMsg(L"App Startup: Failed to obtain BeaconController.Application");
        return;
    }
    LogMsg(L"App Startup: Obtained BeaconController.Application");
    const auto body = [&] {
        WireChannels(controller);
        gAppAdapterStarted = true;
        PutMessage(HelloMessage(gAppHwnd), nullptr, gAppHwnd);
        if (gBeaconConnection != nullptr) gBeaconConnection->ReplayPendingClick();
        if (gBeaconConnection != nullptr) gBeaconConnection->SetUpWindowsHook();
        LogMsg(L"App StartUp end");
    };
    ReportOnError(body, [&](const com::Error& error) {
        LogMsg(L"App StartUp error ", error.number, L" ", error.source, L" ", error.description);
        ShutdownNoEnd();
        LogMsg(L"App StartUp errorhandler end");
    });
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
    // The peers may disconnect the sinks in the very calls that hand them over: a sink is held until its call is done.
    const ComPtr<IMessageDispatch> toController = MessageInterfaceOf(controller, L"AppToController", gAppHwnd);
    const auto controllerSink = MakeSink(gControllerInterface, L"AppToController", toController.Get());
    ConnectTo(toController.Get(), L"ControllerToApp", controllerSink->MDispatch(), gAppHwnd);

    const Object engine = controller.CallObject(L"GetEngineInterface", {FromText(L"AppToEngine"), FromLong(gAppHwnd)});
    const ComPtr<IMessageDispatch> toEngine = MessageInterfaceOf(engine, L"AppToEngine", gAppHwnd);
    const auto engineSink = MakeSink(gEngineInterface, L"AppToEngine", toEngine.Get());
    // Unlike the controller's pair, both directions of the engine's carry one name.
    ConnectTo(toEngine.Get(), L"AppToEngine", engineSink->MDispatch(), gAppHwnd);
}

_variant_t Application::PutMessage(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id) {
    _variant_t result;
    StopOnError([&] {
        LogMsg(L"App PutMessage begin ", vstrMsg);
        const ComPtr<IMessageDispatch> peer = Need(gEngineInterface)->ReturnMessageDispatch;
        if (peer == nullptr) {
            LogMsg(L"App PutMessage. Invalid ReturnMessageDispatch");
            return;
        }
        com::Check(peer->PutMessage(FromText(vstrMsg).bstrVal, pInterface, id, &result), peer.Get());
        LogMsg(L"App PutMessage end");
    });
    return result;
}

_variant_t Application::PutControl(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id) {
    _variant_t result;
    StopOnError([&] {
        LogMsg(L"App PutControl begin ", vstrMsg);
        const ComPtr<IMessageDispatch> peer = Need(gControllerInterface)->ReturnMessageDispatch;
        if (peer == nullptr) {
            LogMsg(L"App PutControl. Invalid ReturnMessageDispatch");
            return;
        }
        com::Check(peer->PutControl(FromText(vstrMsg).bstrVal, pInterface, id, &result), peer.Get());
        LogMsg(L"App PutControl end");
    });
    return result;
}

bool Application::Shutdown() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App Shutdown begin: ", gAppHwnd);
    const bool result = ShutdownBody();
    LogMsg(L"App Shutdown end: ", gAppHwnd);
    return result;
}

bool Application::ShutdownNoEnd() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App ShutdownNoEnd begin: ", gAppHwnd);
    gClosePending = false;
    const bool result = ShutdownBody();
    InitLater();
    LogMsg(L"App ShutdownNoEnd end: ", gAppHwnd);
    return result;
}

void Application::ShutdownLater() {
    LogMsg(L"App ShutdownLater begin: ", gAppHwnd);
    gClosePending = true;
    LogMsg(L"App ShutdownLater end: ", gAppHwnd);
}

void Application::CheckForRemovedToolbar() {
    if (gBeaconConnection == nullptr || !gBeaconConnection->ToolbarWasRemoved()) return;
    LogMsg(L"Application:ShutdownBody: Toolbar has been removed, disabling it");
    SetRegString(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", L"0");
}

void Application::SayGoodBye() {
    const std::wstring text = ExitMessage(gAppHwnd);
    // A controller that disconnected first has taken its sink with it: the engine is told all the same, and the
    // shutdown goes on. Failing here would leave the link pending for ever.
    const ComPtr<ControllerInterface> controller = gControllerInterface;
    PutControl(text, controller == nullptr ? nullptr : controller->MDispatch(), gAppHwnd);
    const ComPtr<EngineInterface> engine = gEngineInterface;
    PutMessage(text, engine.Get(), gAppHwnd);
}

void Application::DisconnectEngine() {
    if (gEngineInterface != nullptr) {
        LogMsg(L"BeaconOLK EngineInterface Shutdown: ", gAppHwnd);
        if (const ComPtr<IMessageDispatch> peer = gEngineInterface->ReturnMessageDispatch) {
            LogMsg(L"BeaconOLK EngineInterface Shutdown Diconnecting EI: ", gAppHwnd);
            DisconnectFrom(peer.Get(), gAppHwnd);
        }
    }
    if (gEngineInterface != nullptr) {
        LogMsg(L"ShutdownBody gEngineInterface.MDispatch.Disconnect: ", gAppHwnd);
        DisconnectFrom(gEngineInterface->MDispatch(), gAppHwnd);
    }
    // The sink's own handling has emptied the member; what follows is for one that has lost its way back to this link.
    if (gEngineInterface != nullptr) {
        LogMsg2(L"ShutdownBody gEngineInterface.ReturnMessageDispatch: ", gAppHwnd);
        ClearDefaultMember(gEngineInterface->ReturnMessageDispatch.Get());
        LogMsg2(L"ShutdownBody Done gEngineInterface.MDispatch...: ", gAppHwnd);
        ClearDefaultMember(Need(gEngineInterface)->MDispatch());
    }
    LogMsg(L"ShutdownBody Done Disconnecting Engine...: ", gAppHwnd);
}

void Application::DisconnectController() {
    if (gControllerInterface == nullptr) return;
    LogMsg(L"BeaconOLK ControllerInterface Shutdown: ", gAppHwnd);
    if (const ComPtr<IMessageDispatch> peer = gControllerInterface->ReturnMessageDispatch) {
        // The log's readers know this line with the engine's wording.
        LogMsg(L"BeaconOLK EngineInterface Shutdown Diconnecting EI: ", gAppHwnd);
        DisconnectFrom(peer.Get(), gAppHwnd);
    }
    // A controller may answer by disconnecting this side itself.
    if (gControllerInterface != nullptr) DisconnectFrom(gControllerInterface->MDispatch(), gAppHwnd);
}

bool Application::ShutdownBody() {
    const ComPtr<Application> alive(this);
    bool done = false;
    const auto body = [&] {
        LogMsg(L"App ShutdownBody begin: ", gAppHwnd);
        CheckForRemovedToolbar();
        LogMsg(L"BeaconOLKApp Shutdown");
        if (globals::gShutdownInProgress) {
            LogMsg(L"App ShutdownBody: shutdown in progress exiting");
            gClosePending = true;
            return;
        }
        if (!gAppAdapterStarted) {
            LogMsg(L"App ShutdownBody: AppAdapter not started");
            return;
        }
        globals::gShutdownInProgress = true;
        SayGoodBye();
        DisconnectEngine();
        DisconnectController();
        DropControllerInterface();
        DropEngineInterface();
        globals::gShutdownInProgress = false;
        gAppAdapterStarted = false;
        LogMsg(L"App ShutdownBody end");
        done = true;
    };
    ReportOnError(body, [&](const com::Error& error) {
        LogMsg(L"Exception in ShutdownBody: ", error.number);
        gClosePending = true;
        globals::gShutdownInProgress = false;
    });
    return done;
}

void Application::FinishInit() {
    // Its error report is all there is to it: every call writes the line, with no error.
    LogMsg(L"App FinishInit error ", 0, L" ", L"", L" ", L"");
    InitLater();
    LogMsg(L"App FinishInit errorhandler end");
}

void Application::Update() {
    const ComPtr<Application> alive(this);
    StopOnError([&] { Need(gBeaconConnection)->ReSend(true); });
}

void Application::SetAutoUpdate(bool on) {
    if (!on) {
        gAutoUpdate = false;
    } else if (!gAutoUpdate) {
        gAutoUpdate = true;
        if (gEngineInterface != nullptr) Need(gBeaconConnection)->ReSend(false);
    }
}

}  // namespace beacon
