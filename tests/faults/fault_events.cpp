#include "tests/faults/fault_events.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "common/threads.h"
#include "common/words.h"
#include "outlook/object_model/events.h"

namespace beacon::standin {
namespace {

void SelectLast(OutlookSession& session) {
    const auto explorer = session.Program().ActiveExplorer();
    const auto& items = session.Program().Items().Items();
    if (explorer != nullptr && !items.empty()) explorer->Select({items.back()});
}

void OpenLast(OutlookSession& session) {
    const auto& items = session.Program().Items().Items();
    if (!items.empty()) session.Program().OpenInspector(items.back(), true);
}

// The item of an open window, otherwise the first item.
void Delete(OutlookSession& session) {
    Outlook& outlook = session.Program();
    if (const auto inspector = outlook.ActiveInspector())
        outlook.Delete(inspector->ShownItem());
    else if (outlook.Items().Count() > 0)
        outlook.Delete(outlook.Items().Items().front());
}

template <DISPID kMember>
void RaiseOfWindow(OutlookSession& session) {
    const auto frame = session.Program().ActiveFrame();
    if (frame != nullptr) frame->Raise(kMember == events::kActivate ? L"Activate" : L"Deactivate", kMember);
}

// Without a Close event, as when another program ends the window.
void DestroyFollowedWindow(OutlookSession& session) {
    if (const auto frame = session.Program().ActiveFrame()) frame->Destroy();
}

void ChangeContext(OutlookSession& session) {
    if (CommandBarsHost* const bars = session.Bars(); bars != nullptr && bars->Has(L"Context"))
        bars->EnterNow(L"Context", L"another context");
}

template <FormTimer kTimer>
void TickNow(OutlookSession& session) {
    for (const HWND form : session.HiddenForms())
        if (IsWindow(form)) SendMessageW(form, WM_TIMER, static_cast<WPARAM>(kTimer), 0);
}

void CloseForms(OutlookSession& session) {
    for (const HWND form : session.HiddenForms()) SendMessageW(form, WM_CLOSE, 0, 0);
}

// For a while. To Outlook's thread, another thread's window is as good as another program.
void OccupyClipboard(OutlookSession&) {
    const std::shared_ptr<void> isOpen(CreateEventW(nullptr, TRUE, FALSE, nullptr), CloseHandle);
    const UniqueHandle thread = StartThread([isOpen] {
        const HWND owner =
            CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        const bool opened = OpenClipboard(owner) != FALSE;
        SetEvent(isOpen.get());
        Sleep(100);
        if (opened) CloseClipboard();
        DestroyWindow(owner);
    });
    if (thread != nullptr) WaitForSingleObject(isOpen.get(), 1000);
}

const struct {
    const wchar_t* name;
    void (*raise)(OutlookSession& session);
} kEvents[] = {
    {L"selection", SelectLast},
    {L"activate", RaiseOfWindow<events::kActivate>},
    {L"deactivate", RaiseOfWindow<events::kDeactivate>},
    {L"close", [](OutlookSession& session) { session.CloseActive(); }},
    {L"destroy-window", DestroyFollowedWindow},
    {L"delete", Delete},
    {L"quit", [](OutlookSession& session) { session.RaiseQuit(); }},
    {L"on-disconnection", [](OutlookSession& session) { session.DisconnectAll(RemoveMode::UserClosed); }},
    {L"second-start", [](OutlookSession& session) { session.ConnectAgain(); }},
    {L"inspector", OpenLast},
    {L"click", [](OutlookSession& session) { session.Press(L"Update"); }},
    {L"change", ChangeContext},
    {L"clipboard", OccupyClipboard},
    {L"form-close", CloseForms},
    {L"tick-analysis", TickNow<FormTimer::Analysis>},
    {L"tick-reconnect", TickNow<FormTimer::Reconnect>},
    {L"tick-disconnect", TickNow<FormTimer::Disconnect>},
    {L"tick-toolbar", TickNow<FormTimer::Toolbar>},
    {L"engine-disconnect", [](OutlookSession& session) { session.Engine().SendDisconnect(Side::Engine); }},
    {L"controller-disconnect", [](OutlookSession& session) { session.Engine().SendDisconnect(Side::Controller); }},
    {L"engine-rejects", [](OutlookSession& session) { session.Engine().RejectCalls(10); }},
    {L"exit", [](OutlookSession& session) { session.Engine().SendControl(L"<EXIT now=\"1\"/>"); }},
    {L"button-click", [](OutlookSession& session) { session.Engine().SendButtonClick(); }},
    {L"set-autoupdate",
     [](OutlookSession& session) {
         session.Engine().SendControl(L"<SET_AUTOUPDATE value=\"false\"/>");
         session.Engine().SendControl(L"<SET_AUTOUPDATE value=\"true\"/>");
     }},
};

}  // namespace

std::vector<std::wstring> EventNames() {
    std::vector<std::wstring> names;
    for (const auto& event : kEvents) names.emplace_back(event.name);
    return names;
}

std::function<void()> FindEvent(OutlookSession& session, const std::wstring& name) {
    const auto found = std::ranges::find_if(kEvents, [&](const auto& event) { return name == event.name; });
    if (found == std::end(kEvents)) throw ScriptError{L"there is no event \"" + name + L"\""};
    return [&session, raise = found->raise] { raise(session); };
}

}  // namespace beacon::standin
