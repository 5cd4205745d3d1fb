// Finding the bar, and following the window it serves.
#include <utility>

#include "support/error_styles.h"
#include "support/log.h"
#include "support/numbers.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

constexpr IID kButtonEvents = {0x000C0351, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kComboBoxEvents = {0x000C0354, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr DISPID kClick = 1;
constexpr DISPID kChange = 1;

// One for all toolbars of the process: commands are addressed to the window that was activated last.
long g_lastSynchronisedWindow = 0;

}  // namespace

long CToolbar::LastSynchronisedWindow() { return g_lastSynchronisedWindow; }

com::Object CToolbar::GetCommandBars() {
    LogOnError(L"Exception in GetCommandBars: ", [&] {
        LogMsg2(L"GetCommandBars() called");
        if (oCommandBars_) return;
        using com::MemberName;
        const MemberName active =
            Connect().ListenerIsInspector() ? MemberName(L"ActiveInspector") : MemberName(L"ActiveExplorer");
        const com::Object window = Connect().OutlookApplication().GetObject(active);
        if (!window) {
            LogMsg2(L"Application.", active.text, L" Is Nothing");
            return;
        }
        oCommandBars_ = window.GetObject(L"CommandBars");
        if (!oCommandBars_) LogMsg2(L"GetCommandBars() oCommandBars is Nothing!");
    });
    return oCommandBars_;
}

com::Object CToolbar::GetCommandBar() {
    com::Object result;
    LogOnError(L"Exception in GetCommandBar: ", [&] {
        LogMsg2(L"GetCommandBar() Called");
        DeletePartialBar();
        if (oBeaconCmdBar_) {
            result = oBeaconCmdBar_;
            return;
        }
        const com::Object bars = GetCommandBars();
        if (!bars) return;
        result = FindBeaconBar(bars);
        if (!result) LogMsg2(L"GetCommandBar() is Nothing");
        if (result) deletedBefore_ = BeaconBarsDeleted();
        oBeaconCmdBar_ = result;
    });
    return result;
}

bool CToolbar::CommandBarExists() {
    bool exists = true;
    StopOnError([&] {
        GetCommandBar();
        if (deletedBefore_ != BeaconBarsDeleted()) return;  // there was no bar, or the add-in has deleted one since
        // The cached reference outlives its bar, so search again. A collection that fails belongs to a closed window,
        // which says nothing about the user's wish.
        exists = static_cast<bool>(FindBeaconBar(oCommandBars_));
    });
    return exists;
}

STDMETHODIMP CToolbar::RemoveBeaconToolbar() {
    LogOnError(L"Exception in RemoveBeaconToolbar() ", [&] {
        LogMsg2(L"RemoveBeaconToolbar() called");
        DeleteBeaconBar(GetCommandBar());
    });
    return S_OK;
}

STDMETHODIMP CToolbar::SyncToolbar(long hWnd) {
    const KeepAlive alive = Hold();
    toolbarConfig_.TryAgain();
    Synchronise(hWnd);
    return S_OK;
}

void CToolbar::Synchronise(long hWnd) {
    const bool isRefilling = isRefilling_;
    LogOnError(L"Exception in SyncToolbar: ", [&] {
        LogMsg2(L"SyncToolbar: hWnd=", hWnd);
        g_lastSynchronisedWindow = hWnd;
        const com::Object bar = GetCommandBar();
        if (!bar) {
            LogMsg2(L"SyncToolbar unable to locate Toolbar");
            return;
        }
        const com::Object controls = bar.GetObject(L"Controls");
        const std::wstring tag = ToolbarTagPrefix + DecimalText(hWnd) + L";";
        // Equal tags may be left from an earlier session whose window had the same handle. They mean that nothing is
        // left to do only if this object has synchronised all places before.
        const bool before = std::exchange(synchronised_, false);
        for (const BarPlace& place : kBarPlaces) {
            if (place.number == kContextPlace) {
                if (!ContextBoxIsShown()) break;
                NeedWindow(Connect());
            }
            const std::wstring wanted = tag + DecimalText(place.number);
            const com::Object control = BindPlace(place, controls.GetObject(L"Item", {place.number}));
            if (!control) continue;
            if (place.number == kFirstPlace && before && control.GetText(L"Tag") == wanted) break;
            control.Put(L"Tag", com::FromText(wanted));
            if (place.number == kContextPlace) RefillContextBox(control);
        }
        synchronised_ = true;
    });
    isRefilling_ = isRefilling;
}

/// Returns the control that is bound now; empty if there is none in this place.
com::Object CToolbar::BindPlace(const BarPlace& place, const com::Object& control) {
    com::WatchedObject& sink = sinks_.*place.sink;
    if (place.number == kContextPlace) {
        BindContextBox(control);
    } else if (place.handler == nullptr) {
        sink.Set(control);
    } else {
        sink.Set(control, {kButtonEvents}, [this, &place](DISPID member, const com::EventArguments& arguments) {
            if (member == kClick) OnButtonClick(place.handler, arguments);
        });
    }
    return sink.Get();
}

void CToolbar::BindContextBox(const com::Object& box) {
    sinks_.mvargCboContext.Set(box, {kComboBoxEvents}, [this](DISPID member, const com::EventArguments& arguments) {
        if (member == kChange) mvargCboContext_Change(arguments.ObjectAt(0));
    });
}

}  // namespace beacon
