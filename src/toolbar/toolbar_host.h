#pragma once

#include <string>

#include "com/object.h"

namespace beacon {

/// Interface of the connection that owns the toolbar. Reference-counted like the COM object that implements it, because
/// a command can close its own window. Members may throw.
class ToolbarHost {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// Handle of the watched window; error 91 once the window is gone.
    virtual long GetHwnd() = 0;
    /// Whether the watched window is an inspector; otherwise it is an explorer. Error 91 once it is gone.
    virtual bool ListenerIsInspector() = 0;
    /// Outlook's application object; empty once Outlook has quit.
    virtual com::Object OutlookApplication() = 0;
    /// Sets the text that is appended to the next selection that is sent.
    virtual void SetContextString(const std::wstring& text) = 0;
    /// Sends the window's item again at once, even if it is unchanged.
    virtual HRESULT STDMETHODCALLTYPE OnUpdateClicked() = 0;
    /// Stops the timer that calls InstallBeaconToolbar.
    virtual void StopToolbarTimer() = 0;
    /// The connection of the listener that watches this window; null if there is none.
    virtual com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) = 0;

    /// The COM object; not counted for the caller.
    virtual IDispatch* AsDispatch() = 0;

protected:
    ~ToolbarHost() = default;
};

/// Raises error 91 once the connection's window is gone. For use after calls that let other code run.
inline void NeedWindow(ToolbarHost& connection) { connection.GetHwnd(); }

}  // namespace beacon
