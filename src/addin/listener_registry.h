#pragma once

#include <string_view>
#include <vector>

#include "com/object.h"
#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"

namespace beacon {

/// Listeners in order of registration, counted from 1. There is no check for duplicates: look-ups and removals act on
/// the first match.
template <class Class>
class ListenerCollection {
public:
    long Count() const { return static_cast<long>(items_.size()); }

    /// Raises error 9 for an index that is out of range.
    com::ComPtr<Class> Item(long index) const {
        CheckIndex(index);
        return items_[static_cast<size_t>(index - 1)];
    }

    void Add(const com::ComPtr<Class>& item) { items_.push_back(item); }

    void Remove(long index) {
        CheckIndex(index);
        const com::ComPtr<Class> removed =
            Item(index);  // it may end now, and must not find the collection half changed
        items_.erase(items_.begin() + (index - 1));
    }

private:
    void CheckIndex(long index) const {
        if (index < 1 || index > Count()) com::Raise(com::kSubscriptOutOfRange);
    }

    std::vector<com::ComPtr<Class>> items_;
};

/// Keeps every live listener and finds the sender that belongs to a window.
class ListenerRegistry {
public:
    ListenerCollection<InspectorListener> gInspectorListeners;
    ListenerCollection<ExplorerListener> gExplorerListeners;

    /// All four return true.
    bool AddInspectorListener(const com::ComPtr<InspectorListener>& listener);
    bool AddExplorerListener(const com::ComPtr<ExplorerListener>& listener);
    bool RemoveInspectorListener(const InspectorListener& listener);
    bool RemoveExplorerListener(const ExplorerListener& listener);

    /// Disconnect and remove listeners in rising order while the collection shrinks: with two or more of them every
    /// second one stays, and error 9 is raised in the end. Quitting goes on after that; disconnecting the add-in takes
    /// the rest.
    void RemoveAllInspectors();
    void RemoveAllExplorers();

    /// Ends whatever is still registered.
    void AbandonAll() noexcept;

    /// Null when nothing matches, or on any error.
    com::ComPtr<InspectorListener> FindInspectorListener(long hWnd) const;
    com::ComPtr<ExplorerListener> FindExplorerListener(long hWnd) const;
    com::ComPtr<BeaconConnection> FindConnectionForWindow(long hWnd) const;
};

}  // namespace beacon
