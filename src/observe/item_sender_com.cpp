// The COM face of the item sender: conversions only.
#include "observe/interface_values.h"
#include "observe/item_sender.h"

namespace beacon {

using com::Method;

HRESULT BeaconConnection::get_objListener(IDispatch** value) {
    const com::ComPtr<Listener> listener(objListener_);
    return com::GiveObject(value, listener == nullptr ? nullptr : listener->Dispatch());
}

// The listener sets itself through SetListener: an object that is not one could not answer.
HRESULT BeaconConnection::put_objListener(IDispatch* value) {
    if (value == nullptr) SetListener(nullptr);
    return value == nullptr ? S_OK : E_INVALIDARG;
}

HRESULT BeaconConnection::putref_objListener(IDispatch* value) { return put_objListener(value); }

HRESULT BeaconConnection::get_objApplication(IDispatch** value) { return com::GiveObject(value, objApplication.Get()); }

HRESULT BeaconConnection::put_objApplication(IDispatch* value) {
    if (value == nullptr) DropLink();
    return value == nullptr ? S_OK : E_INVALIDARG;
}

HRESULT BeaconConnection::putref_objApplication(IDispatch* value) { return put_objApplication(value); }

HRESULT BeaconConnection::get_hWnd(long* value) { return com::Give(value, hWnd_); }

HRESULT BeaconConnection::put_hWnd(long value) {
    hWnd_ = value;
    return S_OK;
}

HRESULT BeaconConnection::get_strLastBodySignature(BSTR* value) { return com::GiveText(value, strLastBodySignature); }

HRESULT BeaconConnection::put_strLastBodySignature(BSTR value) {
    return Method([&] { strLastBodySignature = com::ToText(value); });
}

HRESULT BeaconConnection::get_gContextString(VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    VariantInit(value);
    return VariantCopy(value, &gContextString);
}

HRESULT BeaconConnection::put_gContextString(VARIANT value) {
    return Method([&] { gContextString = com::OwnCopy(value); });
}

HRESULT BeaconConnection::putref_gContextString(VARIANT value) { return put_gContextString(value); }

HRESULT BeaconConnection::get_gToolbar(IDispatch** value) { return com::GiveObject(value, gToolbar.Get()); }

HRESULT BeaconConnection::put_gToolbar(IDispatch* value) {
    if (value == nullptr) DropToolbar();
    return value == nullptr ? S_OK : E_INVALIDARG;
}

HRESULT BeaconConnection::putref_gToolbar(IDispatch* value) { return put_gToolbar(value); }

HRESULT BeaconConnection::GetHwnd(long* result) {
    if (result == nullptr) return E_POINTER;
    return Method([&] { *result = ListenerThere()->GetHwnd(); });
}

HRESULT BeaconConnection::SendOutlookItem(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly,
                                          short* editorType) {
    return Method([&] {
        ByReference<std::wstring> selected(szSelected);
        ByReference<bool> bail(bBailEarly);
        SendOutlookItem(ObjectOf(objItem), selected.value, bail.value, ValueOf(editorType));
    });
}

HRESULT BeaconConnection::SkipItem(VARIANT* item, VARIANT_BOOL* bBailEarly, short* editorType, VARIANT* result) {
    if (result == nullptr) return E_POINTER;
    VariantInit(result);
    return Method([&] {
        ByReference<bool> bail(bBailEarly);
        const com::Object object = item == nullptr ? com::Object() : com::ToObject(_variant_t(*item));
        const bool skip = SkipItem(object, bail.value, ValueOf(editorType));
        result->vt = VT_BOOL;
        result->boolVal = skip ? VARIANT_TRUE : VARIANT_FALSE;
    });
}

HRESULT BeaconConnection::GenDocID(BSTR* strName, VARIANT* result) {
    if (result == nullptr) return E_POINTER;
    VariantInit(result);
    return Method([&] { *result = com::FromText(GenDocID(TextOf(strName))).Detach(); });
}

HRESULT BeaconConnection::SendMail(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly, short* editorType) {
    return Method([&] {
        ByReference<std::wstring> selected(szSelected);
        ByReference<bool> bail(bBailEarly);
        SendMail(ObjectOf(objItem), selected.value, bail.value, ValueOf(editorType));
    });
}

HRESULT BeaconConnection::SendContact(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly) {
    return Method([&] {
        ByReference<std::wstring> selected(szSelected);
        ByReference<bool> bail(bBailEarly);
        SendContact(ObjectOf(objItem), selected.value, bail.value);
    });
}

HRESULT BeaconConnection::SendNull() { return S_OK; }

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
