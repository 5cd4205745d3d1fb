#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "common/threads.h"

namespace beacon::standin {

/// What the HTML viewer shows. The text has CR LF for line breaks.
struct HtmlContent {
    std::wstring title, text, html;
    size_t start = 0, length = 0;  // of the selection
    bool loaded = false;           // until then the document has no body
    bool offered = true;           // whether the window hands out a document

    std::wstring Selection() const { return text.substr(start, length); }
};

/// The pane, the window and the documents that were handed out share it, from more than one thread once the window has
/// its own.
class HtmlPage {
public:
    HtmlContent Content() const {
        const std::scoped_lock lock(mutex_);
        return content_;
    }

    template <class Action>
    void Change(Action&& action) {
        const std::scoped_lock lock(mutex_);
        action(content_);
    }

private:
    mutable Mutex mutex_;
    HtmlContent content_;
};

}  // namespace beacon::standin
