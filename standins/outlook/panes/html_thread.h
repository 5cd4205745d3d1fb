#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <memory>

#include "common/threads.h"
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

    static UniqueHandle MakeEvent();
    void Run(HWND parent, const std::shared_ptr<const HtmlPage>& page) noexcept;
    void RunWindow(HWND parent, const std::shared_ptr<const HtmlPage>& page);
    void HangHere();
    void WaitOut();

    const UniqueHandle begun_ = MakeEvent();
    const UniqueHandle hung_ = MakeEvent();
    const UniqueHandle stop_ = MakeEvent();
    const UniqueHandle ended_ = MakeEvent();
    std::atomic<HWND> window_ = nullptr;
    std::atomic<DWORD> id_ = 0;
    Mutex mutex_;
    bool hanging_ = false;
    Clock::time_point hangEnd_;
    UniqueHandle thread_;
};

}  // namespace beacon::standin
