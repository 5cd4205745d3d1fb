#include "outlook/panes/html_view.h"

#include <oleacc.h>

#include "outlook/panes/pane_windows.h"

namespace beacon::standin {
namespace {

UINT DocumentMessage() {
    static const UINT message = RegisterWindowMessageW(L"WM_HTML_GETOBJECT");
    return message;
}

HtmlView* ViewOf(HWND window) { return reinterpret_cast<HtmlView*>(GetWindowLongPtrW(window, GWLP_USERDATA)); }

}  // namespace

void RegisterHtmlClass() { RegisterPaneClass(kHtmlClass, &HtmlView::Procedure); }

HtmlView::HtmlView(HWND window) : window_(window) {
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

HtmlView::~HtmlView() {
    // The window may have been destroyed and its handle reused.
    if (ViewOf(window_) == this) SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
}

void HtmlView::SetText(std::wstring_view text) {
    page_->text = WithLineBreaks(text);
    page_->loaded = true;
    Select(0, 0);
    InvalidateRect(window_, nullptr, TRUE);
}

void HtmlView::Select(size_t start, size_t length) {
    page_->start = start;
    page_->length = length;
}

LRESULT CALLBACK HtmlView::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const HtmlView* const view = ViewOf(window);
    if (view == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    try {
        if (message == DocumentMessage())
            return view->page_->offered ? LresultFromObject(IID_IDispatch, wParam, MakeHtmlDocument(view->page_).Get())
                                        : 0;
        if (message == WM_PAINT) {
            PaintText(window, view->page_->text);
            return 0;
        }
    } catch (...) {
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace beacon::standin
