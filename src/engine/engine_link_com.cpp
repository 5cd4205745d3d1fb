#include "com/out_values.h"
#include "engine/engine_link.h"
#include "support/globals.h"

namespace beacon {

using com::Give;
using com::GiveBool;
using com::GiveObject;

HRESULT Application::get_gControllerInterface(IDispatch** value) {
    return GiveObject(value, gControllerInterface.Get());
}

HRESULT Application::get_gEngineInterface(IDispatch** value) { return GiveObject(value, gEngineInterface.Get()); }

HRESULT Application::get_gAppHwnd(long* value) { return Give(value, gAppHwnd); }

HRESULT Application::get_gAppAdapterStarted(VARIANT_BOOL* value) { return GiveBool(value, gAppAdapterStarted); }

HRESULT Application::get_gClosePending(VARIANT_BOOL* value) { return GiveBool(value, gClosePending); }

HRESULT Application::put_gClosePending(VARIANT_BOOL value) {
    gClosePending = value != VARIANT_FALSE;
    return S_OK;
}

HRESULT Application::get_gAutoUpdate(VARIANT_BOOL* value) { return GiveBool(value, gAutoUpdate); }

HRESULT Application::put_gAutoUpdate(VARIANT_BOOL value) {
    gAutoUpdate = value != VARIANT_FALSE;
    return S_OK;
}

HRESULT Application::get_gShutdownInProgress(VARIANT_BOOL* value) {
    return GiveBool(value, globals::gShutdownInProgress);
}

HRESULT Application::get_gInitPending(VARIANT_BOOL* value) { return GiveBool(value, gInitPending); }

HRESULT Application::put_gInitPending(VARIANT_BOOL value) {
    gInitPending = value != VARIANT_FALSE;
    return S_OK;
}

HRESULT Application::get_gButtonClicked(VARIANT_BOOL* value) { return GiveBool(value, gButtonClicked); }

HRESULT Application::put_gButtonClicked(VARIANT_BOOL value) {
    gButtonClicked = value != VARIANT_FALSE;
    return S_OK;
}

}  // namespace beacon
