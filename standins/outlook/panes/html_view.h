#pragma once

#include <chrono>
#include <memory>

#include "outlook/panes/html_page.h"
#include "outlook/panes/text_view.h"

namespace beacon::standin {

class HtmlWindow;
class HtmlThread;

/// The HTML viewer: a window of class "Internet Explorer_Server" inside `parent`, which answers "WM_HTML_GETOBJECT"
/// with its document. Each answer can be taken once.
class HtmlView final : public TextView {
public:
    explicit HtmlView(HWND parent);
    ~HtmlView() override;

    HWND Window() const override;
    void Load(const ItemText& item) override;
    void SetText(std::wstring_view text) override;
    std::wstring Text() const override;
    void Select(size_t start, size_t length) override;
    std::wstring Selection() const override;

    void Hang(std::chrono::milliseconds time);
    void OfferDocument(bool offered);

private:
    void Show(const std::wstring& title, std::wstring_view text, const std::wstring& html);

    const HWND parent_;
    const std::shared_ptr<HtmlPage> page_;
    // One of the two: the window lives on the pane's thread until it hangs for the first time.
    std::unique_ptr<HtmlWindow> window_;
    std::unique_ptr<HtmlThread> thread_;
};

/// Registers the viewer's class, so that windows without a document can be made of it as well.
void RegisterHtmlClass();

}  // namespace beacon::standin
