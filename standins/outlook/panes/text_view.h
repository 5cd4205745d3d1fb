#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

namespace beacon::standin {

/// The window with the text of an item. Offsets count UTF-16 units of Text(); the caller checks ranges.
class TextView {
public:
    virtual ~TextView() = default;

    virtual HWND Window() const = 0;

    /// Replaces the text and clears the selection.
    virtual void SetText(std::wstring_view text) = 0;
    virtual std::wstring Text() const = 0;
    virtual void Select(size_t start, size_t length) = 0;
    virtual std::wstring Selection() const = 0;
};

/// The text with all line breaks converted to CR LF.
std::wstring WithLineBreaks(std::wstring_view text);

/// A view of a new rich edit window.
std::unique_ptr<TextView> MakeRichTextView(HWND richEdit);

/// A view of a Word window, which supports WM_GETTEXT but no messages of edit controls.
std::unique_ptr<TextView> MakeWordView(HWND word);

}  // namespace beacon::standin
