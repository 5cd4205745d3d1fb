// Members of CToolbar that only convert their arguments for COM.
#include "com/out_values.h"
#include "support/error_styles.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/button_faces.h"
#include "toolbar/template_copy.h"
#include "toolbar/toolbar.h"

namespace beacon {

using com::GiveBool;
using com::GiveObject;
using com::GiveText;

STDMETHODIMP CToolbar::GetCommandBar(IDispatch** result) { return GiveObject(result, GetCommandBar().Get()); }

STDMETHODIMP CToolbar::GetAppName(BSTR* result) { return GiveText(result, kAppName); }

STDMETHODIMP CToolbar::GetDefaultToolbarName(BSTR* result) {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    LogOnError(L"Exception in GetDefaultToolbarName: ", [&] { *result = com::NewBstr(DefaultToolbarName()); });
    return S_OK;
}

STDMETHODIMP CToolbar::IsFirstInstallOfToolbar(BSTR sAppName, VARIANT_BOOL* result) {
    bool first = false;
    LogOnError(L"Exception in IsFirstInstallOfToolbar: ", [&] {
        first = modGetDword(HKEY_CURRENT_USER, kUserAdaptersKey + com::ToText(sAppName), setting::kHasInstalled) == 0;
    });
    return GiveBool(result, first);
}

STDMETHODIMP CToolbar::SetFirstInstallOfToolbar(BSTR sAppName, long lngValue) {
    LogOnError(L"Exception in SetFirstInstallOfToolbar: ", [&] {
        SetRegDword(HKEY_CURRENT_USER, kUserAdaptersKey + com::ToText(sAppName), setting::kHasInstalled, lngValue);
    });
    return S_OK;
}

STDMETHODIMP CToolbar::CopyFreshTemplateToAppData(BSTR sDOTFilename) {
    GoOnAfterError([&] { beacon::CopyFreshTemplateToAppData(com::ToText(sDOTFilename)); });
    return S_OK;
}

STDMETHODIMP CToolbar::CopyBitmapAsButtonFace(IDispatch* picSource, OLE_COLOR clrMaskColor) {
    return com::Method([&] {
        com::ComPtr<IPicture> picture;
        if (picSource != nullptr) picSource->QueryInterface(IID_PPV_ARGS(&picture));
        beacon::CopyBitmapAsButtonFace(picture.Get(), clrMaskColor);
    });
}

STDMETHODIMP CToolbar::get_gConnect(IDispatch** value) {
    return GiveObject(value, gConnect_ == nullptr ? nullptr : gConnect_->AsDispatch());
}

STDMETHODIMP CToolbar::get_gCboContext(VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    *value = com::FromObject(sinks_.mvargCboContext.Get().Get()).Detach();
    return S_OK;
}

STDMETHODIMP CToolbar::put_gCboContext(VARIANT value) {
    return com::Method(
        [&] { sinks_.mvargCboContext.Get().Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {_variant_t(value)}); });
}

STDMETHODIMP CToolbar::putref_gCboContext(VARIANT value) {
    return com::Method([&] { BindContextBox(com::ToObject(_variant_t(value))); });
}

}  // namespace beacon
