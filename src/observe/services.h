#pragma once

#include <memory>

#include "com/object.h"

/// What listeners and senders need from the folder above: the hidden form, the message hook and the registry of
/// listeners.
namespace beacon {

class BeaconConnection;
class Listener;

/// The timers of one listener. A loaded form runs its start-analysis and reconnect timers until Unload, which may come
/// inside a tick. After Unload every member does nothing.
class HiddenForm {
public:
    virtual ~HiddenForm() = default;

    /// The item sender whose link the timers watch, or null. Keeps a reference until Unload.
    virtual void SetConnection(BeaconConnection* connection) = 0;
    /// Requests a send one delay after the last request.
    virtual void Send() = 0;
    /// Interval of the start-analysis timer in milliseconds.
    virtual long StartAnalysisInterval() const = 0;
    /// Number of ticks after which an inspector's item is sent again. Restarts the interval.
    virtual void SetUpdateCountThreshold(long ticks) = 0;
    /// Calls the listener's Close every 500 ms until Unload.
    virtual void StartDisconnectTimer() = 0;
    /// Tries to install the connection's toolbar every 500 ms until it is installed.
    virtual void StartToolbarTimer() = 0;
    virtual void StopToolbarTimer() = 0;
    /// Ends all timers and drops the connection.
    virtual void Unload() = 0;
};

/// The process, as listeners and senders see it. Lives as long as the code is loaded.
class Services {
public:
    /// A loaded form. forInspector enables periodic re-sending. Raises an error when it cannot be made.
    virtual std::shared_ptr<HiddenForm> LoadForm(bool forInspector) = 0;
    virtual void SetUpWindowsHook() = 0;
    /// Drops the first listener of this kind with the same window from the registry.
    virtual void RemoveListener(const Listener& listener) = 0;
    /// The sender for this window, an inspector's before an explorer's; null if there is none.
    virtual com::ComPtr<BeaconConnection> FindConnectionForWindow(long hWnd) const = 0;
    /// Outlook's application object; empty before connecting and after quitting.
    virtual com::Object OutlookApplication() const = 0;

protected:
    ~Services() = default;
};

}  // namespace beacon
