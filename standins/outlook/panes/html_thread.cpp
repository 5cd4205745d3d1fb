#include "outlook/panes/html_thread.h"

#include <objbase.h>

#include "com/error.h"
#include "outlook/panes/html_window.h"
#include "outlook/panes/pane_windows.h"

namespace beacon::standin {
namespace {
constexpr UINT kHang = WM_APP;
}

UniqueHandle HtmlThread::MakeEvent() {
    UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!event) ThrowLastError();
    return event;
}

HtmlThread::HtmlThread(HWND parent, std::shared_ptr<const HtmlPage> page)
    : thread_(StartThread([this, parent, page = std::move(page)] { Run(parent, page); })) {
    if (!thread_) ThrowLastError();
    AwaitAnswering(begun_.get());
    if (window_ != nullptr) return;
    WaitForSingleObject(thread_.get(), INFINITE);
    com::Raise(com::kCannotCreateObject);
}

HtmlThread::~HtmlThread() {
    SetEvent(stop_.get());
    PostThreadMessageW(id_, WM_QUIT, 0, 0);
    // Destroying its window may have to reach this thread's windows.
    AwaitAnswering(ended_.get());
    WaitForSingleObject(thread_.get(), INFINITE);
}

void HtmlThread::Hang(std::chrono::milliseconds time) {
    {
        const std::scoped_lock lock(mutex_);
        hangEnd_ = Clock::now() + time;
        if (hanging_) return;
        hanging_ = true;
    }
    ResetEvent(hung_.get());
    // The thread answers sent messages before it takes this one: only its own word says that it answers no more.
    PostThreadMessageW(id_, kHang, 0, 0);
    AwaitAnswering(hung_.get());
}

void HtmlThread::HangHere() {
    // Repainting the windows around a visible one would wait for it, and so hang the pane's thread as well.
    ShowWindow(window_, SW_HIDE);
    SetEvent(hung_.get());
    WaitOut();
    ShowWindow(window_, SW_SHOWNA);
}

void HtmlThread::WaitOut() {
    for (;;) {
        std::chrono::milliseconds left{};
        {
            const std::scoped_lock lock(mutex_);
            left = std::chrono::ceil<std::chrono::milliseconds>(hangEnd_ - Clock::now());
            hanging_ = left.count() > 0;
            if (!hanging_) return;
        }
        if (WaitForSingleObject(stop_.get(), static_cast<DWORD>(left.count())) == WAIT_OBJECT_0) return;
    }
}

void HtmlThread::Run(HWND parent, const std::shared_ptr<const HtmlPage>& page) noexcept {
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try {
        RunWindow(parent, page);
    } catch (...) {
        SetEvent(begun_.get());  // without a window, which tells the maker
    }
    if (SUCCEEDED(apartment)) CoUninitialize();
    SetEvent(ended_.get());
}

void HtmlThread::RunWindow(HWND parent, const std::shared_ptr<const HtmlPage>& page) {
    const HtmlWindow window(parent, page);
    SetWindowPos(window.Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    id_ = GetCurrentThreadId();
    window_ = window.Handle();
    SetEvent(begun_.get());
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.hwnd == nullptr && message.message == kHang) {
            HangHere();
            continue;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace beacon::standin
