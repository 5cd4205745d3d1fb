#include "toolbar/toolbar.h"

#include <utility>

#include "support/error_styles.h"
#include "support/log.h"
#include "toolbar/beacon_bar.h"

namespace beacon {

void CToolbar::Final() noexcept {
    GoOnAfterError([&] { DeletePartialBar(); });
    GoOnAfterError([&] {
        // No definition, no box: do not create a definition only to ask for the mode.
        if (!toolbarConfig_.IsCreated() || !ContextBoxIsShown()) return;
        const com::Object box = sinks_.mvargCboContext ? sinks_.mvargCboContext.Get() : comboBox_;
        if (box) box.Call(L"Clear");
    });
    // The hidden second button has no events to unsubscribe from; its member releases it.
    sinks_.mvargCbbBeacon.Release();
    sinks_.mvargCboContext.Release();
    sinks_.mvargCbbSearch.Release();
    sinks_.mvargCbbSearchInContext.Release();
    sinks_.mvargCbbFocus.Release();
    sinks_.mvargCbbRefresh.Release();
    oCommandBars_.Reset();
    oBeaconCmdBar_.Reset();
}

ToolbarHost& CToolbar::Connect() const {
    if (gConnect_ == nullptr) com::Raise(com::kNoObject);
    return *gConnect_;
}

STDMETHODIMP CToolbar::InstallBeaconToolbar(VARIANT_BOOL bRemoveOldToolbar) {
    const KeepAlive alive = Hold();
    const bool nested = std::exchange(installing_, true);
    LogOnError(L"Exception in InstallBeaconToolbar: ", [&] {
        LogMsg2(L"InstallBeaconToolbar: ");
        if (gInitialized_ || nested) return;
        if (bRemoveOldToolbar != VARIANT_FALSE) {
            LogMsg2(L"InstallBeaconToolbar: Removing old toolbar");
            RemoveBeaconToolbar();
        }
        LogMsg2(L"InstallBeaconToolbar: About to add toolbar");
        AddBeaconToolbar();
        if (!GetCommandBar()) {
            LogMsg2(L"InstallBeacnToolbar: unable to locate Toolbar");
            if (failedBuilds_ >= kMostFailedBuilds) Connect().StopToolbarTimer();
            return;
        }
        Synchronise(Connect().GetHwnd());
        NeedWindow(Connect());
        gInitialized_ = true;
        LogMsg2(L"InstallBeaconToolbar: tmrToolbar is disabled");
        Connect().StopToolbarTimer();
    });
    installing_ = nested;
    return S_OK;
}

STDMETHODIMP CToolbar::g_tmrLayoutSaver_Timer() {
    LogOnError(L"Exception in g_tmrLayoutSaver_Timer: ", [&] {
        const com::Object bar = GetCommandBar();
        if (!bar) return;
        BarLayout layout;
        layout.height = bar.GetLong(L"Height");
        layout.width = bar.GetLong(L"Width");
        layout.left = bar.GetLong(L"Left");
        layout.top = bar.GetLong(L"Top");
        layout.rowIndex = bar.GetLong(L"RowIndex");
        layout.position = PositionName(bar.GetLong(L"Position"));
        toolbarConfig_->SaveLayout(kAppName, layout);
    });
    return S_OK;
}

void CToolbar::ApplyLayout(const com::Object& bar) {
    LogOnError(L"Exception in ApplyLayout: ", [&] {
        const BarLayout layout = toolbarConfig_->LoadLayout(kAppName);
        bar.Put(L"Height", layout.height);
        bar.Put(L"Width", layout.width);
        bar.Put(L"Left", layout.left);
        bar.Put(L"Top", layout.top);
        bar.Put(L"RowIndex", layout.rowIndex);
        bar.Put(L"Position", PositionFromName(layout.position));
    });
}

}  // namespace beacon
