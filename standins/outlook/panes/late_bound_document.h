#pragma once

#include <windows.h>

#include <mshtml.h>

#include "outlook/panes/script_object.h"

namespace beacon::standin {

// One line for each method of the interface; the compiler says if one is missing.
#define REFUSED(method, ...) \
    STDMETHODIMP method(__VA_ARGS__) override { return E_NOTIMPL; }
#define REFUSED_VALUE(name)      \
    REFUSED(put_##name, VARIANT) \
    REFUSED(get_##name, VARIANT*)
#define REFUSED_TEXT(name) REFUSED(get_##name, BSTR*)
#define REFUSED_TEXT_PAIR(name) \
    REFUSED(put_##name, BSTR)   \
    REFUSED(get_##name, BSTR*)
#define REFUSED_COLLECTION(name) REFUSED(get_##name, IHTMLElementCollection**)

/// An HTML document with the whole table of IHTMLDocument2, of which only IDispatch's part does anything: its members
/// are reached by their names. How it is marshalled is left to the derived class.
struct LateBoundDocument : ScriptObject<IHTMLDocument2, IMarshal> {
    REFUSED(get_Script, IDispatch**)
    REFUSED(get_body, IHTMLElement**)
    REFUSED(get_activeElement, IHTMLElement**)
    REFUSED_COLLECTION(all)
    REFUSED_COLLECTION(images)
    REFUSED_COLLECTION(applets)
    REFUSED_COLLECTION(links)
    REFUSED_COLLECTION(forms)
    REFUSED_COLLECTION(anchors)
    REFUSED_COLLECTION(scripts)
    REFUSED_COLLECTION(embeds)
    REFUSED_COLLECTION(plugins)
    REFUSED(get_selection, IHTMLSelectionObject**)
    REFUSED(get_frames, IHTMLFramesCollection2**)
    REFUSED(get_location, IHTMLLocation**)
    REFUSED(get_parentWindow, IHTMLWindow2**)
    REFUSED(get_styleSheets, IHTMLStyleSheetsCollection**)
    REFUSED_TEXT_PAIR(title)
    REFUSED_TEXT_PAIR(designMode)
    REFUSED_TEXT_PAIR(URL)
    REFUSED_TEXT_PAIR(domain)
    REFUSED_TEXT_PAIR(cookie)
    REFUSED_TEXT_PAIR(charset)
    REFUSED_TEXT_PAIR(defaultCharset)
    REFUSED_TEXT(readyState)
    REFUSED_TEXT(referrer)
    REFUSED_TEXT(lastModified)
    REFUSED_TEXT(mimeType)
    REFUSED_TEXT(fileSize)
    REFUSED_TEXT(fileCreatedDate)
    REFUSED_TEXT(fileModifiedDate)
    REFUSED_TEXT(fileUpdatedDate)
    REFUSED_TEXT(security)
    REFUSED_TEXT(protocol)
    REFUSED_TEXT(nameProp)
    REFUSED_VALUE(alinkColor)
    REFUSED_VALUE(bgColor)
    REFUSED_VALUE(fgColor)
    REFUSED_VALUE(linkColor)
    REFUSED_VALUE(vlinkColor)
    REFUSED_VALUE(onhelp)
    REFUSED_VALUE(onclick)
    REFUSED_VALUE(ondblclick)
    REFUSED_VALUE(onkeyup)
    REFUSED_VALUE(onkeydown)
    REFUSED_VALUE(onkeypress)
    REFUSED_VALUE(onmouseup)
    REFUSED_VALUE(onmousedown)
    REFUSED_VALUE(onmousemove)
    REFUSED_VALUE(onmouseout)
    REFUSED_VALUE(onmouseover)
    REFUSED_VALUE(onreadystatechange)
    REFUSED_VALUE(onafterupdate)
    REFUSED_VALUE(onrowexit)
    REFUSED_VALUE(onrowenter)
    REFUSED_VALUE(ondragstart)
    REFUSED_VALUE(onselectstart)
    REFUSED_VALUE(onbeforeupdate)
    REFUSED_VALUE(onerrorupdate)
    REFUSED(put_expando, VARIANT_BOOL)
    REFUSED(get_expando, VARIANT_BOOL*)
    REFUSED(write, SAFEARRAY*)
    REFUSED(writeln, SAFEARRAY*)
    REFUSED(open, BSTR, VARIANT, VARIANT, VARIANT, IDispatch**)
    REFUSED(close)
    REFUSED(clear)
    REFUSED(toString, BSTR*)
    REFUSED(queryCommandSupported, BSTR, VARIANT_BOOL*)
    REFUSED(queryCommandEnabled, BSTR, VARIANT_BOOL*)
    REFUSED(queryCommandState, BSTR, VARIANT_BOOL*)
    REFUSED(queryCommandIndeterm, BSTR, VARIANT_BOOL*)
    REFUSED(queryCommandText, BSTR, BSTR*)
    REFUSED(queryCommandValue, BSTR, VARIANT*)
    REFUSED(execCommand, BSTR, VARIANT_BOOL, VARIANT, VARIANT_BOOL*)
    REFUSED(execCommandShowHelp, BSTR, VARIANT_BOOL*)
    REFUSED(createElement, BSTR, IHTMLElement**)
    REFUSED(elementFromPoint, LONG, LONG, IHTMLElement**)
    REFUSED(createStyleSheet, BSTR, LONG, IHTMLStyleSheet**)
};

#undef REFUSED
#undef REFUSED_VALUE
#undef REFUSED_TEXT
#undef REFUSED_TEXT_PAIR
#undef REFUSED_COLLECTION

}  // namespace beacon::standin
