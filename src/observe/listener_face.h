#pragma once

#include <beacon_olk_adapter.h>

#include "com/dual.h"
#include "com/out_values.h"
#include "observe/listener_core.h"

namespace beacon {

/// The members that the COM interfaces of both listeners have in common: conversions only.
template <class Interface>
class ListenerFace : public com::Dual<Interface, kAdapterLibrary> {
public:
    STDMETHODIMP get_objBeaconConnection(IBeaconConnection** value) override {
        return com::GiveObject(value, Core().objBeaconConnection().Get());
    }

    // Only Connect makes a sender, since it has to serve this listener; it can be taken away.
    STDMETHODIMP put_objBeaconConnection(IBeaconConnection* value) override {
        if (value != nullptr) return E_INVALIDARG;
        Core().DropSender();
        return S_OK;
    }

    STDMETHODIMP putref_objBeaconConnection(IBeaconConnection* value) override {
        return put_objBeaconConnection(value);
    }

    STDMETHODIMP Init(long* hWnd) override {
        if (hWnd == nullptr) return E_POINTER;
        Core().Init(*hWnd);
        return S_OK;
    }

    STDMETHODIMP Destroy() override {
        Core().Destroy();
        return S_OK;
    }

    STDMETHODIMP Connect() override {
        Core().Connect();
        return S_OK;
    }

    STDMETHODIMP SendLater() override {
        Core().SendLater();
        return S_OK;
    }

    STDMETHODIMP Send() override {
        Core().Send();
        return S_OK;
    }

    STDMETHODIMP Disconnect(VARIANT_BOOL* result) override { return com::GiveBool(result, Core().Disconnect()); }

    STDMETHODIMP GetHwnd(long* result) override { return com::Give(result, Core().GetHwnd()); }

    STDMETHODIMP Close() override {
        Core().Close();
        return S_OK;
    }

private:
    virtual ListenerCore& Core() = 0;
};

/// A listener with its COM interface. Inside, the listener's own functions are meant; COM's are called by COM.
template <class Interface>
class ListenerObject : public ListenerFace<Interface>, public ListenerCore {
public:
    using ListenerCore::Close;
    using ListenerCore::Connect;
    using ListenerCore::Destroy;
    using ListenerCore::Disconnect;
    using ListenerCore::GetHwnd;
    using ListenerCore::Init;
    using ListenerCore::Send;
    using ListenerCore::SendLater;

    ULONG STDMETHODCALLTYPE AddRef() override { return ListenerFace<Interface>::AddRef(); }

    ULONG STDMETHODCALLTYPE Release() override { return ListenerFace<Interface>::Release(); }

    IDispatch* Dispatch() override { return static_cast<Interface*>(this); }

protected:
    explicit ListenerObject(Services& services) : ListenerCore(services) {}

    void Final() noexcept override { Abandon(); }

private:
    ListenerCore& Core() override { return *this; }
};

}  // namespace beacon
