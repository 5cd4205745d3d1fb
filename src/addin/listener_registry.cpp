#include "addin/listener_registry.h"

#include "support/error_styles.h"
#include "support/log.h"

namespace beacon {
namespace {

using com::ComPtr;

long WindowOf(const InspectorListener& listener) { return listener.hInspector(); }

long WindowOf(const ExplorerListener& listener) { return listener.hExplorer(); }

template <class Class>
long IndexOf(const ListenerCollection<Class>& listeners, long window) {
    const long count = listeners.Count();
    for (long i = 1; i <= count; ++i)
        if (WindowOf(*listeners.Item(i).Get()) == window) return i;
    return 0;
}

template <class Class>
bool RemoveFirst(ListenerCollection<Class>& listeners, const Class& listener) {
    if (const long index = IndexOf(listeners, WindowOf(listener))) listeners.Remove(index);
    return true;
}

template <class Class>
void RemoveAll(ListenerCollection<Class>& listeners, std::wstring_view name) {
    LogMsg2(name, L"() Count=", listeners.Count());
    const long count = listeners.Count();
    for (long i = 1; i <= count; ++i) {
        listeners.Item(i)->Disconnect();
        listeners.Remove(i);
    }
}

template <class Class>
void Abandon(ListenerCollection<Class>& listeners) noexcept {
    while (listeners.Count() > 0) {
        GoOnAfterError([&] {
            const ComPtr<Class> listener = listeners.Item(1);
            listeners.Remove(1);
            listener->Abandon();
        });
    }
}

template <class Class>
ComPtr<Class> Find(const ListenerCollection<Class>& listeners, long window) {
    ComPtr<Class> result;
    StopOnError([&] {
        if (const long index = IndexOf(listeners, window)) result = listeners.Item(index);
    });
    return result;
}

}  // namespace

bool ListenerRegistry::AddInspectorListener(const ComPtr<InspectorListener>& listener) {
    gInspectorListeners.Add(listener);
    return true;
}

bool ListenerRegistry::AddExplorerListener(const ComPtr<ExplorerListener>& listener) {
    gExplorerListeners.Add(listener);
    return true;
}

bool ListenerRegistry::RemoveInspectorListener(const InspectorListener& listener) {
    return RemoveFirst(gInspectorListeners, listener);
}

bool ListenerRegistry::RemoveExplorerListener(const ExplorerListener& listener) {
    return RemoveFirst(gExplorerListeners, listener);
}

void ListenerRegistry::RemoveAllInspectors() { RemoveAll(gInspectorListeners, L"RemoveAllInspectors"); }

void ListenerRegistry::RemoveAllExplorers() { RemoveAll(gExplorerListeners, L"RemoveAllExplorers"); }

void ListenerRegistry::AbandonAll() noexcept {
    Abandon(gInspectorListeners);
    Abandon(gExplorerListeners);
}

ComPtr<InspectorListener> ListenerRegistry::FindInspectorListener(long hWnd) const {
    return Find(gInspectorListeners, hWnd);
}

ComPtr<ExplorerListener> ListenerRegistry::FindExplorerListener(long hWnd) const {
    return Find(gExplorerListeners, hWnd);
}

ComPtr<BeaconConnection> ListenerRegistry::FindConnectionForWindow(long hWnd) const {
    if (const auto inspector = FindInspectorListener(hWnd)) return inspector->objBeaconConnection();
    if (const auto explorer = FindExplorerListener(hWnd)) return explorer->objBeaconConnection();
    return nullptr;
}

}  // namespace beacon
