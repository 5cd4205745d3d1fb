#pragma once

#include <beacon_olk_adapter.h>

#include "com/dual.h"
#include "com/out_values.h"
#include "observe/listener_core.h"
#include "support/type_libraries.h"

namespace beacon {

/// A listener as a COM object: the members that the interfaces of both kinds have in common.
template <class Interface>
class ListenerObject : public com::Dual<Interface, kAdapterLibrary>, public ListenerCore {
    using Base = com::Dual<Interface, kAdapterLibrary>;

public:
    using ListenerCore::Disconnect;
    using ListenerCore::GetHwnd;
    using ListenerCore::Init;

    STDMETHODIMP_(ULONG) AddRef() override { return Base::AddRef(); }

    STDMETHODIMP_(ULONG) Release() override { return Base::Release(); }

    IDispatch* Dispatch() override { return static_cast<Interface*>(this); }

    STDMETHODIMP get_objBeaconConnection(IBeaconConnection** value) override {
        return com::GiveObject(value, objBeaconConnection_.Get());
    }

    STDMETHODIMP put_objBeaconConnection(IBeaconConnection* value) override {
        return com::TakeNull(value, [&] { DropSender(); });
    }

    STDMETHODIMP putref_objBeaconConnection(IBeaconConnection* value) override {
        return put_objBeaconConnection(value);
    }

    STDMETHODIMP Init(long* hWnd) override {
        if (hWnd == nullptr) return E_POINTER;
        Init(*hWnd);
        return S_OK;
    }

    STDMETHODIMP Destroy() override { return ListenerCore::Destroy(); }

    STDMETHODIMP SendLater() override { return ListenerCore::SendLater(); }

    STDMETHODIMP Disconnect(VARIANT_BOOL* result) override { return com::GiveBool(result, Disconnect()); }

    STDMETHODIMP GetHwnd(long* result) override { return com::Give(result, GetHwnd()); }

    STDMETHODIMP Close() override { return Destroy(); }

protected:
    explicit ListenerObject(Services& services) : ListenerCore(services) {}

    void Final() noexcept override { Abandon(); }
};

}  // namespace beacon
