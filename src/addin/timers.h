#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <vector>

#include "com/module.h"
#include "observe/item_sender.h"
#include "observe/services.h"

namespace beacon {

/// frmHidden: the message-only window with the four timers of one listener. It sends later what a listener asks it to
/// send, watches the engine link and brings it up again, retries a shutdown that failed, and installs the toolbar late.
/// Ticks run on the thread that made the form, between its messages; a tick keeps the form alive until it returns.
class frmHidden final : public HiddenForm, public std::enable_shared_from_this<frmHidden> {
public:
    /// A loaded form. Raises an error when the window cannot be made.
    static std::shared_ptr<frmHidden> Load(bool inspector);
    ~frmHidden() override;
    frmHidden(const frmHidden&) = delete;
    frmHidden& operator=(const frmHidden&) = delete;

    void SetConnection(BeaconConnection* connection) override;
    void Send() override;

    long StartAnalysisInterval() const override { return At(kStartAnalysis).interval; }

    void SetUpdateCountThreshold(long ticks) override;
    void StartDisconnectTimer() override;
    void StartToolbarTimer() override;
    void StopToolbarTimer() override;
    void Unload() override;

private:
    enum TimerId : size_t { kStartAnalysis, kReconnect, kDisconnect, kToolbar, kTimers };

    struct Timer {
        bool enabled = false;
        long interval = 0;  // ms
        bool ticking = false;
    };

    explicit frmHidden(bool inspector);
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    const Timer& At(TimerId id) const { return timers_[id]; }

    /// Starts a timer, or restarts it with a new interval. False without a window or a system timer.
    bool Enable(TimerId id, long interval);
    void StartTimers();

    void OnTimer(WPARAM timer) noexcept;
    void tmrStartAnalysis_Tick();
    void IdleTick(const com::ComPtr<Application>& link);
    void PendingTick(const com::ComPtr<Application>& link);
    void tmrReconnect_Tick();
    void Reconnect();
    void tmrDisconnect_Tick();
    void tmrToolbar_Tick();
    com::ComPtr<Application> Link() const;
    void SendListener();

    // By their windows. A pointer kept in a window could be changed by any process of the user's.
    static inline std::vector<frmHidden*> loaded_;

    HWND window_ = nullptr;
    std::array<Timer, kTimers> timers_;
    bool mbShouldSend_ = false;  // a send is requested and not yet carried out
    bool mbInspector_;           // an inspector's form sends again periodically
    com::ComPtr<BeaconConnection> objConnection_;
    long mlUpdateCountThreshold_ = 0;  // ticks
    long mlUpdateCount_ = 0;           // ticks since the last requested send
    com::KeepsModule keeps_;
};

}  // namespace beacon
