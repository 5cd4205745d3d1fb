#pragma once

#include "com/counted.h"
#include "com/mapi.h"

namespace beacon::standin {

/// A MAPI object whose members all fail with MAPI_E_NO_SUPPORT, unless overridden.
class MapiObjectBase : public com::Counted<IMAPIProp> {
public:
    STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR*) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP SaveChanges(ULONG) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP GetProps(LPSPropTagArray, ULONG, ULONG*, LPSPropValue*) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP GetPropList(ULONG, LPSPropTagArray*) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN*) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP SetProps(ULONG, LPSPropValue, LPSPropProblemArray*) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP DeleteProps(LPSPropTagArray, LPSPropProblemArray*) override { return MAPI_E_NO_SUPPORT; }

    STDMETHODIMP CopyTo(ULONG, LPCIID, LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, void*, ULONG,
                        LPSPropProblemArray*) override {
        return MAPI_E_NO_SUPPORT;
    }

    STDMETHODIMP CopyProps(LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, void*, ULONG,
                           LPSPropProblemArray*) override {
        return MAPI_E_NO_SUPPORT;
    }

    STDMETHODIMP GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG*, LPMAPINAMEID**) override {
        return MAPI_E_NO_SUPPORT;
    }

    STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray*) override { return MAPI_E_NO_SUPPORT; }
};

}  // namespace beacon::standin
