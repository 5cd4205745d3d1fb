// Finding the bar, and following the window it serves.
#include <utility>

#include "support/error_styles.h"
#include "support/log.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/context_box.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

constexpr IID kButtonEvents = {0x000C0351, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kComboBoxEvents = {0x000C0354, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr DISPID kClick = 1;
constexpr DISPID kChange = 1;
constexpr long kContextBoxPosition = 3;

// One for all toolbars of the process: commands go to the window that the user activated last.
long g_lastSynchronisedWindow = 0;

com::Object ControlAt(const com::Object& controls, long position) {
    return controls.GetObject(L"Item", {com::FromLong(position)});
}

}  // namespace

const CToolbar::ButtonPlace CToolbar::kButtonPlaces[6] = {
    {1, &CToolbar::mvargCbbBeacon_, L"mvargCbbBeacon_Click"},
    {2, &CToolbar::mvargCbbBackpack_, nullptr},
    {4, &CToolbar::mvargCbbSearch_, L"mvargCbbSearch_Click"},
    {5, &CToolbar::mvargCbbSearchInContext_, L"mvargCbbSearchInContext_Click"},
    {6, &CToolbar::mvargCbbFocus_, L"mvargCbbFocus_Click"},
    {7, &CToolbar::mvargCbbRefresh_, L"mvargCbbRefresh_Click"},
};

long CToolbar::LastSynchronisedWindow() { return g_lastSynchronisedWindow; }

com::Object CToolbar::GetCommandBars() {
    LogOnError(L"Exception in GetCommandBars: ", [&] {
        LogMsg2(L"GetCommandBars() called");
        if (oCommandBars_) return;
        const wchar_t* active = Connect().ListenerIsInspector() ? L"ActiveInspector" : L"ActiveExplorer";
        const com::Object window = Connect().OutlookApplication().GetObject(active);
        if (!window) {
            LogMsg2(L"Application.", active, L" Is Nothing");
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
        if (oBeaconCmdBar_) {
            result = oBeaconCmdBar_;
            return;
        }
        const com::Object bars = GetCommandBars();
        if (!bars) return;
        result = FindBeaconBar(bars);
        if (!result) LogMsg2(L"GetCommandBar() is Nothing");
        oBeaconCmdBar_ = result;
    });
    return result;
}

bool CToolbar::CommandBarExists() {
    bool exists = true;
    LogOnError(L"Exception in CommandBarExists: ", [&] {
        GetCommandBar();
        if (!gInitialized_ || removedHere_ || !oCommandBars_) return;
        // The kept reference says nothing: it outlives the bar. A collection that fails belongs to a window that is
        // gone, which is no wish of the user's either.
        exists = static_cast<bool>(FindBeaconBar(oCommandBars_));
    });
    return exists;
}

STDMETHODIMP CToolbar::RemoveBeaconToolbar() {
    LogOnError(L"Exception in RemoveBeaconToolbar() ", [&] {
        LogMsg2(L"RemoveBeaconToolbar() called");
        GetCommandBar().Call(L"Delete");
        removedHere_ = true;
    });
    return S_OK;
}

STDMETHODIMP CToolbar::SyncToolbar(long hWnd) {
    const com::ComPtr<CToolbar> alive(this);
    LogOnError(L"Exception in SyncToolbar: ", [&] {
        LogMsg2(L"SyncToolbar: hWnd=", hWnd);
        g_lastSynchronisedWindow = hWnd;
        const com::Object bar = GetCommandBar();
        if (!bar) {
            LogMsg2(L"SyncToolbar unable to locate Toolbar");
            return;
        }
        const com::Object controls = bar.GetObject(L"Controls");
        const std::wstring tag = ToolbarTagPrefix + std::to_wstring(hWnd) + L";";
        for (const ButtonPlace& place : kButtonPlaces) {
            BindButton(place, controls);
            const com::Object control = (this->*place.sink).Control();
            if (!control) continue;
            const std::wstring wanted = tag + std::to_wstring(place.position);
            if (place.position == 1 && control.GetText(L"Tag") == wanted) {
                BindMissingSinks(controls);
                return;
            }
            control.Put(L"Tag", com::FromText(wanted));
        }
        if (toolbarConfig_.ContextMode() != 1) return;
        BindContextBox(ControlAt(controls, kContextBoxPosition));
        const com::Object box = mvargCboContext_.Control();
        if (!box) return;
        box.Put(L"Tag", com::FromText(tag + std::to_wstring(kContextBoxPosition)));
        RefillContextBox(box, colContextList_, sCurrentContext_, gSharedConextList_,
                         toolbarConfig_.DefaultContextText());
    });
    return S_OK;
}

void CToolbar::BindButton(const ButtonPlace& place, const com::Object& controls) {
    ControlSink& sink = this->*place.sink;
    const com::Object control = ControlAt(controls, place.position);
    if (place.handler == nullptr) {
        sink.Bind(control);
        return;
    }
    const wchar_t* handler = place.handler;
    sink.Bind(control, kButtonEvents, [this, handler](DISPID member, const com::EventArguments& arguments) {
        if (member == kClick) OnButtonClick(handler, arguments);
    });
}

void CToolbar::BindContextBox(const com::Object& box) {
    mvargCboContext_.Bind(box, kComboBoxEvents, [this](DISPID member, const com::EventArguments& arguments) {
        if (member == kChange) mvargCboContext_Change(arguments.ObjectAt(0));
    });
}

/// A bar that already carries this window's tags may have got them from an earlier toolbar of the same window. Nothing
/// is tagged or filled again, but without its sinks the new toolbar would be deaf.
void CToolbar::BindMissingSinks(const com::Object& controls) {
    for (const ButtonPlace& place : kButtonPlaces)
        if (!(this->*place.sink)) BindButton(place, controls);
    if (!mvargCboContext_ && toolbarConfig_.ContextMode() == 1)
        BindContextBox(ControlAt(controls, kContextBoxPosition));
}

}  // namespace beacon
