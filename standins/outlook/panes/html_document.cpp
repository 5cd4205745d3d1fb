#include "outlook/panes/html_document.h"

#include <mshtmdid.h>
#include <mshtml.h>

#include <utility>

#include "com/counted.h"
#include "com/out_values.h"
#include "common/call_points.h"
#include "common/member_table.h"

namespace beacon::standin {
namespace {

using Page = std::shared_ptr<const HtmlPage>;

/// An object with named members.
class ScriptObject : public com::Counted<IDispatch>, public MemberTable {
public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return com::Give(count, 0); }

    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* members) override {
        const CallPoint call([&] { return std::wstring(L"HTML.GetIDsOfNames ") + names[0]; });
        return call.Fails() ? call.Result() : FindMembers(names, count, members);
    }

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* info, UINT* wrongArgument) override {
        if (parameters == nullptr) return E_INVALIDARG;
        const CallPoint call([&] { return L"HTML.Invoke " + MemberName(member); });
        if (call.Fails()) return call.Result();
        return CallMember(member, flags, *parameters, result, info, wrongArgument);
    }

protected:
    // The adapter asks for IHTMLDocument, of which it uses IDispatch only.
    void* FindInterface(REFIID id) noexcept override {
        return Counted::FindInterface(id == IID_IHTMLDocument ? IID_IDispatch : id);
    }
};

// The real viewer returns a null string for an empty text.
_variant_t GiveText(const std::wstring& text) {
    _variant_t value = com::FromText(text);
    if (text.empty()) SysFreeString(std::exchange(value.bstrVal, nullptr));
    return value;
}

_variant_t MakeRange(const std::wstring& text) {
    const auto range = com::MakeObject<ScriptObject>();
    range->AddProperty(DISPID_IHTMLTXTRANGE_TEXT, L"text", [=] { return GiveText(text); });
    return com::FromObject(range.Get());
}

_variant_t MakeSelection(const Page& page) {
    const auto selection = com::MakeObject<ScriptObject>();
    selection->AddMethod(DISPID_IHTMLSELECTIONOBJECT_CREATERANGE, L"createRange", 0, 0,
                         [=](const CallArguments&) { return MakeRange(page->Selection()); });
    return com::FromObject(selection.Get());
}

_variant_t MakeBody(const Page& page) {
    if (!page->loaded) return com::FromObject(nullptr);
    const auto body = com::MakeObject<ScriptObject>();
    body->AddProperty(static_cast<DISPID>(DISPID_IHTMLELEMENT_INNERTEXT), L"innerText",
                      [=] { return GiveText(page->text); });
    return com::FromObject(body.Get());
}

}  // namespace

com::ComPtr<IDispatch> MakeHtmlDocument(const Page& page) {
    const auto document = com::MakeObject<ScriptObject>();
    document->AddProperty(DISPID_IHTMLDOCUMENT2_BODY, L"body", [=] { return MakeBody(page); });
    document->AddProperty(DISPID_IHTMLDOCUMENT2_SELECTION, L"selection", [=] { return MakeSelection(page); });
    return document;
}

}  // namespace beacon::standin
