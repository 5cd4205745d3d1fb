#include "addin/connect.h"

#include "addin/listener_registry.h"
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

/// Runs a step of the start-up again when it fails: one failed allocation must not leave Outlook unwatched.
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

ComPtr<ExplorerListener> Connect::FollowExplorer(const Object& explorer) {
    if (!explorer) com::Raise(com::kNoObject);
    const auto listener = com::MakeObject<ExplorerListener>(Registry());
    listener->SetExplorer(explorer);
    if (!MayHoldOutlook()) return nullptr;
    Registry().AddExplorerListener(listener);
    return listener;
}

ComPtr<InspectorListener> Connect::FollowInspector(const Object& inspector) {
    if (!inspector) com::Raise(com::kNoObject);
    const auto listener = com::MakeObject<InspectorListener>(Registry());
    listener->WatchInspector(inspector);
    if (!MayHoldOutlook()) return nullptr;
    Registry().AddInspectorListener(listener);
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
    TryTwice([&] {
        gOutlookApp_.Set(Object(application), {kApplicationEvents}, [this](DISPID member, const com::EventArguments&) {
            const ComPtr<Connect> alive(this);
            if (member == kStartup) gOutlookApp_Startup(false);
            if (member == kQuit) gOutlookApp_Quit();
        });
    });
    if (!MayHoldOutlook()) return;
    Registry().outlookApplication = Object(application);  // only with a subscription: otherwise nobody hears Quit
    GoOnAfterError(
        [&] { TryTwice([&] { globals::gOutlookVersion = GetMajorVersion(gOutlookApp_.Get().GetText(L"Version")); }); });
    if (!MayHoldOutlook()) return;
    beacon::SetUpWindowsHook();
    // Outlook is up already: no start-up event will come.
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
    // An item window may lie in front of it.
    if (isUpAlready && explorer)
        GoOnAfterError([&] {
            const long itsOwn = FindOutlookWindow(explorer.GetText(L"Caption"), false);
            if (itsOwn != 0) mainWindow = itsOwn;
        });
    if (explorer) {
        if (const auto listener = FollowExplorer(explorer)) listener->Init(mainWindow);
    } else if (const auto listener = FollowInspector(application.GetObject(L"ActiveInspector"))) {
        listener->Init(mainWindow);
    }
}

void Connect::gExplorers_NewExplorer(const Object& explorer) {
    LogOnError(L"Exception in gExplorers_NewExplorer: ", [&] { TryTwice([&] { FollowExplorer(explorer); }); });
}

void Connect::gInspectors_NewInspector(const Object& inspector) {
    LogOnError(L"Exception in gInspectors_NewInspector: ", [&] {
        ComPtr<InspectorListener> listener;
        TryTwice([&] { listener = FollowInspector(inspector); });
        if (listener == nullptr) return;
        const HWND window = FindNewWindow(inspector.GetText(L"Caption"), true);
        if (window != nullptr && MayHoldOutlook()) listener->Init(HandleToLong(window));
    });
}

void Connect::gOutlookApp_Quit() {
    // Each statement for itself: an error of the first must not keep the later references from being released.
    constexpr wchar_t prefix[] = L"Exception in gOutlookApp_Quit: ";
    mayHoldOutlook_ = false;
    LogOnError(prefix, [] { Registry().RemoveAllInspectors(); });
    gInspectors_.Release();
    LogOnError(prefix, [] { Registry().RemoveAllExplorers(); });
    gExplorers_.Release();
    gOutlookApp_.Release();
    Shutdown();
    // Outlook up to 2003 neither ends nor disconnects the add-in while the listeners left there hold a thing of its.
    Registry().LetGoOfOutlook();
}

void Connect::AddinInstance_OnDisconnection() {
    connected_ = mayHoldOutlook_ = false;
    LogMsg2(L"Connect.OnDisconnection()");
    RemoveWindowsHook();
    Shutdown();
    // No window may be announced any more while the listeners end: whatever quitting left behind, or all of them when
    // Outlook goes on without the add-in.
    gInspectors_.Release();
    gExplorers_.Release();
    gOutlookApp_.Release();
    Registry().AbandonAll();
    Registry().outlookApplication.Reset();
    AbandonMapiWrapper();
    RemoveWindowsHook();  // a link that came up during the calls above would have installed it again
}

void Connect::Shutdown() { LogMsg2(L"Connect.Shutdown()"); }

}  // namespace beacon
