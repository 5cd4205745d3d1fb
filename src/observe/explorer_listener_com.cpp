// The COM face of the explorer listener: conversions only.
#include "observe/explorer_listener.h"
#include "observe/interface_values.h"

namespace beacon {

using com::Method;

HRESULT ExplorerListener::get_hExplorer(long* value) { return com::Give(value, GetHwnd()); }

HRESULT ExplorerListener::put_hExplorer(long value) {
    SetHwnd(value);
    return S_OK;
}

HRESULT ExplorerListener::get_objExplorer(IDispatch** value) { return com::GiveObject(value, objWindow_.Get().Get()); }

HRESULT ExplorerListener::put_objExplorer(IDispatch* value) {
    return Method([&] { SetExplorer(com::Object(value)); });
}

HRESULT ExplorerListener::putref_objExplorer(IDispatch* value) { return put_objExplorer(value); }

HRESULT ExplorerListener::SetExplorer(IDispatch** aExplorer) {
    return Method([&] { SetExplorer(ObjectOf(aExplorer)); });
}

HRESULT ExplorerListener::GetSelected(BSTR* result) { return com::GiveText(result, GetSelected()); }

}  // namespace beacon
