#include "outlook/panes/html_document.h"

#include <mshtmdid.h>
#include <objbase.h>

#include <utility>

#include "com/error.h"
#include "outlook/panes/late_bound_document.h"

namespace beacon::standin {
namespace {

using com::ComPtr;
using Named = ScriptObject<IDispatch>;
using Page = std::shared_ptr<const HtmlPage>;

// The HTML viewer gives a null string for an empty text.
_variant_t GiveText(const std::wstring& text) {
    _variant_t value = com::FromText(text);
    if (text.empty()) SysFreeString(std::exchange(value.bstrVal, nullptr));
    return value;
}

_variant_t MakeRange(const std::wstring& text) {
    const auto range = com::MakeObject<Named>();
    range->AddProperty(DISPID_IHTMLTXTRANGE_TEXT, L"text", [=] { return GiveText(text); });
    range->AddProperty(DISPID_IHTMLTXTRANGE_HTMLTEXT, L"htmlText", [=] { return GiveText(EscapeHtml(text)); });
    return com::FromObject(range.Get());
}

_variant_t MakeSelection(const Page& page) {
    const auto selection = com::MakeObject<Named>();
    selection->AddMethod(DISPID_IHTMLSELECTIONOBJECT_CREATERANGE, L"createRange", 0, 0,
                         [=](const CallArguments&) { return MakeRange(page->Content().Selection()); });
    selection->AddProperty(DISPID_IHTMLSELECTIONOBJECT_TYPE, L"type",
                           [=] { return GiveText(page->Content().length == 0 ? L"None" : L"Text"); });
    return com::FromObject(selection.Get());
}

_variant_t MakeBody(const Page& page) {
    if (!page->Content().loaded) return com::FromObject(nullptr);
    const auto body = com::MakeObject<Named>();
    body->AddProperty(static_cast<DISPID>(DISPID_IHTMLELEMENT_INNERTEXT), L"innerText",
                      [=] { return GiveText(page->Content().text); });
    body->AddProperty(static_cast<DISPID>(DISPID_IHTMLELEMENT_INNERHTML), L"innerHTML",
                      [=] { return GiveText(page->Content().html); });
    return com::FromObject(body.Get());
}

// The document is handed out for "another process of this machine", for which the system's free-threaded marshaller
// would fall back to a proxy, whose registration belongs to a browser that may not be there: it is told that the
// pointer stays inside.
class Document final : public LateBoundDocument {
public:
    explicit Document(const Page& page) {
        ComPtr<IUnknown> marshaller;
        com::Check(CoCreateFreeThreadedMarshaler(nullptr, &marshaller));
        com::Check(marshaller.As(&marshaller_));
        AddProperty(DISPID_IHTMLDOCUMENT2_BODY, L"body", [=] { return MakeBody(page); });
        AddProperty(DISPID_IHTMLDOCUMENT2_SELECTION, L"selection", [=] { return MakeSelection(page); });
        AddProperty(DISPID_IHTMLDOCUMENT2_TITLE, L"title", [=] { return GiveText(page->Content().title); });
        AddProperty(DISPID_IHTMLDOCUMENT2_READYSTATE, L"readyState",
                    [=] { return GiveText(page->Content().loaded ? L"complete" : L"loading"); });
    }

    STDMETHODIMP GetUnmarshalClass(REFIID id, void* object, DWORD, void* context, DWORD flags, CLSID* result) override {
        return marshaller_->GetUnmarshalClass(id, object, MSHCTX_INPROC, context, flags, result);
    }

    STDMETHODIMP GetMarshalSizeMax(REFIID id, void* object, DWORD, void* context, DWORD flags, DWORD* size) override {
        return marshaller_->GetMarshalSizeMax(id, object, MSHCTX_INPROC, context, flags, size);
    }

    STDMETHODIMP MarshalInterface(IStream* stream, REFIID id, void* object, DWORD, void* context,
                                  DWORD flags) override {
        return marshaller_->MarshalInterface(stream, id, object, MSHCTX_INPROC, context, flags);
    }

    STDMETHODIMP UnmarshalInterface(IStream* stream, REFIID id, void** object) override {
        return marshaller_->UnmarshalInterface(stream, id, object);
    }

    STDMETHODIMP ReleaseMarshalData(IStream* stream) override { return marshaller_->ReleaseMarshalData(stream); }

    STDMETHODIMP DisconnectObject(DWORD reserved) override { return marshaller_->DisconnectObject(reserved); }

protected:
    void* Face(REFIID id) noexcept override {
        if (id == IID_IDispatch || id == IID_IHTMLDocument) return static_cast<IHTMLDocument2*>(this);
        return LateBoundDocument::Face(id);
    }

private:
    ComPtr<IMarshal> marshaller_;
};

}  // namespace

ComPtr<IHTMLDocument2> MakeHtmlDocument(const std::shared_ptr<const HtmlPage>& page) {
    return com::MakeObject<Document>(page);
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
