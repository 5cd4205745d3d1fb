#include "addin/listener_registry.h"

#include <cstddef>
#include <new>

#include "addin/message_hook.h"
#include "addin/timers.h"

namespace beacon {

using com::ComPtr;

ListenerRegistry& ListenerRegistry::OfProcess() {
    alignas(ListenerRegistry) static std::byte place[sizeof(ListenerRegistry)];  // needs no memory at Quit
    static auto* const registry = new (place) ListenerRegistry;
    return *registry;
}

void ListenerRegistry::RemoveListener(const Listener& listener) {
    if (listener.IsInspector())
        gInspectorListeners.Remove(listener);
    else
        gExplorerListeners.Remove(listener);
}

ComPtr<BeaconConnection> ListenerRegistry::FindConnectionForWindow(long hWnd) const {
    if (const auto inspector = gInspectorListeners.Find(hWnd)) return inspector->objBeaconConnection();
    if (const auto explorer = gExplorerListeners.Find(hWnd)) return explorer->objBeaconConnection();
    return nullptr;
}

void ListenerRegistry::AbandonAll() noexcept {
    gInspectorListeners.AbandonAll();
    gExplorerListeners.AbandonAll();
}

void ListenerRegistry::ReleaseOutlook() noexcept {
    outlookApplication.Reset();
    gInspectorListeners.ReleaseOutlook();
    gExplorerListeners.ReleaseOutlook();
}

std::shared_ptr<HiddenForm> ListenerRegistry::LoadForm(bool forInspector) { return frmHidden::Load(forInspector); }

void ListenerRegistry::SetUpWindowsHook() { beacon::SetUpWindowsHook(); }

}  // namespace beacon
