#include "addin/connect.h"

#include "addin/message_hook.h"
#include "extract/mapi_wrapper.h"
#include "extract/window_search.h"
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "support/numbers.h"

namespace beacon {
namespace {

using com::ComPtr;
using com::Object;

constexpr IID kApplicationEvents = {0x0006304E, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kExplorersEvents = {0x00063078, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kInspectorsEvents = {0x00063079, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

enum ApplicationEvent : DISPID { kStartup = 0xF006, kQuit = 0xF007 };

enum WindowsEvent : DISPID { kNewWindow = 0xF001 };

enum ConnectMode : long { kAfterStartup = 0, kAtStartup = 1, kExternal = 2 };

ListenerRegistry& Registry() { return ListenerRegistry::OfProcess(); }

/// Runs a start-up step again when it fails: one failed allocation must not leave a window unwatched.
template <class Step>
void TryTwice(Step&& step) {
    bool done = false;
    GoOnAfterError([&] {
        step();
        done = true;
    });
    if (!done) step();
}

}  // namespace

bool Connect::MayHoldOutlook() noexcept {
    if (mayHoldOutlook_) return true;
    gInspectors_.Release();
    gExplorers_.Release();
    gOutlookApp_.Release();
    return false;
}

template <class Class>
ComPtr<Class> Connect::Follow(const Object& window, ListenerCollection<Class>& listeners) {
    if (!window) com::Raise(com::kNoObject);
    const auto listener = com::MakeObject<Class>(Registry());
    listener->Watch(window);
    if (!MayHoldOutlook()) return nullptr;
    listeners.Add(listener);
    return listener;
}

HRESULT Connect::OnConnection(IDispatch* application, long connectMode, IDispatch*, SAFEARRAY**) {
    const ComPtr<Connect> alive(this);
    LogOnError(L"Exception in AddinInstance_OnConnection: ",
               [&] { AddinInstance_OnConnection(application, connectMode); });
    return S_OK;
}

HRESULT Connect::OnDisconnection(long, SAFEARRAY**) {
    const ComPtr<Connect> alive(this);
    LogOnError(L"Exception in AddinInstance_OnDisconnection: ", [&] { AddinInstance_OnDisconnection(); });
    return S_OK;
}

HRESULT Connect::OnAddInsUpdate(SAFEARRAY**) { return S_OK; }

HRESULT Connect::OnStartupComplete(SAFEARRAY**) { return S_OK; }

HRESULT Connect::OnBeginShutdown(SAFEARRAY**) { return S_OK; }

void Connect::Final() noexcept {
    if (connected_) OnDisconnection(0, nullptr);
}

void Connect::AddinInstance_OnConnection(IDispatch* application, long connectMode) {
    connected_ = mayHoldOutlook_ = true;
    AllowMapiWrapper(true);
    TryTwice([&] {
        gOutlookApp_.Set(Object(application), {kApplicationEvents}, [this](DISPID member, const com::EventArguments&) {
            const ComPtr<Connect> alive(this);
            if (member == kStartup) gOutlookApp_Startup(false);
            if (member == kQuit) gOutlookApp_Quit();
        });
    });
    if (!MayHoldOutlook()) return;
    Registry().outlookApplication =
        Object(application);  // only with a subscription: otherwise it could not be released at Quit
    GoOnAfterError(
        [&] { TryTwice([&] { globals::gOutlookVersion = GetMajorVersion(gOutlookApp_.Get().GetText(L"Version")); }); });
    if (!MayHoldOutlook()) return;
    beacon::SetUpWindowsHook();
    // Outlook is running: no Startup event will come.
    if (connectMode == kAfterStartup || connectMode == kExternal) gOutlookApp_Startup(true);
}

void Connect::gOutlookApp_Startup(bool isUpAlready) {
    LogOnError(L"Exception in gOutlookApp_Startup: ", [&] {
        LogMsg2(L"gOutlookApp_Startup");
        const Object application = gOutlookApp_.Get();
        TryTwice([&] {
            gInspectors_.Set(application.GetObject(L"Inspectors"), {kInspectorsEvents},
                             [this](DISPID member, const com::EventArguments& arguments) {
                                 const ComPtr<Connect> alive(this);
                                 if (member == kNewWindow) gInspectors_NewInspector(arguments.ObjectAt(0));
                             });
        });
        if (!MayHoldOutlook()) return;
        TryTwice([&] {
            gExplorers_.Set(application.GetObject(L"Explorers"), {kExplorersEvents},
                            [this](DISPID member, const com::EventArguments& arguments) {
                                const ComPtr<Connect> alive(this);
                                if (member == kNewWindow) gExplorers_NewExplorer(arguments.ObjectAt(0));
                            });
        });
        if (!MayHoldOutlook()) return;
        TryTwice([&] { FollowActiveWindow(application, isUpAlready); });
    });
}

void Connect::FollowActiveWindow(const Object& application, bool isUpAlready) {
    long mainWindow = HandleToLong(FindOwnWindow(kOutlookClass, nullptr));
    const Object explorer = application.GetObject(L"ActiveExplorer");
    // An item window may be in front of it.
    if (isUpAlready && explorer)
        GoOnAfterError([&] {
            const long itsOwn = FindOutlookWindow(explorer.GetText(L"Caption"), false);
            if (itsOwn != 0) mainWindow = itsOwn;
        });
    if (explorer) {
        if (const auto listener = Follow(explorer, Registry().gExplorerListeners)) listener->Init(mainWindow);
    } else {
        const Object inspector = application.GetObject(L"ActiveInspector");
        if (const auto listener = Follow(inspector, Registry().gInspectorListeners)) listener->Init(mainWindow);
    }
}

void Connect::gExplorers_NewExplorer(const Object& explorer) {
    LogOnError(L"Exception in gExplorers_NewExplorer: ",
               [&] { TryTwice([&] { Follow(explorer, Registry().gExplorerListeners); }); });
}

void Connect::gInspectors_NewInspector(const Object& inspector) {
    LogOnError(L"Exception in gInspectors_NewInspector: ", [&] {
        ComPtr<InspectorListener> listener;
        TryTwice([&] { listener = Follow(inspector, Registry().gInspectorListeners); });
        if (listener == nullptr) return;
        const HWND window = FindNewWindow(inspector.GetText(L"Caption"), true);
        if (window != nullptr && MayHoldOutlook()) listener->Init(HandleToLong(window));
    });
}

void Connect::gOutlookApp_Quit() {
    // An error in one statement must not prevent the release of later references.
    constexpr wchar_t prefix[] = L"Exception in gOutlookApp_Quit: ";
    mayHoldOutlook_ = false;
    LogOnError(prefix, [] { Registry().gInspectorListeners.RemoveAll(); });
    gInspectors_.Release();
    LogOnError(prefix, [] { Registry().gExplorerListeners.RemoveAll(); });
    gExplorers_.Release();
    gOutlookApp_.Release();
    Shutdown();
    // Outlook up to 2003 neither exits nor disconnects the add-in while the remaining listeners hold its objects.
    Registry().ReleaseOutlook();
}

void Connect::AddinInstance_OnDisconnection() {
    connected_ = mayHoldOutlook_ = false;
    AllowMapiWrapper(false);
    LogMsg2(L"Connect.OnDisconnection()");
    RemoveWindowsHook();
    Shutdown();
    // Before the remaining listeners end, so that no new window is announced meanwhile.
    gInspectors_.Release();
    gExplorers_.Release();
    gOutlookApp_.Release();
    Registry().AbandonAll();
    Registry().outlookApplication.Reset();
    AbandonMapiWrapper();
    RemoveWindowsHook();  // a link that started during the calls above has installed it again
}

void Connect::Shutdown() { LogMsg2(L"Connect.Shutdown()"); }

}  // namespace beacon
