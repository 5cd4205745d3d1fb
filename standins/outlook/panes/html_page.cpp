#include "outlook/panes/html_page.h"

#include <utility>

namespace beacon::standin {

void HtmlPage::Load(std::wstring title, std::wstring text, std::wstring html) {
    if (html.empty()) html = L"<P>" + EscapeHtml(text) + L"</P>";
    const std::scoped_lock lock(mutex_);
    title_ = std::move(title);
    text_ = std::move(text);
    html_ = std::move(html);
    start_ = length_ = 0;
}

void HtmlPage::Select(size_t start, size_t length) {
    const std::scoped_lock lock(mutex_);
    start_ = start;
    length_ = length;
}

void HtmlPage::Offer(bool offered) {
    const std::scoped_lock lock(mutex_);
    offered_ = offered;
}

std::wstring HtmlPage::Title() const {
    const std::scoped_lock lock(mutex_);
    return title_;
}

std::wstring HtmlPage::Text() const {
    const std::scoped_lock lock(mutex_);
    return text_;
}

std::wstring HtmlPage::Html() const {
    const std::scoped_lock lock(mutex_);
    return html_;
}

std::wstring HtmlPage::Selection() const {
    const std::scoped_lock lock(mutex_);
    return text_.substr(start_, length_);
}

bool HtmlPage::Offered() const {
    const std::scoped_lock lock(mutex_);
    return offered_;
}

std::wstring EscapeHtml(const std::wstring& text) {
    std::wstring html;
    for (const wchar_t c : text) {
        switch (c) {
            case L'&': html += L"&amp;"; break;
            case L'<': html += L"&lt;"; break;
            case L'>': html += L"&gt;"; break;
            case L'\r': break;
            case L'\n': html += L"<BR>"; break;
            default: html += c;
        }
    }
    return html;
}

}  // namespace beacon::standin
