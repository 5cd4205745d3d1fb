// What a click or a choice in the context box does.
#include "support/error_styles.h"
#include "support/globals.h"
#include "support/log.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

/// The local time in whole seconds.
long long ClockSecond() {
    SYSTEMTIME now;
    FILETIME packed;
    GetLocalTime(&now);
    SystemTimeToFileTime(&now, &packed);
    constexpr long long kTicksPerSecond = 10'000'000;
    return ((static_cast<long long>(packed.dwHighDateTime) << 32) | packed.dwLowDateTime) / kTicksPerSecond;
}

/// The index of a text in the list of a combo box, from 1; 0 if it is not there. Case-sensitive.
long FindComboItem(const com::Object& box, const std::wstring& text) {
    const long count = box.GetLong(L"ListCount");
    for (long i = 1; i <= count; ++i)
        if (box.GetText(L"List", {i}) == text) return i;
    return 0;
}

}  // namespace

void CToolbar::OnButtonClick(const wchar_t* handler, const com::EventArguments& arguments) {
    const KeepAlive alive = Hold();
    LogOnError(std::wstring(L"Exception in ") + handler + L": ", [&] {
        LogMsg2(L"In ", handler);
        const com::Object ctrl = arguments.ObjectAt(0);
        CommonButton_Click(ctrl.GetText(L"Caption"), ctrl.GetLong(L"Id"));
        arguments.SetBool(1, true);
    });
}

STDMETHODIMP CToolbar::OnConnect() {
    const KeepAlive alive = Hold();
    LogOnError(L"Exception in OnConnect: ", [&] {
        if (g_nPendingButton_ <= 0) return;
        const std::wstring caption = g_sPendingButton_;  // the command may clear it
        CommonButton_Click(caption, g_nPendingButton_);
    });
    return S_OK;
}

void CToolbar::CommonButton_Click(const std::wstring& caption, long id) {
    constexpr wchar_t prefix[] = L"Exception in CommonButton_Click: ";
    LogOnError(prefix, [&] {
        toolbarConfig_.TryAgain();
        const Click click{caption, id, LastSynchronisedWindow(), ClockSecond()};
        if (click == lastClick_) return;
        const com::ComPtr<ToolbarHost> conn = FindActiveConnection(LastSynchronisedWindow());
        if (conn == nullptr) {
            LogMsg2(L" Unable to locate ActiveConneciton for ", LastSynchronisedWindow());
            return;
        }
        LogMsg2(L"**** CommonButton_Click with Caption: ", caption, L" ID: ", id);
        globals::gUserInterrupt = false;  // the click itself is no typing that should delay the text
        NoteClick(click);
        const std::shared_ptr<ToolbarDefinition> definition = toolbarConfig_.Get();
        NeedWindow(*conn.Get());
        if (caption != CaptionAt(kSearchInContextPlace)) definition->BeginCommand();
        LogOnError(prefix, [&] { CarryOut(caption, conn, *definition); });
        // Only the server that heard BeginCommand: no server is created to hear the end of a command.
        if (!definition->HasDied()) definition->CommandDone(LastSynchronisedWindow());
    });
}

/// If the engine is not ready, the click is carried out and also stored for OnConnect, whose replay is no repeat.
void CToolbar::NoteClick(const Click& click) {
    const bool ready = toolbarConfig_->EngineState() == ToolbarDefinition::kEngineIsReady;
    g_sPendingButton_ = ready ? std::wstring() : click.caption;
    g_nPendingButton_ = ready ? 0 : click.id;
    lastClick_ = ready ? click : Click();
}

/// Recognises a button by the captions that the bar has now; the first of several equal captions wins.
void CToolbar::CarryOut(const std::wstring& caption, const com::ComPtr<ToolbarHost>& conn,
                        ToolbarDefinition& definition) {
    for (const BarPlace& place : kBarPlaces) {
        if (caption != CaptionAt(place.number)) continue;
        if (place.command == BarCommand::kSearch) {
            const std::wstring text = ContextBoxIsShown() ? ContextBoxText() : std::wstring();
            LogMsg2(place.clicked, L" with text <", text, L">");
            SearchFor(text, *conn.Get());
            return;
        }
        LogMsg2(place.clicked);
        switch (place.command) {
            case BarCommand::kUpdate: return OnUpdate(conn, false);
            case BarCommand::kSearchInContext: return SearchInContext(conn, definition);
            case BarCommand::kSearchForContext:
                if (ContextBoxIsShown()) SearchFor(ContextBoxText(), *conn.Get());
                return;
            default: return;
        }
    }
}

void CToolbar::SearchFor(const std::wstring& text, ToolbarHost& conn) {
    NeedWindow(conn);
    toolbarConfig_->NewSearch(LastSynchronisedWindow(), text);
}

void CToolbar::SearchInContext(const com::ComPtr<ToolbarHost>& conn, ToolbarDefinition& definition) {
    const bool shown = ContextBoxIsShown();
    const std::wstring text = ContextBoxText();
    const std::wstring defaultText = toolbarConfig_->DefaultContextText();
    if (!shown && (text.empty() || text == defaultText)) {
        const std::wstring warning = toolbarConfig_->ContextWarningText();
        const std::wstring title = toolbarConfig_->ContextWarningTitle();
        NeedWindow(*conn.Get());
        MessageBoxW(nullptr, warning.c_str(), title.c_str(), MB_OK | MB_ICONEXCLAMATION);
        return;
    }
    NeedWindow(*conn.Get());
    definition.BeginCommand();
    OnUpdate(conn, true);
}

void CToolbar::OnUpdate(const com::ComPtr<ToolbarHost>& conn, bool useContext) {
    LogOnError(L"Exception in OnUpdate: ", [&] {
        std::wstring text;
        if (useContext && ContextBoxIsShown()) {
            const std::wstring chosen = ContextBoxText();
            if (chosen != toolbarConfig_->DefaultContextText()) text = chosen;
        }
        NeedWindow(*conn.Get());
        LogMsg2(L"***** CToolbar OnUpdate with text: <", text, L">");
        conn->SetContextString(text);
        conn->OnUpdateClicked();
    });
}

void CToolbar::mvargCboContext_Change(const com::Object& ctrl) {
    const KeepAlive alive = Hold();
    LogOnError(L"Exception in CboContext_Change: ", [&] {
        toolbarConfig_.TryAgain();
        const std::wstring text = ctrl.GetText(L"Text");
        LogMsg2(L"mvargCboContext_Change with text ", text);
        if (ctrl.GetText(L"Caption") != L"Context" || text.empty() || text == toolbarConfig_->DefaultContextText())
            return;
        const com::ComPtr<ToolbarHost> conn = FindActiveConnection(LastSynchronisedWindow());
        if (conn == nullptr) return;
        // The text is read again each time: the calls in between may let other code run.
        OnContextChange(conn, ctrl.GetText(L"Text"));
        sCurrentContext_ = ctrl.GetText(L"Text");
    });
}

void CToolbar::OnContextChange(const com::ComPtr<ToolbarHost>& conn, const std::wstring& text) {
    LogOnError(L"Exception in OnContextChange: ", [&] {
        conn->SetContextString(text);
        if (isRefilling_) return;  // the list is incomplete: the text would be added twice
        const com::Object box = sinks_.mvargCboContext.Get();
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

/// Inserts each missing context at the top, so that the latest comes first. A shared list belongs to several windows
/// and is not cleared.
void CToolbar::RefillContextBox(const com::Object& box) {
    constexpr long kTop = 1;
    isRefilling_ = true;  // until the synchronisation ends; a Change event inside these calls must not add contexts
    if (!gSharedConextList_) box.Call(L"Clear");
    for (const std::wstring& context : colContextList_)
        if (FindComboItem(box, context) == 0) box.Call(L"AddItem", {com::FromText(context), kTop});
    box.Put(L"ListIndex", FindComboItem(box, sCurrentContext_));
    if (!colContextList_.empty()) return;
    const std::wstring defaultText = toolbarConfig_->DefaultContextText();
    NeedWindow(Connect());
    box.Call(L"AddItem", {com::FromText(defaultText), kTop});
    box.Put(L"ListIndex", kTop);
}

bool CToolbar::ContextBoxIsShown() { return toolbarConfig_->ContextMode() == ToolbarDefinition::kContextBoxIsShown; }

com::Object CToolbar::ControlAt(long place) {
    const com::Object bar = oBeaconCmdBar_ ? oBeaconCmdBar_ : GetCommandBar();
    return bar.GetObject(L"Controls").GetObject(L"Item", {place});
}

std::wstring CToolbar::CaptionAt(long place) { return ControlAt(place).GetText(L"Caption"); }

/// The box is bound only while it is shown. A hidden box is still on the bar, with its text.
std::wstring CToolbar::ContextBoxText() {
    const com::WatchedObject& bound = sinks_.mvargCboContext;
    const com::Object box = bound ? bound.Get() : comboBox_ ? comboBox_ : ControlAt(kContextPlace);
    return box.GetText(L"Text");
}

}  // namespace beacon
