#pragma once

#include <memory>
#include <string>

#include "com/event_sink.h"
#include "observe/item_sender.h"
#include "observe/listener.h"
#include "observe/services.h"
#include "observe/watched_window.h"

namespace beacon {

/// What both listeners are: a window of Outlook with its handle and its mark, the item sender and the timers that serve
/// it, and the life of all these.
///
/// Each listener adds its events, its item and its way to the selection. Where the two differ otherwise, hosts and logs
/// know them to:
/// - an explorer's window is marked before the sender connects, an inspector's last of all;
/// - an inspector is active before the sender connects, an explorer afterwards;
/// - an inspector's Connect, SendLater and Disconnect write a line, and errors of its Connect and Send are logged; an
///   explorer's stop quietly;
/// - an inspector's path of window classes is walked to its end, an explorer's to the last but one, where two kinds of
///   control are tried;
/// - an explorer that finds no selection writes the line "Exp. GetSelectedEx: Exception; ";
/// - on the COM faces, window and object are called hInspector and objInspector here, hExplorer and objExplorer there.
class ListenerCore : public Listener {
public:
    ListenerCore(const ListenerCore&) = delete;
    ListenerCore& operator=(const ListenerCore&) = delete;

    /// Takes the window, once: does nothing while it runs already (Outlook may raise an event inside), while the
    /// listener is active, and after its end. When the window ends inside one of its calls, it stops there, and what it
    /// had connected is disconnected. If form, sender, link or toolbar cannot be made, it undoes the start and tries it
    /// once more; after that, the next activation of the window does.
    void Init(long hWnd);
    /// A new item sender for this window, which the form serves from now on.
    void Connect();
    /// True when the sender has let go, or there is none that could refuse. It is dropped then.
    bool Disconnect();
    /// Disconnects and lets go of everything; when the sender refuses, the form tries again.
    void Destroy();
    /// Ends everything, whatever the sender says; for the end of the add-in.
    void Abandon() noexcept;
    /// Lets go of every object of Outlook's and every subscription, but stays connected to the engine: after Outlook
    /// has quit, nothing may hold it up. An Init that this interrupts stops as at the window's end.
    void LetGoOfOutlook() noexcept;

    /// Holds nothing of Outlook's any more, and takes nothing.
    bool HasEnded() const { return mbEnded_; }

    /// Null before Connect and after the end.
    const com::ComPtr<BeaconConnection>& objBeaconConnection() const { return objBeaconConnection_; }

    /// The sender forgets this listener, and the listener the sender.
    void DropSender() noexcept;

    long GetHwnd() const override { return hWnd_; }

    void SetHwnd(long hWnd) { hWnd_ = hWnd; }

    void SendLater() override;
    void Send() override;

    void Close() override { Destroy(); }

    void StopToolbarTimer() override;

protected:
    explicit ListenerCore(Services& services) : mServices_(services) {}

    ~ListenerCore() = default;

    /// The bodies of Init, Connect and Send. None of them raises an error.
    virtual void Start(long hWnd) = 0;
    virtual void TryToConnect() = 0;
    virtual void SendItem() = 0;
    virtual void RemoveFromRegistry() = 0;

    /// What else the listener holds of Outlook's.
    virtual void ReleaseItems() noexcept {}

    /// Lines that only one of the two writes.
    virtual void LogSendLater() {}

    virtual void LogDisconnected() {}

    /// Raises an error when the sender or the form is missing.
    void ConnectSender();
    /// Deletes the toolbar's bar in this window when the user has it switched off. Raises an error.
    void RemoveUnwantedBar() const;
    /// Lets the toolbar, if there is one, follow the activated window.
    void SyncToolbar() const;
    /// The selection with the toolbar's context behind it, also when the selection is empty. Raises error 91 without a
    /// sender.
    std::wstring WithContext(const std::wstring& selection) const;

    Services& mServices_;
    com::ComPtr<BeaconConnection> objBeaconConnection_;
    std::shared_ptr<HiddenForm> mHiddenForm_;  // from Init to the end
    long hWnd_ = 0;                            // hInspector or hExplorer
    com::WatchedObject objWindow_;             // objInspector or objExplorer
    ListenerMark mMark_;
    bool mbActive_ = false;  // an explorer's from the end of Init, an inspector's while it shows a supported item
    bool mbEnded_ = false;   // for good: has let go of Outlook, and takes nothing of its any more

private:
    void LetGo() noexcept;
    void UnloadForm() noexcept;

    bool mbStarting_ = false;   // Init is running
    bool mbConnected_ = false;  // the last Connect made all that it should
};

}  // namespace beacon
