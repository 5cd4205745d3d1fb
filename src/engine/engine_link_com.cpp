#include "engine/engine_link.h"
#include "support/globals.h"

namespace beacon {
namespace {

VARIANT_BOOL FromBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

template <class Type, class Value>
HRESULT Give(Type* target, Value value) {
    if (target == nullptr) return E_POINTER;
    *target = value;
    return S_OK;
}

HRESULT GiveObject(IDispatch** target, IDispatch* object) {
    if (target == nullptr) return E_POINTER;
    *target = object;
    if (object != nullptr) object->AddRef();
    return S_OK;
}

}  // namespace

HRESULT Application::get_gControllerInterface(IDispatch** value) {
    return GiveObject(value, gControllerInterface.Get());
}

HRESULT Application::get_gEngineInterface(IDispatch** value) { return GiveObject(value, gEngineInterface.Get()); }

HRESULT Application::get_gAppHwnd(long* value) { return Give(value, gAppHwnd); }

HRESULT Application::get_gAppAdapterStarted(VARIANT_BOOL* value) { return Give(value, FromBool(gAppAdapterStarted)); }

HRESULT Application::get_gClosePending(VARIANT_BOOL* value) { return Give(value, FromBool(gClosePending)); }

HRESULT Application::put_gClosePending(VARIANT_BOOL value) { return Give(&gClosePending, value != VARIANT_FALSE); }

HRESULT Application::get_gAutoUpdate(VARIANT_BOOL* value) { return Give(value, FromBool(gAutoUpdate)); }

HRESULT Application::put_gAutoUpdate(VARIANT_BOOL value) { return Give(&gAutoUpdate, value != VARIANT_FALSE); }

HRESULT Application::get_gShutdownInProgress(VARIANT_BOOL* value) {
    return Give(value, FromBool(globals::gShutdownInProgress));
}

HRESULT Application::get_gInitPending(VARIANT_BOOL* value) { return Give(value, FromBool(gInitPending)); }

HRESULT Application::put_gInitPending(VARIANT_BOOL value) { return Give(&gInitPending, value != VARIANT_FALSE); }

HRESULT Application::get_gButtonClicked(VARIANT_BOOL* value) { return Give(value, FromBool(gButtonClicked)); }

HRESULT Application::put_gButtonClicked(VARIANT_BOOL value) { return Give(&gButtonClicked, value != VARIANT_FALSE); }

}  // namespace beacon
