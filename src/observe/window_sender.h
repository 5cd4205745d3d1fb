#pragma once

#include <memory>
#include <string>

#include "observe/add_in.h"
#include "observe/item_sender.h"

namespace beacon {

/// The item sender and the timers that serve the window of one listener. Both listeners own one; it is the one place
/// where a sender is made for a listener and forgets it again, so that a sender which others hold for longer never
/// refers to a listener that is gone.
class WindowSender {
public:
    explicit WindowSender(AddIn& addIn) : addIn_(addIn) {}

    WindowSender(const WindowSender&) = delete;
    WindowSender& operator=(const WindowSender&) = delete;

    /// The timers start. Raises an error when the form cannot be made.
    void LoadForm(bool forInspector) { mHiddenForm_ = addIn_.CreateForm(forInspector); }

    /// A new sender, connected for this window and handed to the form. Raises an error.
    void Connect(Listener& listener, long hWnd);

    /// Null before Connect and after Drop.
    const com::ComPtr<BeaconConnection>& objBeaconConnection() const { return objBeaconConnection_; }

    /// Null before LoadForm and after End.
    const std::shared_ptr<TimerForm>& Form() const { return mHiddenForm_; }

    /// The toolbar's context that goes with the selection. Raises error 91 without a sender.
    std::wstring ContextText() const { return com::Need(objBeaconConnection_)->ContextText(); }

    /// Lets the toolbar, if there is one, follow the activated window.
    void SyncToolbar(long hWnd) const;

    /// Whether the sender has disconnected and may be dropped. One that was never made has nothing that could refuse.
    bool LetsGo() const;
    void Drop() noexcept;
    /// Drops the sender and unloads the form.
    void End() noexcept;
    void RetryDisconnect() const;
    void StopToolbarTimer() const;

private:
    AddIn& addIn_;
    com::ComPtr<BeaconConnection> objBeaconConnection_;
    std::shared_ptr<TimerForm> mHiddenForm_;
};

}  // namespace beacon
