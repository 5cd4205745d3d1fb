// The good-bye of a link, and the end of its owner.
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

/// Disconnects the sink from its peer. A peer that is dead is forgotten, or every later try would fail on it again.
void DisconnectPeer(MessageSink& sink, long id) {
    const ComPtr<IMessageDispatch> peer = sink.ReturnMessageDispatch;
    _variant_t ignored;
    const HRESULT result = peer->Disconnect(id, &ignored);
    if (com::ServerHasDied(result)) sink.ReturnMessageDispatch.Reset();
    com::Check(result, peer.Get());
}

/// Assigns nothing to the default member, late-bound: the older engines' way of releasing what a dispatcher holds.
void ClearDefaultMember(IMessageDispatch* dispatcher) {
    Object(dispatcher).Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {com::FromObject(nullptr)});
}

}  // namespace

bool Application::Shutdown() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App Shutdown begin: ", gAppHwnd);
    const bool result = ShutdownBody();
    LogMsg(L"App Shutdown end: ", gAppHwnd);
    CarryOutWaitingShutdowns();
    return result;
}

bool Application::ShutdownNoEnd() {
    const ComPtr<Application> alive(this);
    LogMsg(L"App ShutdownNoEnd begin: ", gAppHwnd);
    gClosePending = false;
    const bool result = ShutdownBody();
    InitLater();
    LogMsg(L"App ShutdownNoEnd end: ", gAppHwnd);
    CarryOutWaitingShutdowns();
    return result;
}

void Application::CarryOutWaitingShutdowns() {
    if (globals::gShutdownInProgress) return;
    for (const ComPtr<Application>& link : std::exchange(waiting_, {})) link->ShutdownNoEnd();
}

void Application::ShutdownLater() {
    LogMsg(L"App ShutdownLater begin: ", gAppHwnd);
    gClosePending = true;
    LogMsg(L"App ShutdownLater end: ", gAppHwnd);
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
        SayGoodBye();
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
        if (hasLostOwner_) LetPeersGo();  // nobody will try again
    });
    return done;
}

void Application::CheckForRemovedToolbar() {
    const ComPtr<LinkHost> owner(gBeaconConnection);
    if (owner == nullptr || !owner->ToolbarWasRemoved()) return;
    LogMsg(L"Application:ShutdownBody: Toolbar has been removed, disabling it");
    SetRegString(HKEY_CURRENT_USER, kUserAdapterKey, setting::kEnableToolbar, L"0");
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
    if (const ComPtr<ControllerInterface> sink = gControllerInterface) {
        LogMsg(L"BeaconOLK ControllerInterface Shutdown: ", gAppHwnd);
        if (sink->ReturnMessageDispatch != nullptr) {
            // The log's readers know this line with the engine's wording.
            LogMsg(L"BeaconOLK EngineInterface Shutdown Diconnecting EI: ", gAppHwnd);
            DisconnectPeer(*sink.Get(), gAppHwnd);
        }
    }
    // A controller may answer by disconnecting this side itself.
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
        LetPeersGo();
}

void Application::LetPeersGo() noexcept {
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

void Application::FinishInit() {
    // Its error report is all there is to it: every call writes the line, with no error.
    LogMsg(L"App FinishInit error ", 0, L" ", L"", L" ", L"");
    InitLater();
    LogMsg(L"App FinishInit errorhandler end");
}

}  // namespace beacon
