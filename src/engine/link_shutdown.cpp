// How a link shuts down, on request and when its owner ends.
#include <utility>

#include "engine/engine_link.h"
#include "engine/message_formats.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;
using com::Object;

void DisconnectFrom(IMessageDispatch* end, long id) {
    _variant_t ignored;
    com::Check(end->Disconnect(id, &ignored), end);
}

/// Disconnects the sink from its peer. Forgets a dead peer, on which every retry would fail again.
void DisconnectPeer(MessageSink& sink, long id) {
    const ComPtr<IMessageDispatch> peer = sink.ReturnMessageDispatch;
    _variant_t ignored;
    const HRESULT result = peer->Disconnect(id, &ignored);
    if (com::ServerHasDied(result)) sink.ReturnMessageDispatch.Reset();
    com::Check(result, peer.Get());
}

/// Assigns null to the default member, late-bound. Older engines then release what the dispatcher holds.
void ClearDefaultMember(IMessageDispatch* dispatcher) {
    Object(dispatcher).Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {com::FromObject(nullptr)});
}

}  // namespace

bool Application::Shutdown() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App Shutdown begin: ", gAppHwnd);
    const bool result = ShutdownBody();
    LogMsg(L"App Shutdown end: ", gAppHwnd);
    RunWaitingShutdowns();
    return result;
}

bool Application::ShutdownNoEnd() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App ShutdownNoEnd begin: ", gAppHwnd);
    gClosePending = false;
    const bool result = ShutdownBody();
    LogMsg(L"App ShutdownNoEnd end: ", gAppHwnd);
    RunWaitingShutdowns();
    return result;
}

void Application::RunWaitingShutdowns() {
    if (globals::gShutdownInProgress) return;
    for (const ComPtr<Application>& link : std::exchange(waiting_, {})) link->ShutdownNoEnd();
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
        shuttingDown_ = this;
        SendExit();
        DisconnectEngine();
        DisconnectController();
        DropControllerInterface();
        DropEngineInterface();
        globals::gShutdownInProgress = false;
        shuttingDown_ = nullptr;
        gAppAdapterStarted = false;
        LogMsg(L"App ShutdownBody end");
        done = true;
    };
    ReportOnError(body, [&](const com::Error& error) {
        LogMsg(L"Exception in ShutdownBody: ", error.number);
        gClosePending = true;
        globals::gShutdownInProgress = false;
        if (shuttingDown_ == this) shuttingDown_ = nullptr;
        if (hasLostOwner_) DisconnectPeers();  // no retry follows
    });
    return done;
}

void Application::CheckForRemovedToolbar() {
    const ComPtr<LinkHost> owner(gBeaconConnection);
    if (owner == nullptr || !owner->ToolbarWasRemoved()) return;
    LogMsg(L"Application:ShutdownBody: Toolbar has been removed, disabling it");
    SetRegString(HKEY_CURRENT_USER, kUserAdapterKey, setting::kEnableToolbar, L"0");
}

void Application::SendExit() {
    const std::wstring text = ExitMessage(gAppHwnd);
    // If the controller has disconnected, its sink is gone. The engine still gets its exit message: failing here would
    // leave the shutdown pending for ever.
    const ComPtr<ControllerInterface> controller = gControllerInterface;
    PutControl(text, controller == nullptr ? nullptr : controller->MDispatch(), gAppHwnd);
    const ComPtr<EngineInterface> engine = gEngineInterface;
    PutMessage(text, engine.Get(), gAppHwnd);
}

void Application::DisconnectEngine() {
    if (const ComPtr<EngineInterface> sink = gEngineInterface) {
        LogMsg(L"BeaconOLK EngineInterface Shutdown: ", gAppHwnd);
        if (sink->ReturnMessageDispatch != nullptr) {
            LogMsg(L"BeaconOLK EngineInterface Shutdown Diconnecting EI: ", gAppHwnd);
            DisconnectPeer(*sink.Get(), gAppHwnd);
        }
    }
    if (gEngineInterface != nullptr) {
        LogMsg(L"ShutdownBody gEngineInterface.MDispatch.Disconnect: ", gAppHwnd);
        DisconnectFrom(gEngineInterface->MDispatch(), gAppHwnd);
    }
    // The sink has cleared the member, unless it no longer knows this link.
    if (gEngineInterface != nullptr) {
        LogMsg2(L"ShutdownBody gEngineInterface.ReturnMessageDispatch: ", gAppHwnd);
        ClearDefaultMember(gEngineInterface->ReturnMessageDispatch.Get());
        LogMsg2(L"ShutdownBody Done gEngineInterface.MDispatch...: ", gAppHwnd);
        ClearDefaultMember(Need(gEngineInterface)->MDispatch());
    }
    LogMsg(L"ShutdownBody Done Disconnecting Engine...: ", gAppHwnd);
}

void Application::DisconnectController() {
    if (const ComPtr<ControllerInterface> sink = gControllerInterface) {
        LogMsg(L"BeaconOLK ControllerInterface Shutdown: ", gAppHwnd);
        if (sink->ReturnMessageDispatch != nullptr) {
            // The wording is the engine's; log readers expect it.
            LogMsg(L"BeaconOLK EngineInterface Shutdown Diconnecting EI: ", gAppHwnd);
            DisconnectPeer(*sink.Get(), gAppHwnd);
        }
    }
    // The controller may have disconnected the sink in that call.
    if (gControllerInterface != nullptr) DisconnectFrom(gControllerInterface->MDispatch(), gAppHwnd);
}

void Application::OwnerHasEnded() noexcept {
    const ComPtr<Application> alive(this);
    gBeaconConnection = nullptr;
    hasLostOwner_ = true;
    if (isStartingUp_ || shuttingDown_ == this) return;
    if (gAppAdapterStarted && shuttingDown_ != nullptr)
        GoOnAfterError([&] { shuttingDown_->waiting_.push_back(alive); });
    else
        DisconnectPeers();
}

void Application::DisconnectPeers() noexcept {
    gAppAdapterStarted = gClosePending = false;
    const ComPtr<EngineInterface> engine = gEngineInterface;
    const ComPtr<ControllerInterface> controller = gControllerInterface;
    gEngineInterface.Reset();
    gControllerInterface.Reset();
    MessageSink* const sinks[] = {engine.Get(), controller.Get()};
    for (MessageSink* const sink : sinks)
        if (sink != nullptr) sink->SetApplication(nullptr);
    for (MessageSink* const sink : sinks) {
        if (sink == nullptr) continue;
        if (sink->ReturnMessageDispatch != nullptr) GoOnAfterError([&] { DisconnectPeer(*sink, gAppHwnd); });
        sink->ReturnMessageDispatch.Reset();
        CoDisconnectObject(sink->MDispatch(), 0);
    }
}

}  // namespace beacon
