#pragma once

#include <beacon_olk_adapter.h>

#include <string>

#include "com/dual.h"
#include "com/event_sink.h"
#include "observe/add_in.h"
#include "observe/watched_window.h"
#include "observe/window_sender.h"

namespace beacon {

/// Follows one Outlook explorer: when its selection changes, the first selected item is sent, together with the text
/// that is selected in the reading pane. Inactive until Init gives it its window.
class ExplorerListener final : public com::Dual<IExplorerListener, kAdapterLibrary>, public Listener {
public:
    explicit ExplorerListener(AddIn& addIn) : addIn_(addIn), sender_(addIn) {}

    void SetExplorer(const com::Object& aExplorer);
    std::wstring GetSelected();
    void Init(long ahExplorer);
    /// True when the connection has let go.
    bool Disconnect();
    /// Ends everything, whatever the connection says; for the end of the add-in.
    void Abandon() noexcept;

    com::ComPtr<BeaconConnection> objBeaconConnection() const { return sender_.objBeaconConnection(); }

    long hExplorer() const { return hExplorer_; }

    ULONG STDMETHODCALLTYPE AddRef() override { return Dual::AddRef(); }

    ULONG STDMETHODCALLTYPE Release() override { return Dual::Release(); }

    IDispatch* Dispatch() override { return static_cast<IExplorerListener*>(this); }

    bool IsInspector() const override { return false; }

    void StopToolbarTimer() override { sender_.StopToolbarTimer(); }

    STDMETHODIMP get_objBeaconConnection(IBeaconConnection** value) override;
    STDMETHODIMP put_objBeaconConnection(IBeaconConnection* value) override;
    STDMETHODIMP putref_objBeaconConnection(IBeaconConnection* value) override;
    STDMETHODIMP get_hExplorer(long* value) override;
    STDMETHODIMP put_hExplorer(long value) override;
    STDMETHODIMP get_objExplorer(IDispatch** value) override;
    STDMETHODIMP put_objExplorer(IDispatch* value) override;
    STDMETHODIMP putref_objExplorer(IDispatch* value) override;
    STDMETHODIMP SetExplorer(IDispatch** aExplorer) override;
    STDMETHODIMP GetSelected(BSTR* result) override;
    STDMETHODIMP Init(long* ahExplorer) override;
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
    void OnEvent(DISPID member);
    void objExplorer_Activate();
    void objExplorer_Close();
    void objExplorer_SelectionChange();
    void objExplorer_ViewSwitch();
    std::wstring GetSelectedEx();
    void LetGo() noexcept;

    AddIn& addIn_;
    WindowSender sender_;
    long hExplorer_ = 0;
    com::WatchedObject objExplorer_;
    ListenerMark mark_;
    bool mbActive_ = false;  // from the end of Init to Destroy
};

}  // namespace beacon
