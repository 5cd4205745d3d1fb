#pragma once

#include <string>

#include "extract/class_paths.h"
#include "observe/listener_object.h"

namespace beacon {

/// Follows one Outlook inspector and its mail or contact: sends the item after the first activation, and again at
/// longer intervals while the inspector is open. Does nothing for other items.
class InspectorListener final : public ListenerObject<IInspectorListener> {
public:
    explicit InspectorListener(Services& services) : ListenerObject(services) {}

    /// Keeps the inspector and subscribes to its events. Raises an error, and keeps nothing, when Outlook refuses.
    void Watch(const com::Object& inspector);

    bool IsInspector() const override { return true; }

    STDMETHODIMP Connect() override;
    STDMETHODIMP Send() override;

    STDMETHODIMP get_hInspector(long* value) override { return com::Give(value, hWnd_); }

    STDMETHODIMP put_hInspector(long value) override { return com::Take(hWnd_, value); }

    STDMETHODIMP get_objInspector(IDispatch** value) override { return com::GiveObject(value, objWindow_.Get().Get()); }

    STDMETHODIMP put_objInspector(IDispatch* value) override { return SetInspector(value); }

    STDMETHODIMP putref_objInspector(IDispatch* value) override { return SetInspector(value); }

    STDMETHODIMP get_myMailItem(IDispatch** value) override { return com::GiveObject(value, myMailItem_.Get().Get()); }

    STDMETHODIMP put_myMailItem(IDispatch* value) override {
        return com::Method([&] { WatchItem(myMailItem_, value); });
    }

    STDMETHODIMP putref_myMailItem(IDispatch* value) override { return put_myMailItem(value); }

    STDMETHODIMP get_myContactItem(IDispatch** value) override {
        return com::GiveObject(value, myContactItem_.Get().Get());
    }

    STDMETHODIMP put_myContactItem(IDispatch* value) override {
        return com::Method([&] { WatchItem(myContactItem_, value); });
    }

    STDMETHODIMP putref_myContactItem(IDispatch* value) override { return put_myContactItem(value); }

    STDMETHODIMP SetInspector(IDispatch* aInspector) override {
        return com::Method([&] { Watch(aInspector); });
    }

    STDMETHODIMP SetUpdateCountThreshold(long newThreshold) override;

private:
    void Start(long ahInspector) override;
    void ReleaseItems() noexcept override;

    /// Keeps a mail or contact in its place, and subscribes to its events.
    void WatchItem(com::WatchedObject& place, const com::Object& item);
    /// Watches the current item. False for a class that is not sent.
    bool WatchCurrentItem();
    void OnInspectorEvent(DISPID member);
    void OnItemEvent(DISPID member, const com::EventArguments& arguments, bool isMail);
    void objInspector_Activate();
    void objInspector_Deactivate();
    std::wstring GetSelected();
    std::wstring GetSelectedEx(ClassPath path) const;

    com::WatchedObject myMailItem_;
    com::WatchedObject myContactItem_;
};

}  // namespace beacon
