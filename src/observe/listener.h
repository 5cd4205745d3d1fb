#pragma once

#include <windows.h>

#include <oleauto.h>

namespace beacon {

/// What a sender and a hidden form ask of the listener that they serve. Reference-counted like the COM object behind
/// it, since a call can end the window it follows. No member raises an error.
class Listener {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// Handle of the watched window; 0 while unknown.
    virtual long GetHwnd() const = 0;
    /// Sends the current item after the configured delay.
    virtual void SendLater() = 0;
    /// Sends it now. Called by the form's timer.
    virtual void Send() = 0;
    /// Tries to end the listener again. May destroy it, and the form that called.
    virtual void Close() = 0;
    virtual void StopToolbarTimer() = 0;
    virtual bool IsInspector() const = 0;
    /// The listener as its late-bound callers know it; not counted for the caller.
    virtual IDispatch* Dispatch() = 0;

protected:
    ~Listener() = default;
};

}  // namespace beacon
