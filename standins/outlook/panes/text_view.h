#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

#include "outlook/panes/item_pane.h"

namespace beacon::standin {

/// The window that holds an item's text. Offsets count characters of Text(); ranges are checked by the caller.
class TextView {
public:
    virtual ~TextView() = default;

    virtual HWND Window() const = 0;

    virtual void Load(const ItemText& item) { SetText(item.body); }

    /// Replaces the text and drops the selection.
    virtual void SetText(std::wstring_view text) = 0;
    virtual std::wstring Text() const = 0;
    virtual void Select(size_t start, size_t length) = 0;
    virtual std::wstring Selection() const = 0;
};

/// The text with CR LF for every line break, whichever form it had.
std::wstring WithLineBreaks(std::wstring_view text);

/// A rich edit that has just been created; fits text of any length.
std::unique_ptr<TextView> MakeRichTextView(HWND richEdit);

/// Word's window: it tells its text, but answers no message of the edit controls.
std::unique_ptr<TextView> MakeWordView(HWND word);

}  // namespace beacon::standin
