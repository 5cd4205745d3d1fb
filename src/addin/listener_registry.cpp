#include "addin/listener_registry.h"

#include <cstddef>
#include <new>

#include "addin/message_hook.h"
#include "addin/timers.h"

namespace beacon {

using com::ComPtr;

ListenerRegistry& ListenerRegistry::OfProcess() {
    alignas(ListenerRegistry) static std::byte place[sizeof(ListenerRegistry)];  // needs no memory when Outlook quits
    static auto* const registry = new (place) ListenerRegistry;
    return *registry;
}

bool ListenerRegistry::AddInspectorListener(const ComPtr<InspectorListener>& listener) {
    gInspectorListeners.Add(listener);
    return true;
}

bool ListenerRegistry::AddExplorerListener(const ComPtr<ExplorerListener>& listener) {
    gExplorerListeners.Add(listener);
    return true;
}

bool ListenerRegistry::RemoveInspectorListener(const InspectorListener& listener) {
    gInspectorListeners.Remove(listener);
    return true;
}

bool ListenerRegistry::RemoveExplorerListener(const ExplorerListener& listener) {
    gExplorerListeners.Remove(listener);
    return true;
}

void ListenerRegistry::RemoveAllInspectors() { gInspectorListeners.RemoveAll(L"RemoveAllInspectors"); }

void ListenerRegistry::RemoveAllExplorers() { gExplorerListeners.RemoveAll(L"RemoveAllExplorers"); }

ComPtr<InspectorListener> ListenerRegistry::FindInspectorListener(long hWnd) const {
    return gInspectorListeners.Find(hWnd);
}

ComPtr<ExplorerListener> ListenerRegistry::FindExplorerListener(long hWnd) const {
    return gExplorerListeners.Find(hWnd);
}

ComPtr<BeaconConnection> ListenerRegistry::FindConnectionForWindow(long hWnd) const {
    if (const auto inspector = FindInspectorListener(hWnd)) return inspector->objBeaconConnection();
    if (const auto explorer = FindExplorerListener(hWnd)) return explorer->objBeaconConnection();
    return nullptr;
}

void ListenerRegistry::AbandonAll() noexcept {
    gInspectorListeners.AbandonAll();
    gExplorerListeners.AbandonAll();
}

void ListenerRegistry::LetGoOfOutlook() noexcept {
    outlookApplication.Reset();
    gInspectorListeners.LetGoOfOutlook();
    gExplorerListeners.LetGoOfOutlook();
}

std::shared_ptr<HiddenForm> ListenerRegistry::LoadForm(bool forInspector) { return frmHidden::Load(forInspector); }

void ListenerRegistry::SetUpWindowsHook() { beacon::SetUpWindowsHook(); }

}  // namespace beacon
