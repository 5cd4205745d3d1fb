#pragma once

#include <windows.h>

#include <oleauto.h>

namespace beacon {

/// A listener as its sender and its hidden form see it. Reference-counted, because a call can end the window that it
/// follows. Members raise no errors; those with a result of COM return S_OK.
class Listener {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// Handle of the watched window; 0 while unknown.
    virtual long GetHwnd() const = 0;
    /// Sends the current item after the configured delay.
    virtual HRESULT STDMETHODCALLTYPE SendLater() = 0;
    /// Sends the current item now. Called by the form's timer.
    virtual HRESULT STDMETHODCALLTYPE Send() = 0;
    /// Retries to end the listener. May destroy it and the calling form.
    virtual HRESULT STDMETHODCALLTYPE Close() = 0;
    virtual void StopToolbarTimer() = 0;
    virtual bool IsInspector() const = 0;
    /// The COM object, without a new reference.
    virtual IDispatch* Dispatch() = 0;

protected:
    ~Listener() = default;
};

}  // namespace beacon
