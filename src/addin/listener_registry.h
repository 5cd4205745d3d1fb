#pragma once

#include <string_view>
#include <vector>

#include "com/object.h"
#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"
#include "observe/services.h"
#include "support/error_styles.h"
#include "support/log.h"

namespace beacon {

/// Listeners of one kind in order of registration, counted from 1. There is no check for duplicates: look-ups and
/// removals act on the first match.
template <class Class>
class ListenerCollection {
public:
    long Count() const { return static_cast<long>(items_.size()); }

    /// Raises error 9 for an index that is out of range.
    com::ComPtr<Class> Item(long index) const {
        if (index < 1 || index > Count()) com::Raise(com::kSubscriptOutOfRange);
        return items_[static_cast<size_t>(index - 1)];
    }

    void Add(const com::ComPtr<Class>& listener) { items_.push_back(listener); }

    /// The first listener with the same window goes; one that has no window yet is told by itself.
    void Remove(const Class& listener) {
        const long hWnd = listener.GetHwnd();
        Erase(IndexOf([&](const Class& item) { return hWnd == 0 ? &item == &listener : item.GetHwnd() == hWnd; }));
    }

    com::ComPtr<Class> Find(long hWnd) const {
        com::ComPtr<Class> found;
        StopOnError([&] {
            if (const long index = IndexOf([&](const Class& item) { return item.GetHwnd() == hWnd; }))
                found = Item(index);
        });
        return found;
    }

    /// Disconnects and removes in rising order while the collection shrinks: with two or more listeners every second
    /// one stays, and error 9 is raised in the end.
    void RemoveAll(std::wstring_view name) {
        LogMsg2(name, L"() Count=", Count());
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

    void LetGoOfOutlook() const noexcept {
        // Each call may end and remove other listeners, so the search starts again after it. It allocates nothing.
        while (const long index = IndexOf([](const Class& item) { return !item.HasEnded(); }))
            Item(index)->LetGoOfOutlook();
    }

private:
    template <class Condition>
    long IndexOf(Condition&& condition) const {
        for (long i = 1; i <= Count(); ++i)
            if (condition(*Item(i).Get())) return i;
        return 0;
    }

    /// 0 is no listener's index.
    void Erase(long index) {
        if (index == 0) return;
        const com::ComPtr<Class> removed = Item(index);  // it may end now, and must not find this half changed
        items_.erase(items_.begin() + (index - 1));
    }

    std::vector<com::ComPtr<Class>> items_;
};

/// Keeps every live listener and finds the sender that belongs to a window. It is also where listeners find what else
/// the process offers them.
class ListenerRegistry final : public Services {
public:
    /// The process's own. It is never destroyed, since at the end of a process the objects in it belong to programs
    /// that may be gone; what is left in it is ended by OnDisconnection.
    static ListenerRegistry& OfProcess();

    ListenerCollection<InspectorListener> gInspectorListeners;
    ListenerCollection<ExplorerListener> gExplorerListeners;
    com::Object outlookApplication;

    /// All four return true.
    bool AddInspectorListener(const com::ComPtr<InspectorListener>& listener);
    bool AddExplorerListener(const com::ComPtr<ExplorerListener>& listener);
    bool RemoveInspectorListener(const InspectorListener& listener) override;
    bool RemoveExplorerListener(const ExplorerListener& listener) override;

    /// With two or more listeners of a kind every second one stays, still connected, and error 9 is raised. Quitting
    /// goes on after that; disconnecting the add-in takes the rest.
    void RemoveAllInspectors();
    void RemoveAllExplorers();

    /// Null when nothing matches, or on any error.
    com::ComPtr<InspectorListener> FindInspectorListener(long hWnd) const;
    com::ComPtr<ExplorerListener> FindExplorerListener(long hWnd) const;
    com::ComPtr<BeaconConnection> FindConnectionForWindow(long hWnd) const override;

    /// Ends whatever is still registered.
    void AbandonAll() noexcept;
    /// Outlook has quit: what is still registered lets go of Outlook's objects, and stays connected.
    void LetGoOfOutlook() noexcept;

    std::shared_ptr<HiddenForm> LoadForm(bool forInspector) override;
    void SetUpWindowsHook() override;

    com::Object OutlookApplication() const override { return outlookApplication; }
};

}  // namespace beacon
