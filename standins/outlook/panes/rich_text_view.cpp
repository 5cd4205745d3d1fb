#include <windows.h>

#include <richedit.h>

#include <algorithm>

#include "outlook/panes/text_view.h"

namespace beacon::standin {
namespace {

constexpr UINT kUtf16 = 1200;
constexpr LPARAM kTextLimit = 0x7FFFFFFE;
constexpr size_t kLongestWrapped = 4000;  // of a paragraph; Wine wraps it in quadratic time

class RichTextView final : public TextView {
public:
    explicit RichTextView(HWND window) : window_(window) { SendMessageW(window_, EM_EXLIMITTEXT, 0, kTextLimit); }

    HWND Window() const override { return window_; }

    // EM_SETTEXTEX never interprets the text as RTF, and gives an ANSI control Unicode text.
    void SetText(std::wstring_view text) override {
        const std::wstring terminated(text);
        SendMessageW(window_, EM_SETTARGETDEVICE, 0, LongestParagraph(text) > kLongestWrapped);
        const SETTEXTEX how{ST_DEFAULT, kUtf16};
        SendMessageW(window_, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&how),
                     reinterpret_cast<LPARAM>(terminated.c_str()));
        Select(0, 0);
    }

    std::wstring Text() const override {
        const GETTEXTLENGTHEX what{GTL_USECRLF | GTL_PRECISE | GTL_NUMCHARS, kUtf16};
        const LRESULT length = SendMessageW(window_, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&what), 0);
        return Read(GT_USECRLF, static_cast<size_t>(length));
    }

    // Inside the control a line break is one character, CR.
    void Select(size_t start, size_t length) override {
        const std::wstring text = start + length == 0 ? std::wstring() : Text();
        CHARRANGE range{static_cast<LONG>(Position(text, start)), static_cast<LONG>(Position(text, start + length))};
        SendMessageW(window_, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
    }

    std::wstring Selection() const override {
        CHARRANGE range{};
        SendMessageW(window_, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
        return Read(GT_SELECTION | GT_USECRLF, 2 * static_cast<size_t>(range.cpMax - range.cpMin));
    }

private:
    static size_t LongestParagraph(std::wstring_view text) {
        size_t longest = 0;
        for (size_t start = 0, end = 0; end != std::wstring_view::npos; start = end + 1) {
            end = text.find(L'\n', start);
            longest = std::max(longest, std::min(end, text.size()) - start);
        }
        return longest;
    }

    static size_t Position(const std::wstring& text, size_t offset) {
        size_t position = offset;
        for (size_t i = 1; i < offset; ++i)
            if (text[i] == L'\n' && text[i - 1] == L'\r') --position;
        return position;
    }

    std::wstring Read(DWORD flags, size_t room) const {
        std::wstring text(room, L'\0');
        GETTEXTEX how{static_cast<DWORD>((room + 1) * sizeof(wchar_t)), flags, kUtf16, nullptr, nullptr};
        const LRESULT read =
            SendMessageW(window_, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&how), reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<size_t>(read));
        return text;
    }

    const HWND window_;
};

}  // namespace

std::unique_ptr<TextView> MakeRichTextView(HWND richEdit) { return std::make_unique<RichTextView>(richEdit); }

}  // namespace beacon::standin
