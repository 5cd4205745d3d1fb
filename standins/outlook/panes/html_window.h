#pragma once

#include <windows.h>

#include <memory>

#include "outlook/panes/html_page.h"

namespace beacon::standin {

/// The viewer's window itself. It belongs to the thread that makes it; a window that was destroyed with its parent is
/// left alone.
class HtmlWindow {
public:
    HtmlWindow(HWND parent, std::shared_ptr<const HtmlPage> page);
    ~HtmlWindow();
    HtmlWindow(const HtmlWindow&) = delete;
    HtmlWindow& operator=(const HtmlWindow&) = delete;

    HWND Handle() const { return window_; }

private:
    friend void RegisterHtmlClass();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Document(WPARAM wParam) const;

    const std::shared_ptr<const HtmlPage> page_;
    HWND window_ = nullptr;
};

}  // namespace beacon::standin
