// What a click or a choice in the context box does.
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "toolbar/context_box.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

constexpr long kEngineIsReady = 3;
constexpr long kBeaconPlace = 1;
constexpr long kBackpackPlace = 2;
constexpr long kContextPlace = 3;
constexpr long kSearchPlace = 4;
constexpr long kSearchInContextPlace = 5;
constexpr long kFocusPlace = 6;
constexpr long kRefreshPlace = 7;

/// The clock's time in whole seconds.
long long ClockSecond() {
    SYSTEMTIME now;
    FILETIME packed;
    GetLocalTime(&now);
    SystemTimeToFileTime(&now, &packed);
    constexpr long long kTicksPerSecond = 10'000'000;
    return ((static_cast<long long>(packed.dwHighDateTime) << 32) | packed.dwLowDateTime) / kTicksPerSecond;
}

}  // namespace

// Every command can lead out of the process and back: the engine may ask for a window to be closed while it is told of
// the click. So each entry below holds the toolbar and its connection until it has finished.

void CToolbar::OnButtonClick(const wchar_t* handler, const com::EventArguments& arguments) {
    const com::ComPtr<CToolbar> alive(this);
    const com::ComPtr<ToolbarHost> connection(gConnect_);
    LogOnError(std::wstring(L"Exception in ") + handler + L": ", [&] {
        LogMsg2(L"In ", handler);
        const com::Object ctrl = arguments.ObjectAt(0);
        CommonButton_Click(ctrl.GetText(L"Caption"), ctrl.GetLong(L"Id"));
        arguments.SetBool(1, true);
    });
}

STDMETHODIMP CToolbar::OnConnect() {
    const com::ComPtr<CToolbar> alive(this);
    const com::ComPtr<ToolbarHost> connection(gConnect_);
    LogOnError(L"Exception in OnConnect: ", [&] {
        if (clicks_.g_nPendingButton <= 0) return;
        const std::wstring caption = clicks_.g_sPendingButton;  // carrying it out may clear it
        CommonButton_Click(caption, clicks_.g_nPendingButton);
    });
    return S_OK;
}

void CToolbar::CommonButton_Click(const std::wstring& caption, long id) {
    LogOnError(L"Exception in CommonButton_Click: ", [&] {
        const long long now = ClockSecond();
        if (clicks_.IsRepeat(caption, id, LastSynchronisedWindow(), now)) return;
        const com::ComPtr<ToolbarHost> conn = FindActiveConnection(LastSynchronisedWindow());
        if (conn == nullptr) {
            LogMsg2(L" Unable to locate ActiveConneciton for ", LastSynchronisedWindow());
            return;
        }
        LogMsg2(L"**** CommonButton_Click with Caption: ", caption, L" ID: ", id);
        globals::gUserInterrupt = false;  // the click itself is not typing that should hold the text back
        const bool ready = toolbarConfig_.EngineState() == kEngineIsReady;
        clicks_.Note(caption, id, LastSynchronisedWindow(), now, ready);
        if (caption != CaptionAt(kSearchInContextPlace)) toolbarConfig_.BeginCommand();
        CarryOut(caption, conn);
        toolbarConfig_.CommandDone(LastSynchronisedWindow());
    });
}

/// Buttons are known by their captions, as they stand on the bar at this moment.
void CToolbar::CarryOut(const std::wstring& caption, const com::ComPtr<ToolbarHost>& conn) {
    if (caption == CaptionAt(kBeaconPlace)) {
        LogMsg2(L"**** Beacon button clicked");
        OnUpdate(conn, false);
    } else if (caption == CaptionAt(kBackpackPlace)) {
        LogMsg2(L"**** Backpack button clicked");
    } else if (caption == CaptionAt(kSearchPlace)) {
        const std::wstring text = toolbarConfig_.ContextMode() == 1 ? ContextBoxText() : std::wstring();
        LogMsg2(L"**** New search button clicked with text <", text, L">");
        toolbarConfig_.NewSearch(LastSynchronisedWindow(), text);
    } else if (caption == CaptionAt(kSearchInContextPlace)) {
        LogMsg2(L"**** Search in context button clicked");
        SearchInContext(conn);
    } else if (caption == CaptionAt(kFocusPlace)) {
        LogMsg2(L"**** Focus button clicked");
        OnUpdate(conn, false);
    } else if (caption == CaptionAt(kRefreshPlace)) {
        LogMsg2(L"**** Refresh button clicked");
        OnUpdate(conn, false);
    } else if (caption == CaptionAt(kContextPlace)) {
        LogMsg2(L"**** Combo box accessed");
        if (toolbarConfig_.ContextMode() == 1) toolbarConfig_.NewSearch(LastSynchronisedWindow(), ContextBoxText());
    }
}

void CToolbar::SearchInContext(const com::ComPtr<ToolbarHost>& conn) {
    const long mode = toolbarConfig_.ContextMode();
    const std::wstring text = ContextBoxText();
    const std::wstring defaultText = toolbarConfig_.DefaultContextText();
    if (mode != 1 && (text.empty() || text == defaultText)) {
        const std::wstring warning = toolbarConfig_.ContextWarningText();
        const std::wstring title = toolbarConfig_.ContextWarningTitle();
        MessageBoxW(nullptr, warning.c_str(), title.c_str(), MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    toolbarConfig_.BeginCommand();
    OnUpdate(conn, true);
}

void CToolbar::OnUpdate(const com::ComPtr<ToolbarHost>& conn, bool useContext) {
    LogOnError(L"Exception in OnUpdate: ", [&] {
        std::wstring text;
        if (useContext && toolbarConfig_.ContextMode() == 1) {
            const std::wstring chosen = ContextBoxText();
            if (chosen != toolbarConfig_.DefaultContextText()) text = chosen;
        }
        LogMsg2(L"***** CToolbar OnUpdate with text: <", text, L">");
        conn->SetContextString(text);
        conn->OnUpdateClicked();
    });
}

void CToolbar::mvargCboContext_Change(const com::Object& ctrl) {
    const com::ComPtr<CToolbar> alive(this);
    const com::ComPtr<ToolbarHost> connection(gConnect_);
    LogOnError(L"Exception in CboContext_Change: ", [&] {
        const std::wstring text = ctrl.GetText(L"Text");
        LogMsg2(L"mvargCboContext_Change with text ", text);
        if (ctrl.GetText(L"Caption") != L"Context" || text.empty() || text == toolbarConfig_.DefaultContextText())
            return;
        const com::ComPtr<ToolbarHost> conn = FindActiveConnection(LastSynchronisedWindow());
        if (conn == nullptr) return;
        OnContextChange(conn, text);
        sCurrentContext_ = text;
    });
}

void CToolbar::OnContextChange(const com::ComPtr<ToolbarHost>& conn, const std::wstring& text) {
    LogOnError(L"Exception in OnContextChange: ", [&] {
        conn->SetContextString(text);
        const com::Object box = mvargCboContext_.Control();
        long found = 0;
        GoOnAfterError([&] { found = FindComboItem(box, text); });
        if (found != 0) return;
        GoOnAfterError([&] { box.Call(L"AddItem", {com::FromText(text)}); });
        GoOnAfterError([&] { colContextList_.push_back(text); });
    });
}

com::ComPtr<ToolbarHost> CToolbar::FindActiveConnection(long hWnd) {
    com::ComPtr<ToolbarHost> result;
    LogOnError(L"Exception in FindActiveConnection: ", [&] {
        if (Connect().GetHwnd() == hWnd)
            result = gConnect_;
        else
            result = Connect().FindConnectionForWindow(hWnd);
        if (result == nullptr) LogMsg2(L"FindActiveConnection unable to locate active object for hwnd=", hWnd);
    });
    return result;
}

std::wstring CToolbar::CaptionAt(long position) {
    const com::Object bar = oBeaconCmdBar_ ? oBeaconCmdBar_ : GetCommandBar();
    return bar.GetObject(L"Controls").GetObject(L"Item", {com::FromLong(position)}).GetText(L"Caption");
}

/// The box is bound only while it is shown. Hidden, it still stands on the bar with its text.
std::wstring CToolbar::ContextBoxText() {
    if (mvargCboContext_) return mvargCboContext_.Control().GetText(L"Text");
    if (comboBox_) return comboBox_.GetText(L"Text");
    const com::Object bar = GetCommandBar();
    return bar.GetObject(L"Controls").GetObject(L"Item", {com::FromLong(kContextPlace)}).GetText(L"Text");
}

}  // namespace beacon
