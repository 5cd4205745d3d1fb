#pragma once

#include <vector>

#include "com/object.h"
#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"
#include "observe/services.h"
#include "support/error_styles.h"
#include "support/log.h"

namespace beacon {

/// Listeners of one kind in order of registration, counted from 1. Allows duplicates: look-ups and removals act on the
/// first match.
template <class Class>
class ListenerCollection {
public:
    /// The name is what RemoveAll writes into the log.
    explicit ListenerCollection(const wchar_t* removeAllName) : removeAllName_(removeAllName) {}

    long Count() const { return static_cast<long>(items_.size()); }

    /// Raises error 9 for an index that is out of range.
    com::ComPtr<Class> Item(long index) const {
        if (index < 1 || index > Count()) com::Raise(com::kSubscriptOutOfRange);
        return items_[static_cast<size_t>(index - 1)];
    }

    void Add(const com::ComPtr<Class>& listener) { items_.push_back(listener); }

    /// Removes the first listener with the same window; without a window, the listener itself.
    void Remove(const Listener& listener) {
        const long hWnd = listener.GetHwnd();
        Erase(IndexOf([&](const Class& item) {
            return hWnd == 0 ? static_cast<const Listener*>(&item) == &listener : item.GetHwnd() == hWnd;
        }));
    }

    /// Null when nothing matches.
    com::ComPtr<Class> Find(long hWnd) const {
        const long index = IndexOf([&](const Class& item) { return item.GetHwnd() == hWnd; });
        return index == 0 ? nullptr : Item(index);
    }

    /// Disconnects and removes in rising order while the collection shrinks: with two or more listeners every second
    /// one stays, still connected, and error 9 is raised in the end. Disconnecting the add-in takes the rest.
    void RemoveAll() {
        LogMsg2(removeAllName_, L"() Count=", Count());
        const long count = Count();
        for (long i = 1; i <= count; ++i) {
            Item(i)->Disconnect();
            Erase(i);
        }
    }

    void AbandonAll() noexcept {
        while (Count() > 0) {
            GoOnAfterError([&] {
                const com::ComPtr<Class> listener = Item(1);
                Erase(1);
                listener->Abandon();
            });
        }
    }

    void ReleaseOutlook() const noexcept {
        // A call may end and remove other listeners, so start again after each. Allocates nothing.
        while (const long index = IndexOf([](const Class& item) { return !item.HasEnded(); }))
            Item(index)->ReleaseOutlook();
    }

private:
    template <class Condition>
    long IndexOf(Condition&& condition) const {
        for (long i = 1; i <= Count(); ++i)
            if (condition(*Item(i).Get())) return i;
        return 0;
    }

    /// Index 0 is ignored.
    void Erase(long index) {
        if (index == 0) return;
        const com::ComPtr<Class> removed = Item(index);  // it may end, and must not find this half changed
        items_.erase(items_.begin() + (index - 1));
    }

    const wchar_t* const removeAllName_;
    std::vector<com::ComPtr<Class>> items_;
};

/// Owns all listeners, finds the sender for a window, and provides the services of the process to listeners.
class ListenerRegistry final : public Services {
public:
    /// The registry of the process. Never destroyed: when the process exits, the servers of its objects may be gone.
    /// OnDisconnection ends the remaining listeners.
    static ListenerRegistry& OfProcess();

    ListenerCollection<InspectorListener> gInspectorListeners{L"RemoveAllInspectors"};
    ListenerCollection<ExplorerListener> gExplorerListeners{L"RemoveAllExplorers"};
    com::Object outlookApplication;

    void RemoveListener(const Listener& listener) override;
    com::ComPtr<BeaconConnection> FindConnectionForWindow(long hWnd) const override;

    /// Ends all registered listeners.
    void AbandonAll() noexcept;
    /// At Quit: the remaining listeners release Outlook's objects, and stay connected.
    void ReleaseOutlook() noexcept;

    std::shared_ptr<HiddenForm> LoadForm(bool forInspector) override;
    void SetUpWindowsHook() override;

    com::Object OutlookApplication() const override { return outlookApplication; }
};

}  // namespace beacon
