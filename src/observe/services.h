#pragma once

#include <memory>

#include "com/object.h"

/// The way up from a listener and its sender. The hidden form, the message hook and the registry of listeners stand one
/// folder higher, because they serve the process: the form ticks for a whole chain, the hook and the registry are one
/// for all windows. What a listener needs of them is these two interfaces.
namespace beacon {

class BeaconConnection;
class ExplorerListener;
class InspectorListener;

/// The timers of one listener. Loaded, that is with its start-analysis and reconnect timers running, until Unload,
/// which may come inside its own tick. After Unload every member does nothing.
class HiddenForm {
public:
    virtual ~HiddenForm() = default;

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

/// What the process offers to all listeners and senders. Lives as long as the code is loaded.
class Services {
public:
    /// A loaded form; forInspector enables periodic re-sending. Raises an error when it cannot be made.
    virtual std::shared_ptr<HiddenForm> LoadForm(bool forInspector) = 0;
    virtual void SetUpWindowsHook() = 0;
    /// Drop a listener from the registry; true, also when it is not there.
    virtual bool RemoveInspectorListener(const InspectorListener& listener) = 0;
    virtual bool RemoveExplorerListener(const ExplorerListener& listener) = 0;
    /// The sender that serves this window, an inspector's before an explorer's; null when there is none.
    virtual com::ComPtr<BeaconConnection> FindConnectionForWindow(long hWnd) const = 0;
    /// Outlook's application object; empty before connecting and after quitting.
    virtual com::Object OutlookApplication() const = 0;

protected:
    ~Services() = default;
};

}  // namespace beacon
