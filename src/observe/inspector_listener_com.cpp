// The COM face of the inspector listener: conversions only.
#include "observe/inspector_listener.h"

namespace beacon {

using com::Method;

HRESULT InspectorListener::get_hInspector(long* value) { return com::Give(value, GetHwnd()); }

HRESULT InspectorListener::put_hInspector(long value) {
    SetHwnd(value);
    return S_OK;
}

HRESULT InspectorListener::get_objInspector(IDispatch** value) {
    return com::GiveObject(value, objWindow_.Get().Get());
}

HRESULT InspectorListener::put_objInspector(IDispatch* value) { return SetInspector(value); }

HRESULT InspectorListener::putref_objInspector(IDispatch* value) { return SetInspector(value); }

HRESULT InspectorListener::SetInspector(IDispatch* aInspector) {
    return Method([&] { WatchInspector(com::Object(aInspector)); });
}

HRESULT InspectorListener::get_myMailItem(IDispatch** value) { return com::GiveObject(value, myMailItem_.Get().Get()); }

HRESULT InspectorListener::put_myMailItem(IDispatch* value) {
    return Method([&] { WatchMail(com::Object(value)); });
}

HRESULT InspectorListener::putref_myMailItem(IDispatch* value) { return put_myMailItem(value); }

HRESULT InspectorListener::get_myContactItem(IDispatch** value) {
    return com::GiveObject(value, myContactItem_.Get().Get());
}

HRESULT InspectorListener::put_myContactItem(IDispatch* value) {
    return Method([&] { WatchContact(com::Object(value)); });
}

HRESULT InspectorListener::putref_myContactItem(IDispatch* value) { return put_myContactItem(value); }

}  // namespace beacon
