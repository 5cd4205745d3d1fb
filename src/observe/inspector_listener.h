#pragma once

#include <string>

#include "extract/class_paths.h"
#include "observe/listener_face.h"

namespace beacon {

/// Follows one Outlook inspector and the mail or contact shown in it: the item is sent when the inspector is first
/// activated and again, in longer periods, while it stays open. Any other item makes the listener inert.
class InspectorListener final : public ListenerObject<IInspectorListener> {
public:
    explicit InspectorListener(Services& services) : ListenerObject(services) {}

    /// Starts event delivery. Raises an error when Outlook refuses; nothing is held of the inspector then.
    void WatchInspector(const com::Object& inspector);

    bool IsInspector() const override { return true; }

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
    STDMETHODIMP SetUpdateCountThreshold(long newThreshold) override;

private:
    void Start(long ahInspector) override;
    void TryToConnect() override;
    void SendItem() override;
    void RemoveFromRegistry() override;
    void ReleaseItems() noexcept override;
    void LogSendLater() override;
    void LogDisconnected() override;

    void WatchMail(const com::Object& item);
    void WatchContact(const com::Object& item);
    /// Watches the item that is shown now. False when it is of a class that is not sent.
    bool TakeCurrentItem();
    void OnInspectorEvent(DISPID member);
    void OnItemEvent(DISPID member, const com::EventArguments& arguments, bool isMail);
    void objInspector_Activate();
    void objInspector_Close();
    void objInspector_Deactivate();
    std::wstring GetSelected();
    std::wstring GetSelectedEx(ClassPath path) const;
    std::wstring Caption() const;

    com::WatchedObject myMailItem_;
    com::WatchedObject myContactItem_;
};

}  // namespace beacon
