#include "outlook/panes/html_document.h"

#include <mshtmdid.h>
#include <objbase.h>

#include "com/error.h"
#include "outlook/panes/html_bare.h"
#include "outlook/panes/script_object.h"

namespace beacon::standin {
namespace {

using Microsoft::WRL::ComPtr;
using Page = std::shared_ptr<const HtmlPage>;

constexpr auto kInnerText = static_cast<DISPID>(DISPID_IHTMLELEMENT_INNERTEXT);
constexpr auto kInnerHtml = static_cast<DISPID>(DISPID_IHTMLELEMENT_INNERHTML);

class Range final : public ScriptObject<BareRange, IHTMLTxtRange> {
public:
    explicit Range(std::wstring text) : text_(std::move(text)) {}

    STDMETHODIMP get_text(BSTR* text) override {
        return GiveText(text, [&] { return text_; });
    }

    STDMETHODIMP get_htmlText(BSTR* text) override {
        return GiveText(text, [&] { return EscapeHtml(text_); });
    }

protected:
    std::span<const ScriptMember> Members() const override {
        static constexpr ScriptMember members[] = {{L"text", DISPID_IHTMLTXTRANGE_TEXT},
                                                   {L"htmlText", DISPID_IHTMLTXTRANGE_HTMLTEXT}};
        return members;
    }

    HRESULT Read(DISPID member, VARIANT& value) override {
        switch (member) {
            case DISPID_VALUE:
            case DISPID_IHTMLTXTRANGE_TEXT: return TextVariant(value, [&](BSTR* text) { return get_text(text); });
            case DISPID_IHTMLTXTRANGE_HTMLTEXT:
                return TextVariant(value, [&](BSTR* text) { return get_htmlText(text); });
            default: return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    const std::wstring text_;
};

class Selection final : public ScriptObject<BareSelection, IHTMLSelectionObject> {
public:
    explicit Selection(Page page) : page_(std::move(page)) {}

    STDMETHODIMP createRange(IDispatch** range) override {
        return GiveObject(range, [&] { return ComPtr<IDispatch>(new Range(page_->Selection())); });
    }

    STDMETHODIMP get_type(BSTR* type) override {
        return GiveText(type, [&] { return std::wstring(page_->Selection().empty() ? L"None" : L"Text"); });
    }

protected:
    std::span<const ScriptMember> Members() const override {
        static constexpr ScriptMember members[] = {{L"createRange", DISPID_IHTMLSELECTIONOBJECT_CREATERANGE},
                                                   {L"type", DISPID_IHTMLSELECTIONOBJECT_TYPE}};
        return members;
    }

    HRESULT Read(DISPID member, VARIANT& value) override {
        switch (member) {
            case DISPID_IHTMLSELECTIONOBJECT_CREATERANGE:
                return ObjectVariant<IDispatch>(value, [&](IDispatch** range) { return createRange(range); });
            case DISPID_IHTMLSELECTIONOBJECT_TYPE:
                return TextVariant(value, [&](BSTR* type) { return get_type(type); });
            default: return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    const Page page_;
};

class Body final : public ScriptObject<BareElement, IHTMLElement> {
public:
    explicit Body(Page page) : page_(std::move(page)) {}

    STDMETHODIMP get_innerText(BSTR* text) override {
        return GiveText(text, [&] { return page_->Text(); });
    }

    STDMETHODIMP get_innerHTML(BSTR* html) override {
        return GiveText(html, [&] { return page_->Html(); });
    }

protected:
    std::span<const ScriptMember> Members() const override {
        static constexpr ScriptMember members[] = {{L"innerText", kInnerText}, {L"innerHTML", kInnerHtml}};
        return members;
    }

    HRESULT Read(DISPID member, VARIANT& value) override {
        switch (member) {
            case kInnerText: return TextVariant(value, [&](BSTR* text) { return get_innerText(text); });
            case kInnerHtml: return TextVariant(value, [&](BSTR* html) { return get_innerHTML(html); });
            default: return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    const Page page_;
};

// Marshals an object as the plain pointer that it is, for any thread of this process. The document is handed out for
// "another process of this machine", for which the system's free-threaded marshaller would fall back to a proxy, whose
// registration belongs to a browser that may not be there: it is told that the pointer stays inside.
class InProcessMarshal final : public IMarshal {
public:
    explicit InProcessMarshal(IUnknown* owner) : owner_(owner) {
        ComPtr<IUnknown> marshaller;
        com::Check(CoCreateFreeThreadedMarshaler(nullptr, &marshaller));
        com::Check(marshaller.As(&marshaller_));
    }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        if (id != IID_IMarshal) return owner_->QueryInterface(id, object);
        if (object == nullptr) return E_POINTER;
        *object = static_cast<IMarshal*>(this);
        AddRef();
        return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&count_)); }

    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = InterlockedDecrement(&count_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
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

private:
    LONG count_ = 0;
    const ComPtr<IUnknown> owner_;
    ComPtr<IMarshal> marshaller_;
};

class Document final : public ScriptObject<BareDocument, IHTMLDocument2> {
public:
    explicit Document(Page page) : page_(std::move(page)) {}

    STDMETHODIMP get_body(IHTMLElement** body) override {
        return GiveObject(body, [&] { return ComPtr<IHTMLElement>(new Body(page_)); });
    }

    STDMETHODIMP get_selection(IHTMLSelectionObject** selection) override {
        return GiveObject(selection, [&] { return ComPtr<IHTMLSelectionObject>(new Selection(page_)); });
    }

    STDMETHODIMP get_title(BSTR* title) override {
        return GiveText(title, [&] { return page_->Title(); });
    }

    STDMETHODIMP get_readyState(BSTR* state) override {
        return GiveText(state, [&] { return std::wstring(L"complete"); });
    }

protected:
    HRESULT QueryOther(REFIID id, void** object) override {
        if (id == IID_IHTMLDocument) {
            *object = static_cast<IHTMLDocument*>(this);
            AddRef();
            return S_OK;
        }
        if (id == IID_IMarshal) {
            return GiveObject(reinterpret_cast<IMarshal**>(object),
                              [&] { return ComPtr<IMarshal>(new InProcessMarshal(this)); });
        }
        return E_NOINTERFACE;
    }

    std::span<const ScriptMember> Members() const override {
        static constexpr ScriptMember members[] = {{L"body", DISPID_IHTMLDOCUMENT2_BODY},
                                                   {L"selection", DISPID_IHTMLDOCUMENT2_SELECTION},
                                                   {L"title", DISPID_IHTMLDOCUMENT2_TITLE},
                                                   {L"readyState", DISPID_IHTMLDOCUMENT2_READYSTATE}};
        return members;
    }

    HRESULT Read(DISPID member, VARIANT& value) override {
        switch (member) {
            case DISPID_IHTMLDOCUMENT2_BODY:
                return ObjectVariant<IHTMLElement>(value, [&](IHTMLElement** body) { return get_body(body); });
            case DISPID_IHTMLDOCUMENT2_SELECTION:
                return ObjectVariant<IHTMLSelectionObject>(
                    value, [&](IHTMLSelectionObject** selection) { return get_selection(selection); });
            case DISPID_IHTMLDOCUMENT2_TITLE: return TextVariant(value, [&](BSTR* title) { return get_title(title); });
            case DISPID_IHTMLDOCUMENT2_READYSTATE:
                return TextVariant(value, [&](BSTR* state) { return get_readyState(state); });
            default: return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    const Page page_;
};

}  // namespace

ComPtr<IHTMLDocument2> MakeHtmlDocument(std::shared_ptr<const HtmlPage> page) {
    return ComPtr<IHTMLDocument2>(new Document(std::move(page)));
}

}  // namespace beacon::standin
