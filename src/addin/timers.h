#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <vector>

#include "com/module.h"
#include "observe/item_sender.h"
#include "observe/services.h"

namespace beacon {

/// frmHidden: the message-only window with the four timers of one listener. Defers sends, restarts a broken engine
/// link, retries a failed shutdown and installs the toolbar. Ticks run on the thread that made the form; a tick keeps
/// the form alive until it returns.
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
        bool refused = false;  // by the system, which has too few
        long interval = 0;     // ms
        bool ticking = false;
    };

    explicit frmHidden(bool inspector);
    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    const Timer& At(TimerId id) const { return timers_[id]; }

    /// Starts a timer, or restarts it with a new interval. False without a window or a system timer.
    bool Enable(TimerId id, long interval);
    void StartTimers();
    void RetryRefusedTimers();

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

    // Finds the form of a window. Any process could change a pointer stored in the window itself.
    static inline std::vector<frmHidden*> loaded_;

    HWND window_ = nullptr;
    std::array<Timer, kTimers> timers_;
    bool mbShouldSend_ = false;  // a send has been requested
    bool mbInspector_;           // re-sends periodically
    com::ComPtr<BeaconConnection> objConnection_;
    long mlUpdateCountThreshold_ = 0;  // ticks
    long mlUpdateCount_ = 0;           // ticks since the last requested send
    com::KeepsModule keeps_;
};

}  // namespace beacon
