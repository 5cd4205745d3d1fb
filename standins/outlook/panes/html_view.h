#pragma once

#include <memory>

#include "outlook/panes/html_document.h"
#include "outlook/panes/text_view.h"

namespace beacon::standin {

/// The HTML viewer: a window of class "Internet Explorer_Server", which answers "WM_HTML_GETOBJECT" with its document.
/// Each answer can be taken once.
class HtmlView final : public TextView {
public:
    explicit HtmlView(HWND window);
    ~HtmlView() override;

    HWND Window() const override { return window_; }

    void SetText(std::wstring_view text) override;

    std::wstring Text() const override { return page_->text; }

    void Select(size_t start, size_t length) override;

    std::wstring Selection() const override { return page_->Selection(); }

    void OfferDocument(bool offered) { page_->offered = offered; }

private:
    friend void RegisterHtmlClass();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    const HWND window_;
    const std::shared_ptr<HtmlPage> page_ = std::make_shared<HtmlPage>();
};

/// Registers the viewer's window class.
void RegisterHtmlClass();

}  // namespace beacon::standin
