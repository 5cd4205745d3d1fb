#pragma once

#include <mutex>
#include <string>

namespace beacon::standin {

/// What the HTML viewer shows. The pane, the window and the documents that were handed out share it, from more than one
/// thread once the window has its own: every member may be called from any.
class HtmlPage {
public:
    /// The text has CR LF for line breaks. An empty `html` is made from the text. Drops the selection.
    void Load(std::wstring title, std::wstring text, std::wstring html);
    void Select(size_t start, size_t length);
    void Offer(bool offered);

    std::wstring Title() const;
    std::wstring Text() const;
    std::wstring Html() const;
    std::wstring Selection() const;
    /// Whether the window hands out a document.
    bool Offered() const;

private:
    mutable std::mutex mutex_;
    std::wstring title_, text_, html_;
    size_t start_ = 0;
    size_t length_ = 0;
    bool offered_ = true;
};

/// Text as HTML that shows it.
std::wstring EscapeHtml(const std::wstring& text);

}  // namespace beacon::standin
