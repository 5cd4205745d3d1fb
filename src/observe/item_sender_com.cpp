// Members of the item sender that only convert arguments for COM. A null pointer counts as an empty value.
#include <utility>

#include "observe/item_sender.h"

namespace beacon {
namespace {

com::Object ObjectOf(IDispatch** object) { return object == nullptr ? com::Object() : com::Object(*object); }

std::wstring TextOf(BSTR* text) { return text == nullptr ? std::wstring() : com::ToText(*text); }

short ValueOf(const short* value) { return value == nullptr ? short{0} : *value; }

/// Calls `body` with the values of two in-and-out arguments, and returns the new values when it succeeds.
template <class Body>
HRESULT WithReferences(BSTR* text, VARIANT_BOOL* flag, Body&& body) {
    return com::Method([&] {
        std::wstring value = TextOf(text);
        const std::wstring before = value;
        bool on = flag != nullptr && *flag != VARIANT_FALSE;
        body(value, on);
        com::GiveBool(flag, on);
        if (text != nullptr && value != before) SysFreeString(std::exchange(*text, com::NewBstr(value)));
    });
}

}  // namespace

HRESULT BeaconConnection::get_objListener(IDispatch** value) {
    const com::ComPtr<Listener> listener(objListener_);
    return com::GiveObject(value, listener == nullptr ? nullptr : listener->Dispatch());
}

HRESULT BeaconConnection::get_gContextString(VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    VariantInit(value);
    return VariantCopy(value, &gContextString);
}

HRESULT BeaconConnection::put_gContextString(VARIANT value) {
    return com::Method([&] { gContextString = com::OwnCopy(value); });
}

HRESULT BeaconConnection::GetHwnd(long* result) {
    return com::Method([&] { return com::Give(result, GetHwnd()); });
}

HRESULT BeaconConnection::SendOutlookItem(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly,
                                          short* editorType) {
    return WithReferences(szSelected, bBailEarly, [&](std::wstring& selected, bool& bail) {
        SendOutlookItem(ObjectOf(objItem), selected, bail, ValueOf(editorType));
    });
}

HRESULT BeaconConnection::SkipItem(VARIANT* item, VARIANT_BOOL* bBailEarly, short* editorType, VARIANT* result) {
    if (result == nullptr) return E_POINTER;
    VariantInit(result);
    return WithReferences(nullptr, bBailEarly, [&](std::wstring&, bool& bail) {
        const com::Object object = item == nullptr ? com::Object() : com::ToObject(_variant_t(*item));
        *result = com::FromBool(SkipItem(object, bail, ValueOf(editorType))).Detach();
    });
}

HRESULT BeaconConnection::GenDocID(BSTR* strName, VARIANT* result) {
    if (result == nullptr) return E_POINTER;
    VariantInit(result);
    return com::Method([&] { *result = com::FromText(GenDocID(TextOf(strName))).Detach(); });
}

HRESULT BeaconConnection::SendMail(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly, short* editorType) {
    return WithReferences(szSelected, bBailEarly, [&](std::wstring& selected, bool& bail) {
        SendMail(ObjectOf(objItem), selected, bail, ValueOf(editorType));
    });
}

HRESULT BeaconConnection::SendContact(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly) {
    return WithReferences(szSelected, bBailEarly,
                          [&](std::wstring& selected, bool& bail) { SendContact(ObjectOf(objItem), selected, bail); });
}

HRESULT BeaconConnection::Connect(long* hWnd) {
    if (hWnd == nullptr) return E_POINTER;
    Connect(*hWnd);
    return S_OK;
}

HRESULT BeaconConnection::Disconnect(VARIANT_BOOL* result) { return com::GiveBool(result, Disconnect()); }

HRESULT BeaconConnection::ReSend(VARIANT_BOOL* bForce) {
    if (bForce == nullptr) return E_POINTER;
    ReSend(*bForce != VARIANT_FALSE);
    return S_OK;
}

}  // namespace beacon
