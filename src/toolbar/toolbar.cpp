#include "toolbar/toolbar.h"

#include "support/error_styles.h"
#include "support/log.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/button_faces.h"
#include "toolbar/template_copy.h"

namespace beacon {
namespace {

constexpr wchar_t kAppName[] = L"Outlook";

template <class Value>
HRESULT Give(Value* target, Value value) {
    if (target == nullptr) return E_POINTER;
    *target = value;
    return S_OK;
}

HRESULT GiveText(BSTR* target, std::wstring_view text) {
    if (target == nullptr) return E_POINTER;
    return com::Method([&] { *target = com::NewBstr(text); });
}

HRESULT GiveBool(VARIANT_BOOL* target, bool value) {
    return Give<VARIANT_BOOL>(target, value ? VARIANT_TRUE : VARIANT_FALSE);
}

}  // namespace

void CToolbar::Final() noexcept {
    GoOnAfterError([&] {
        // Not worth creating: a toolbar that never asked for the mode has no box either.
        if (!toolbarConfig_.IsCreated() || toolbarConfig_.ContextMode() != 1) return;
        const com::Object box = mvargCboContext_ ? mvargCboContext_.Control() : comboBox_;
        if (box) box.Call(L"Clear");
    });
    mvargCbbBeacon_.Release();
    mvargCboContext_.Release();
    mvargCbbSearch_.Release();
    mvargCbbSearchInContext_.Release();
    mvargCbbFocus_.Release();
    mvargCbbRefresh_.Release();
    oCommandBars_.Reset();
    oBeaconCmdBar_.Reset();
}

ToolbarHost& CToolbar::Connect() const {
    if (gConnect_ == nullptr) com::Raise(com::kNoObject);
    return *gConnect_;
}

STDMETHODIMP CToolbar::InstallBeaconToolbar(VARIANT_BOOL bRemoveOldToolbar) {
    const com::ComPtr<CToolbar> alive(this);
    const com::ComPtr<ToolbarHost> connection(gConnect_);
    LogOnError(L"Exception in InstallBeaconToolbar: ", [&] {
        LogMsg2(L"InstallBeaconToolbar: ");
        if (gInitialized_) return;
        if (bRemoveOldToolbar != VARIANT_FALSE) {
            LogMsg2(L"InstallBeaconToolbar: Removing old toolbar");
            RemoveBeaconToolbar();
        }
        LogMsg2(L"InstallBeaconToolbar: About to add toolbar");
        AddBeaconToolbar();
        if (!GetCommandBar()) {
            LogMsg2(L"InstallBeacnToolbar: unable to locate Toolbar");
            return;
        }
        SyncToolbar(Connect().GetHwnd());
        gInitialized_ = true;
        LogMsg2(L"InstallBeaconToolbar: tmrToolbar is disabled");
        Connect().StopToolbarTimer();
    });
    return S_OK;
}

STDMETHODIMP CToolbar::GetCommandBar(IDispatch** result) {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return com::Method([&] {
        const com::Object bar = GetCommandBar();
        if (bar) *result = com::FromObject(bar.Get()).Detach().pdispVal;
    });
}

STDMETHODIMP CToolbar::GetAppName(BSTR* result) { return GiveText(result, kAppName); }

STDMETHODIMP CToolbar::GetDefaultToolbarName(BSTR* result) { return GiveText(result, DefaultToolbarName()); }

STDMETHODIMP CToolbar::IsFirstInstallOfToolbar(BSTR sAppName, VARIANT_BOOL* result) {
    if (result == nullptr) return E_POINTER;
    return com::Method([&] {
        const std::wstring key = kUserAdaptersKey + com::ToText(sAppName);
        GiveBool(result, modGetDword(HKEY_CURRENT_USER, key, L"HasInstalled") == 0);
    });
}

STDMETHODIMP CToolbar::SetFirstInstallOfToolbar(BSTR sAppName, long lngValue) {
    return com::Method(
        [&] { SetRegDword(HKEY_CURRENT_USER, kUserAdaptersKey + com::ToText(sAppName), L"HasInstalled", lngValue); });
}

STDMETHODIMP CToolbar::CopyFreshTemplateToAppData(BSTR sDOTFilename) {
    GoOnAfterError([&] { beacon::CopyFreshTemplateToAppData(com::ToText(sDOTFilename)); });
    return S_OK;
}

STDMETHODIMP CToolbar::g_tmrLayoutSaver_Timer() {
    LogOnError(L"Exception in g_tmrLayoutSaver_Timer: ", [&] {
        const com::Object bar = GetCommandBar();
        if (!bar) return;
        ConfigClient::Layout layout;
        layout.height = bar.GetLong(L"Height");
        layout.width = bar.GetLong(L"Width");
        layout.left = bar.GetLong(L"Left");
        layout.top = bar.GetLong(L"Top");
        layout.rowIndex = bar.GetLong(L"RowIndex");
        layout.position = PositionName(bar.GetLong(L"Position"));
        toolbarConfig_.SaveLayout(kAppName, layout);
    });
    return S_OK;
}

STDMETHODIMP CToolbar::CopyBitmapAsButtonFace(IDispatch* picSource, OLE_COLOR clrMaskColor) {
    return com::Method([&] {
        com::ComPtr<IPicture> picture;
        if (picSource != nullptr) picSource->QueryInterface(IID_PPV_ARGS(&picture));
        beacon::CopyBitmapAsButtonFace(picture.Get(), clrMaskColor);
    });
}

STDMETHODIMP CToolbar::get_g_strDOTName(BSTR* value) { return GiveText(value, g_strDOTName_); }

STDMETHODIMP CToolbar::put_g_strDOTName(BSTR value) {
    return com::Method([&] { g_strDOTName_ = com::ToText(value); });
}

STDMETHODIMP CToolbar::get_g_sPendingButton(BSTR* value) { return GiveText(value, clicks_.g_sPendingButton); }

STDMETHODIMP CToolbar::put_g_sPendingButton(BSTR value) {
    return com::Method([&] { clicks_.g_sPendingButton = com::ToText(value); });
}

STDMETHODIMP CToolbar::get_g_nPendingButton(long* value) { return Give(value, clicks_.g_nPendingButton); }

STDMETHODIMP CToolbar::put_g_nPendingButton(long value) {
    clicks_.g_nPendingButton = value;
    return S_OK;
}

STDMETHODIMP CToolbar::get_gConnect(IDispatch** value) {
    if (value == nullptr) return E_POINTER;
    *value = nullptr;
    return com::Method([&] {
        if (gConnect_ != nullptr) *value = com::FromObject(gConnect_->AsDispatch()).Detach().pdispVal;
    });
}

STDMETHODIMP CToolbar::get_gCboContext(VARIANT* value) {
    if (value == nullptr) return E_POINTER;
    *value = com::FromObject(mvargCboContext_.Control().Get()).Detach();
    return S_OK;
}

STDMETHODIMP CToolbar::put_gCboContext(VARIANT value) {
    return com::Method(
        [&] { mvargCboContext_.Control().Invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, {_variant_t(value)}); });
}

STDMETHODIMP CToolbar::putref_gCboContext(VARIANT value) {
    return com::Method([&] { BindContextBox(com::ToObject(_variant_t(value))); });
}

STDMETHODIMP CToolbar::get_gSharedConextList(VARIANT_BOOL* value) { return GiveBool(value, gSharedConextList_); }

STDMETHODIMP CToolbar::put_gSharedConextList(VARIANT_BOOL value) {
    gSharedConextList_ = value != VARIANT_FALSE;
    return S_OK;
}

STDMETHODIMP CToolbar::get_gInitialized(VARIANT_BOOL* value) { return GiveBool(value, gInitialized_); }

STDMETHODIMP CToolbar::put_gInitialized(VARIANT_BOOL value) {
    gInitialized_ = value != VARIANT_FALSE;
    return S_OK;
}

}  // namespace beacon
