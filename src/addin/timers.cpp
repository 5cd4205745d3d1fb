#include "addin/timers.h"

#include <algorithm>
#include <utility>

#include "observe/thresholds.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/settings.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Need;

constexpr wchar_t kWindowClass[] = L"BeaconOLKAdapter frmHidden";
constexpr long kSendNowInterval = 1;       // ms
constexpr long kReconnectInterval = 2000;  // ms
constexpr long kRetryInterval = 500;       // ms, of the disconnect and toolbar timers
// COM refused an outgoing call because the add-in is inside an incoming one.
constexpr long kCannotCallOutInExternalCall = static_cast<long>(RPC_E_CANTCALLOUT_INEXTERNALCALL);

/// The peer's state, 1 or more while connected. Raises an error when it does not answer.
long PeerState(MessageSink* sink) {
    const ComPtr<IMessageDispatch> peer = Need(sink)->ReturnMessageDispatch;
    if (peer == nullptr) com::Raise(com::kNoObject);
    long state = 0;
    com::Check(peer->get_id(&state), peer.Get());
    return state;
}

/// Whether both peers are connected and the start-up succeeded: a peer may have carried out a Connect whose answer was
/// lost.
bool LinkIsUp(Application& link) {
    const ComPtr<ControllerInterface> controller = link.gControllerInterface;
    const ComPtr<EngineInterface> engine = link.gEngineInterface;
    if (controller == nullptr && engine == nullptr) return false;
    const long controllerState = PeerState(controller.Get());
    const long engineState = PeerState(engine.Get());
    return controllerState >= 1 && engineState >= 1 && link.gAppAdapterStarted;
}

}  // namespace

std::shared_ptr<frmHidden> frmHidden::Load(bool inspector) {
    std::shared_ptr<frmHidden> form(new frmHidden(inspector));
    form->StartTimers();
    return form;
}

frmHidden::frmHidden(bool inspector) : mbInspector_(inspector) {
    loaded_.reserve(loaded_.size() + 1);
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &WindowProc;
    windowClass.hInstance = com::ModuleInstance();
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass);  // fails harmlessly for every form but the first
    window_ =
        CreateWindowExW(0, kWindowClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, com::ModuleInstance(), nullptr);
    if (window_ == nullptr) {
        UnregisterClassW(kWindowClass, com::ModuleInstance());
        com::Check(E_OUTOFMEMORY);
    }
    loaded_.push_back(this);
}

frmHidden::~frmHidden() { Unload(); }

void frmHidden::Unload() {
    if (window_ == nullptr) return;
    mbShouldSend_ = false;
    objConnection_.Reset();
    std::erase(loaded_, this);
    DestroyWindow(std::exchange(window_, nullptr));  // ends its timers
    // Succeeds for the last form, so that the DLL can be unloaded.
    UnregisterClassW(kWindowClass, com::ModuleInstance());
}

LRESULT CALLBACK frmHidden::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER) {
        const auto isMine = [window](const frmHidden* form) { return form->window_ == window; };
        const auto found = std::find_if(loaded_.begin(), loaded_.end(), isMine);
        if (found != loaded_.end()) (*found)->OnTimer(wParam);
        return 0;
    }
    if (message == WM_CLOSE) return 0;  // any process can send it, and by default it destroys the window
    return DefWindowProcW(window, message, wParam, lParam);
}

bool frmHidden::Enable(TimerId id, long interval) {
    if (window_ == nullptr) return false;
    timers_[id].enabled = true;
    timers_[id].interval = interval;
    timers_[id].refused = SetTimer(window_, id + 1, static_cast<UINT>(std::max(interval, 1L)), nullptr) == 0;
    return !timers_[id].refused;
}

void frmHidden::RetryRefusedTimers() {
    for (size_t id = 0; id < kTimers; ++id)
        if (timers_[id].enabled && timers_[id].refused) Enable(static_cast<TimerId>(id), timers_[id].interval);
}

void frmHidden::StartTimers() {
    const long delay = GetStartAnalysisDelay();
    mbShouldSend_ = false;
    mlUpdateCountThreshold_ = InitialUpdateThreshold(delay);
    if (!Enable(kStartAnalysis, delay) || !Enable(kReconnect, kReconnectInterval)) com::Check(E_OUTOFMEMORY);
}

void frmHidden::SetConnection(BeaconConnection* connection) { objConnection_ = connection; }

void frmHidden::Send() {
    mbShouldSend_ = true;
    long interval = GetStartAnalysisDelay();
    if (globals::gSendNow) {
        globals::gSendNow = false;
        interval = kSendNowInterval;
    }
    Enable(kStartAnalysis, interval);
}

void frmHidden::SetUpdateCountThreshold(long ticks) {
    mlUpdateCountThreshold_ = ticks;
    Enable(kStartAnalysis, At(kStartAnalysis).interval);
}

void frmHidden::StartDisconnectTimer() { Enable(kDisconnect, kRetryInterval); }

void frmHidden::StartToolbarTimer() { Enable(kToolbar, kRetryInterval); }

void frmHidden::StopToolbarTimer() {
    if (window_ != nullptr) KillTimer(window_, kToolbar + 1);
    timers_[kToolbar].enabled = false;
}

void frmHidden::OnTimer(WPARAM timer) noexcept {
    if (timer < 1 || timer > kTimers) return;
    const auto id = static_cast<TimerId>(timer - 1);
    // A tick may run a message loop, for a message box or a registry write. It must not start again inside that.
    if (!timers_[id].enabled || timers_[id].ticking) return;
    const std::shared_ptr<frmHidden> alive = shared_from_this();
    timers_[id].ticking = true;
    StopOnError([&] {
        switch (id) {
            case kStartAnalysis: tmrStartAnalysis_Tick(); break;
            case kReconnect: tmrReconnect_Tick(); break;
            case kDisconnect: tmrDisconnect_Tick(); break;
            case kToolbar: tmrToolbar_Tick(); break;
            default: break;
        }
    });
    timers_[id].ticking = false;
}

ComPtr<Application> frmHidden::Link() const {
    return objConnection_ == nullptr ? nullptr : objConnection_->objApplication;
}

void frmHidden::SendListener() {
    if (const ComPtr<Listener> listener = Need(objConnection_)->objListener()) listener->Send();
}

void frmHidden::tmrStartAnalysis_Tick() {
    if (At(kStartAnalysis).interval == kSendNowInterval) Enable(kStartAnalysis, GetStartAnalysisDelay());
    const ComPtr<Application> link = Link();
    if (link == nullptr || link->gClosePending || !link->gAppAdapterStarted) return;
    if (mbShouldSend_)
        PendingTick(link);
    else
        IdleTick(link);
}

void frmHidden::IdleTick(const ComPtr<Application>& link) {
    ++mlUpdateCount_;
    if (!mbInspector_ || mlUpdateCount_ <= mlUpdateCountThreshold_) return;
    if (globals::gUserInterrupt) {
        globals::gUserInterrupt = false;
        return;
    }
    LogMsg2(L"StartAnalysis sending uninterrupted");
    if (link->gAutoUpdate) GoOnAfterError([&] { SendListener(); });
    // The count is not reset: every later quiet tick sends again, and the sender skips an unchanged item.
    mlUpdateCountThreshold_ = PeriodicUpdateThreshold(At(kStartAnalysis).interval);
}

void frmHidden::PendingTick(const ComPtr<Application>& link) {
    LogMsg2(L"StartAnalysis ShouldSend=True");
    if (link->gButtonClicked || !globals::gUserInterrupt) {
        mlUpdateCount_ = 0;
        mbShouldSend_ = false;
        if (link->gAutoUpdate || link->gButtonClicked) {
            LogMsg2(L"Timer Send");
            GoOnAfterError([&] { SendListener(); });
        }
    }
    globals::gUserInterrupt = false;
}

void frmHidden::tmrReconnect_Tick() {
    RetryRefusedTimers();
    bool reconnect = true;
    com::Error failure(0, L"", L"");
    ReportOnError(
        [&] {
            LogMsg(L"Begin reconnect timer");
            const ComPtr<Application> link = Link();
            if (link != nullptr && link->gClosePending)
                link->ShutdownNoEnd();
            else if (link == nullptr || link->IsStartingUp() || LinkIsUp(*link.Get()))
                LogMsg(L"End reconnect timer - no reconnect necessary");
            else
                return;
            reconnect = false;
        },
        [&](const com::Error& error) { failure = error; });
    if (!reconnect) return;
    LogMsg(L"Reconnect attempting reconnection due to error: ", failure.Description());
    if (failure.number == kCannotCallOutInExternalCall)
        LogMsg(L"Reconnect error:  multiple COM calls. Bailing out.");
    else
        Reconnect();
}

void frmHidden::Reconnect() {
    const ComPtr<Application> link = Link();
    if (link == nullptr || link->gClosePending) return;
    LogMsg(L"Reconnect trying to StartUp");
    link->DropSinks();
    globals::gShutdownInProgress = false;
    link->gAppAdapterStarted = false;
    link->StartUp();
    LogMsg(L"Reconnect StartUp complete");
    if (!link->gAppAdapterStarted) return;
    LogMsg(L"Reconnect StartUp success, start ReSend");
    GoOnAfterError([&] { Need(objConnection_)->ReSend(true); });
    LogMsg(L"Reconnect ReSend complete");
}

void frmHidden::tmrDisconnect_Tick() {
    if (objConnection_ == nullptr) return;
    if (const ComPtr<Listener> listener = objConnection_->objListener()) listener->Close();
}

void frmHidden::tmrToolbar_Tick() {
    const ComPtr<Application> link = Link();
    if (link == nullptr || link->gClosePending) return;
    const ComPtr<CToolbar> toolbar = objConnection_->gToolbar;
    if (toolbar == nullptr || toolbar->Initialized()) return;
    LogMsg2(L"tmrStartAnalysis_Timer:  Calling gToolbar.InstallBeaconToolbar");
    toolbar->InstallBeaconToolbar(VARIANT_FALSE);
}

}  // namespace beacon
