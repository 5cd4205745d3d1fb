#pragma once

#include <windows.h>

namespace beacon {

/// The item sender that owns an engine link, as the link sees it. Reference-counted, because a call can end the window
/// that it serves. Members may throw.
class LinkHost {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// The toolbar was installed in this window, and the user has deleted its command bar.
    virtual bool ToolbarWasRemoved() = 0;
    /// Repeats a button click that came before the link was up.
    virtual void ReplayPendingClick() = 0;
    /// Sends the current item again after the configured delay; with bForce even if it has not changed.
    virtual void ReSend(bool bForce) = 0;
    /// The same with bForce, and marked as a button click.
    virtual HRESULT STDMETHODCALLTYPE ForceUpdate() = 0;
    /// Installs the message hook unless it is installed.
    virtual void SetUpWindowsHook() = 0;

protected:
    ~LinkHost() = default;
};

}  // namespace beacon
