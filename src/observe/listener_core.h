#pragma once

#include <memory>
#include <string>

#include "com/event_sink.h"
#include "observe/item_sender.h"
#include "observe/listener.h"
#include "observe/services.h"
#include "observe/watched_window.h"

namespace beacon {

/// The common part of both listeners: the watched window of Outlook, its handle and mark, its item sender and form, and
/// the lifetime of all these.
///
/// Each listener adds its events, its item and its way to the selection. Other differences, which hosts and log readers
/// expect:
/// - an explorer's window is marked before the sender connects, an inspector's at the end of Init;
/// - an inspector is active before the sender connects, an explorer after that;
/// - an inspector's Connect, SendLater and Disconnect write a line, and its Connect and Send log errors;
/// - an inspector's path of window classes ends at the control, an explorer's at its parent, below which two kinds of
///   control are tried;
/// - an explorer without a selection writes the line "Exp. GetSelectedEx: Exception; ";
/// - window and object are called hInspector and objInspector in one COM interface, hExplorer and objExplorer in the
///   other.
class ListenerCore : public Listener {
public:
    ListenerCore(const ListenerCore&) = delete;
    ListenerCore& operator=(const ListenerCore&) = delete;

    /// Starts to follow the window. Does nothing if it is running already (Outlook may raise events inside), while the
    /// listener is active, and after its end. If the window ends inside a call, stops and disconnects any peers. If
    /// form, sender, link or toolbar cannot be made, tries once more and leaves the rest to the next activation.
    void Init(long hWnd);
    /// Disconnects and drops the sender. False when the sender refuses; true also without a sender.
    bool Disconnect();
    /// Disconnects and releases everything, or has the form retry if the sender refuses.
    STDMETHODIMP Destroy();
    /// Ends the listener even if the sender refuses; for the end of the add-in.
    void Abandon() noexcept;
    /// Releases all objects and subscriptions of Outlook, which would keep Outlook alive after Quit, but stays
    /// connected to the engine. An interrupted Init stops as at the window's end.
    void ReleaseOutlook() noexcept;

    /// Has released all objects of Outlook, and takes no new ones.
    bool HasEnded() const { return mbEnded_; }

    /// Null before Connect and after the end.
    const com::ComPtr<BeaconConnection>& objBeaconConnection() const { return objBeaconConnection_; }

    /// Drops the sender, which may live on, and clears its reference to this listener.
    void DropSender() noexcept;

    long GetHwnd() const override { return hWnd_; }

    STDMETHODIMP SendLater() override;
    void StopToolbarTimer() override;

protected:
    explicit ListenerCore(Services& services) : mServices_(services) {}

    ~ListenerCore() = default;

    /// The body of Init. Raises no error.
    virtual void Start(long hWnd) = 0;

    /// Releases further objects of Outlook.
    virtual void ReleaseItems() noexcept {}

    /// A new item sender for this window, which the form serves from now on. Raises an error when it or the form is
    /// missing.
    void ConnectSender();
    /// Raises Outlook's error.
    std::wstring Caption() const;
    /// The window closes: writes this line with its caption and handle, and ends the listener.
    void OnClose(const wchar_t* line);
    /// Deletes the command bar of this window if the user has disabled it. Raises Outlook's error.
    void RemoveUnwantedBar() const;
    /// Synchronises the toolbar with the activated window.
    void SyncToolbar() const;
    /// Appends the toolbar's context, also to an empty selection. Raises error 91 without a sender.
    std::wstring WithContext(const std::wstring& selection) const;

    Services& mServices_;
    com::ComPtr<BeaconConnection> objBeaconConnection_;
    std::shared_ptr<HiddenForm> mHiddenForm_;  // null before Init and after the end
    long hWnd_ = 0;                            // hInspector or hExplorer
    com::WatchedObject objWindow_;             // objInspector or objExplorer
    ListenerMark mMark_;
    bool mbActive_ = false;  // an explorer: since Init; an inspector: while it shows a supported item
    bool mbEnded_ = false;

private:
    void ReleaseAll() noexcept;
    void UnloadForm() noexcept;

    bool mbStarting_ = false;   // Init is running
    bool mbConnected_ = false;  // the last Connect made all that it should
};

}  // namespace beacon
