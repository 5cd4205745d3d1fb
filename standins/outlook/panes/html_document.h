#pragma once

#include <windows.h>

#include <mshtml.h>
#include <wrl/client.h>

#include <memory>

#include "outlook/panes/html_page.h"

namespace beacon::standin {

/// The document object of a page, live: it tells the page's present text and selection. By name it has the members
/// "selection" (with "createRange", whose range has "text" and "htmlText"), "body" ("innerText", "innerHTML"), "title"
/// and "readyState"; by the table of IHTMLDocument2 every other method gives E_NOTIMPL. It may be used from any thread
/// of this process, and is marshalled between them as a plain pointer, so that no proxy needs to be registered. Throws
/// com::Error.
Microsoft::WRL::ComPtr<IHTMLDocument2> MakeHtmlDocument(const std::shared_ptr<const HtmlPage>& page);

/// Text as HTML that shows it.
std::wstring EscapeHtml(const std::wstring& text);

}  // namespace beacon::standin
