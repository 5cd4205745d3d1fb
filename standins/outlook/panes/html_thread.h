#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>

#include "outlook/panes/html_page.h"

namespace beacon::standin {

/// A thread with one viewer's window. The constructor returns when the window is there and throws com::Error when it
/// cannot be; the destructor cuts a hang short.
class HtmlThread {
public:
    HtmlThread(HWND parent, std::shared_ptr<const HtmlPage> page);
    ~HtmlThread();
    HtmlThread(const HtmlThread&) = delete;
    HtmlThread& operator=(const HtmlThread&) = delete;

    HWND Window() const { return window_; }

    void Hang(std::chrono::milliseconds time);

private:
    using Clock = std::chrono::steady_clock;

    struct CloseEvent {
        void operator()(HANDLE event) const { CloseHandle(event); }
    };

    using Event = std::unique_ptr<void, CloseEvent>;

    static Event MakeEvent();
    void Run(HWND parent, const std::shared_ptr<const HtmlPage>& page) noexcept;
    void RunWindow(HWND parent, const std::shared_ptr<const HtmlPage>& page);
    void HangHere();
    void WaitOut();

    const Event begun_ = MakeEvent();
    const Event hung_ = MakeEvent();
    const Event stop_ = MakeEvent();
    const Event ended_ = MakeEvent();
    std::atomic<HWND> window_ = nullptr;
    std::atomic<DWORD> id_ = 0;
    std::mutex mutex_;
    bool hanging_ = false;
    Clock::time_point hangEnd_;
    std::thread thread_;
};

}  // namespace beacon::standin
