#include "outlook/panes/text_view.h"

namespace beacon::standin {
namespace {

class WordView final : public TextView {
public:
    explicit WordView(HWND window) : window_(window) {}

    HWND Window() const override { return window_; }

    void SetText(std::wstring_view text) override {
        text_ = WithLineBreaks(text);
        start_ = length_ = 0;
        SetWindowTextW(window_, text_.c_str());
        InvalidateRect(window_, nullptr, TRUE);
    }

    std::wstring Text() const override { return text_; }

    void Select(size_t start, size_t length) override {
        start_ = start;
        length_ = length;
    }

    std::wstring Selection() const override { return text_.substr(start_, length_); }

private:
    const HWND window_;
    std::wstring text_;
    size_t start_ = 0;
    size_t length_ = 0;
};

}  // namespace

std::unique_ptr<TextView> MakeWordView(HWND word) { return std::make_unique<WordView>(word); }

std::wstring WithLineBreaks(std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != L'\r' && text[i] != L'\n') {
            result += text[i];
            continue;
        }
        result += L"\r\n";
        if (text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n') ++i;
    }
    return result;
}

}  // namespace beacon::standin
