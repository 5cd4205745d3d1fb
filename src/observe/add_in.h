#pragma once

#include <memory>

#include "com/object.h"

namespace beacon {

class BeaconConnection;
class ExplorerListener;
class InspectorListener;

/// What a connection and a hidden form ask of the listener that they serve. The members have the shape of the
/// listeners' COM methods, so that one implementation serves both; they return S_OK and never raise.
class Listener {
public:
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

    /// Handle of the watched window; 0 while unknown.
    virtual HRESULT STDMETHODCALLTYPE GetHwnd(long* result) = 0;
    /// Sends the current item after the configured delay.
    virtual HRESULT STDMETHODCALLTYPE SendLater() = 0;
    /// Sends it now. Called by the form's timer.
    virtual HRESULT STDMETHODCALLTYPE Send() = 0;
    /// Tries to end the listener again. May destroy it, and the form that called.
    virtual HRESULT STDMETHODCALLTYPE Close() = 0;

    virtual IDispatch* Dispatch() = 0;
    virtual bool IsInspector() const = 0;
    virtual void StopToolbarTimer() = 0;

protected:
    ~Listener() = default;
};

/// The timers of one listener: the hidden form. Created loaded, that is with its start-analysis and reconnect timers
/// running. It may be unloaded inside its own tick.
class TimerForm {
public:
    virtual ~TimerForm() = default;

    /// The item sender whose link the timers watch; held until unloading.
    virtual void SetConnection(BeaconConnection* connection) = 0;
    /// Requests a deferred send: one delay after the last request.
    virtual void Send() = 0;
    /// Interval of the start-analysis timer in milliseconds.
    virtual long StartAnalysisInterval() const = 0;
    /// Ticks after which an inspector's item is sent again; restarts the interval.
    virtual void SetUpdateCountThreshold(long ticks) = 0;
    /// Tries the listener's Close every 500 ms until it is unloaded.
    virtual void StartDisconnectTimer() = 0;
    /// Installs the toolbar of the connection from the next tick on, every 500 ms until it has been.
    virtual void StartToolbarTimer() = 0;
    virtual void StopToolbarTimer() = 0;
    /// Ends all timers at once and lets go of the connection.
    virtual void Unload() = 0;
};

/// What the observing objects ask of the add-in around them. Lives as long as the code is loaded.
class AddIn {
public:
    /// A loaded form; forInspector enables periodic re-sending.
    virtual std::shared_ptr<TimerForm> CreateForm(bool forInspector) = 0;
    virtual void SetUpWindowsHook() = 0;
    /// Drop a listener from the registry; true, also when it is not there.
    virtual bool RemoveInspectorListener(InspectorListener& listener) = 0;
    virtual bool RemoveExplorerListener(ExplorerListener& listener) = 0;
    /// The sender that serves this window, an inspector's before an explorer's; null when there is none.
    virtual com::ComPtr<BeaconConnection> FindConnectionForWindow(long hWnd) = 0;
    /// Outlook's application object; empty before connecting and after quitting.
    virtual com::Object OutlookApplication() = 0;

protected:
    ~AddIn() = default;
};

}  // namespace beacon
