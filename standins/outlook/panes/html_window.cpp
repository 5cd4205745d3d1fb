#include "outlook/panes/html_window.h"

#include <oleacc.h>

#include <utility>

#include "com/module.h"
#include "outlook/panes/html_document.h"
#include "outlook/panes/html_view.h"
#include "outlook/panes/pane_windows.h"

namespace beacon::standin {
namespace {

UINT DocumentMessage() {
    static const UINT message = RegisterWindowMessageW(L"WM_HTML_GETOBJECT");
    return message;
}

}  // namespace

void RegisterHtmlClass() {
    WNDCLASSW description{};
    description.lpfnWndProc = &HtmlWindow::Procedure;
    description.hInstance = com::ModuleInstance();
    description.hbrBackground = GetSysColorBrush(COLOR_WINDOW);
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.lpszClassName = kHtmlClass;
    RegisterClassW(&description);
}

HtmlWindow::HtmlWindow(HWND parent, std::shared_ptr<const HtmlPage> page) : page_(std::move(page)) {
    RECT area{};
    GetClientRect(parent, &area);
    // The parent may live on another thread, which must not have to answer a notification for this window to come or
    // go.
    window_ = CreateWindowExW(WS_EX_NOPARENTNOTIFY, kHtmlClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0,
                              area.right, area.bottom, parent, nullptr, com::ModuleInstance(), nullptr);
    if (window_ == nullptr) ThrowLastError();
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

HtmlWindow::~HtmlWindow() {
    if (window_ != nullptr) DestroyWindow(window_);
}

LRESULT HtmlWindow::Document(WPARAM wParam) const {
    if (!page_->Content().offered) return 0;
    return LresultFromObject(IID_IHTMLDocument2, wParam, MakeHtmlDocument(page_).Get());
}

LRESULT CALLBACK HtmlWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<HtmlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    try {
        if (self != nullptr && message == DocumentMessage()) return self->Document(wParam);
        if (self != nullptr && message == WM_PAINT) {
            PaintText(window, self->page_->Content().text);
            return 0;
        }
    } catch (...) {
        return 0;
    }
    if (self != nullptr && message == WM_NCDESTROY) {
        self->window_ = nullptr;
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace beacon::standin
