#include "outlook/panes/html_view.h"

#include "outlook/panes/html_document.h"
#include "outlook/panes/html_thread.h"
#include "outlook/panes/html_window.h"

namespace beacon::standin {

HtmlView::HtmlView(HWND parent)
    : parent_(parent), page_(std::make_shared<HtmlPage>()), window_(std::make_unique<HtmlWindow>(parent, page_)) {}

HtmlView::~HtmlView() = default;

HWND HtmlView::Window() const { return thread_ ? thread_->Window() : window_->Handle(); }

void HtmlView::Load(const ItemText& item) { Show(item.subject, item.body, item.html); }

void HtmlView::SetText(std::wstring_view text) { Show(page_->Content().title, text, {}); }

void HtmlView::Show(const std::wstring& title, std::wstring_view text, const std::wstring& html) {
    page_->Change([&](HtmlContent& content) {
        const std::wstring whole = WithLineBreaks(text);
        content = {title, whole,          html.empty() ? L"<P>" + EscapeHtml(whole) + L"</P>" : html, 0, 0,
                   true,  content.offered};
    });
    InvalidateRect(Window(), nullptr, TRUE);
}

std::wstring HtmlView::Text() const { return page_->Content().text; }

void HtmlView::Select(size_t start, size_t length) {
    page_->Change([=](HtmlContent& content) {
        content.start = start;
        content.length = length;
    });
}

std::wstring HtmlView::Selection() const { return page_->Content().Selection(); }

void HtmlView::Hang(std::chrono::milliseconds time) {
    if (!thread_) {
        thread_ = std::make_unique<HtmlThread>(parent_, page_);
        window_.reset();
    }
    thread_->Hang(time);
}

void HtmlView::OfferDocument(bool offered) {
    page_->Change([=](HtmlContent& content) { content.offered = offered; });
}

}  // namespace beacon::standin
