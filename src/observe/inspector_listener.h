#pragma once

#include <beacon_olk_adapter.h>

#include <string>

#include "com/dual.h"
#include "com/event_sink.h"
#include "observe/add_in.h"
#include "observe/watched_window.h"
#include "observe/window_sender.h"

namespace beacon {

/// Follows one Outlook inspector and the mail or contact shown in it: the item is sent when the inspector is first
/// activated and again, in longer periods, while it stays open. Any other item makes the listener inert.
class InspectorListener final : public com::Dual<IInspectorListener, kAdapterLibrary>, public Listener {
public:
    explicit InspectorListener(AddIn& addIn) : addIn_(addIn), sender_(addIn) {}

    void Init(long ahInspector);
    bool Disconnect();
    /// Ends everything, whatever the connection says; for the end of the add-in.
    void Abandon() noexcept;

    com::ComPtr<BeaconConnection> objBeaconConnection() const { return sender_.objBeaconConnection(); }

    long hInspector() const { return hInspector_; }

    ULONG STDMETHODCALLTYPE AddRef() override { return Dual::AddRef(); }

    ULONG STDMETHODCALLTYPE Release() override { return Dual::Release(); }

    IDispatch* Dispatch() override { return static_cast<IInspectorListener*>(this); }

    bool IsInspector() const override { return true; }

    void StopToolbarTimer() override { sender_.StopToolbarTimer(); }

    STDMETHODIMP get_objBeaconConnection(IBeaconConnection** value) override;
    STDMETHODIMP put_objBeaconConnection(IBeaconConnection* value) override;
    STDMETHODIMP putref_objBeaconConnection(IBeaconConnection* value) override;
    STDMETHODIMP get_hInspector(long* value) override;
    STDMETHODIMP put_hInspector(long value) override;
    STDMETHODIMP get_objInspector(IDispatch** value) override;
    STDMETHODIMP put_objInspector(IDispatch* value) override;
    STDMETHODIMP putref_objInspector(IDispatch* value) override;
    STDMETHODIMP get_myMailItem(IDispatch** value) override;
    STDMETHODIMP put_myMailItem(IDispatch* value) override;
    STDMETHODIMP putref_myMailItem(IDispatch* value) override;
    STDMETHODIMP get_myContactItem(IDispatch** value) override;
    STDMETHODIMP put_myContactItem(IDispatch* value) override;
    STDMETHODIMP putref_myContactItem(IDispatch* value) override;
    STDMETHODIMP SetInspector(IDispatch* aInspector) override;
    STDMETHODIMP Init(long* ahInspector) override;
    STDMETHODIMP SetUpdateCountThreshold(long newThreshold) override;
    STDMETHODIMP Destroy() override;
    STDMETHODIMP Connect() override;
    STDMETHODIMP SendLater() override;
    STDMETHODIMP Send() override;
    STDMETHODIMP Disconnect(VARIANT_BOOL* result) override;
    STDMETHODIMP GetHwnd(long* result) override;
    STDMETHODIMP Close() override;

protected:
    void Final() noexcept override { Abandon(); }

private:
    void WatchInspector(const com::Object& inspector);
    void WatchItem(com::WatchedObject& watched, const com::Object& item);
    void OnInspectorEvent(DISPID member);
    void OnItemEvent(DISPID member, const com::EventArguments& arguments, bool isMail);
    void objInspector_Activate();
    void objInspector_Close();
    void objInspector_Deactivate();
    bool TakeCurrentItem();
    std::wstring GetSelected();
    std::wstring GetSelectedEx();
    std::wstring Caption() const;
    void LetGo() noexcept;

    AddIn& addIn_;
    WindowSender sender_;
    long hInspector_ = 0;
    com::WatchedObject objInspector_;
    com::WatchedObject myMailItem_;
    com::WatchedObject myContactItem_;
    ListenerMark mark_;
    bool mbActive_ = false;  // a supported item in a known window
};

}  // namespace beacon
