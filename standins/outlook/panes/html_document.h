#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "com/object.h"

namespace beacon::standin {

/// The page in the HTML viewer. Line breaks are CR LF.
struct HtmlPage {
    std::wstring text;
    size_t start = 0;  // of the selection
    size_t length = 0;
    bool loaded = false;  // before, the document has no body
    bool offered = true;  // whether the window offers its document

    std::wstring Selection() const { return text.substr(start, length); }
};

/// The document object of a page, late-bound: "body" ("innerText") and "selection" ("createRange" with "text"). It
/// reflects later changes of the page.
com::ComPtr<IDispatch> MakeHtmlDocument(const std::shared_ptr<const HtmlPage>& page);

}  // namespace beacon::standin
