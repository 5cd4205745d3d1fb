#pragma once

#include <string>

#include "com/object.h"

namespace beacon {

/// What the toolbar asks of the connection that owns it. Reference-counted like the COM object behind it, since a
/// command can close its own window. Members may throw.
class ToolbarHost {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// Handle of the watched window; error 91 once the window has ended.
    virtual long GetHwnd() = 0;
    /// Whether the watched window is an inspector; otherwise it is an explorer. Error 91 once the window has ended.
    virtual bool ListenerIsInspector() = 0;
    /// Outlook's application object; empty once Outlook has quit.
    virtual com::Object OutlookApplication() = 0;
    /// The text that goes with the next selection that is sent.
    virtual void SetContextString(const std::wstring& text) = 0;
    /// The user asked for an update: forget what was sent and send at once.
    virtual HRESULT STDMETHODCALLTYPE OnUpdateClicked() = 0;
    /// Ends the ticks that install the toolbar late.
    virtual void StopToolbarTimer() = 0;
    /// The connection that watches this window, through the registry of listeners; null when none does.
    virtual com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) = 0;

    /// The connection as its late-bound callers know it; not counted for the caller.
    virtual IDispatch* AsDispatch() = 0;

protected:
    ~ToolbarHost() = default;
};

/// Raises error 91 once the connection's window has ended: whoever has let others run goes no further for it then.
inline void NeedWindow(ToolbarHost& connection) { connection.GetHwnd(); }

}  // namespace beacon
