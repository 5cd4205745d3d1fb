#pragma once

#include <windows.h>

namespace beacon {

/// What an engine link asks of the item sender that owns it. Reference-counted like the COM object behind it, because a
/// call can end the window it serves. Members may throw.
class LinkHost {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// The toolbar was installed in this window and the user has deleted its command bar since.
    virtual bool ToolbarWasRemoved() = 0;
    /// Re-issues a button click that waits for the link; does nothing without a toolbar.
    virtual void ReplayPendingClick() = 0;
    /// Sends the current item again, later; with force also when it has not changed.
    virtual void ReSend(bool bForce) = 0;
    /// Sends the current item again as if a toolbar button had been clicked.
    virtual void ForceUpdate() = 0;
    /// Installs the message hook unless it is there.
    virtual void SetUpWindowsHook() = 0;

protected:
    ~LinkHost() = default;
};

}  // namespace beacon
