#include "tests/faults/scenarios.h"

#include <memory>

#include "common/call_points.h"
#include "common/threads.h"
#include "outlook/object_model/events.h"

namespace beacon::standin {
namespace {

Action Select(const wchar_t* item) {
    return [item](OutlookSession& session) { session.Select(item); };
}

Action Open(const wchar_t* item) {
    return [item](OutlookSession& session) { session.Open(item); };
}

Action Press(const wchar_t* caption) {
    return [caption](OutlookSession& session) { session.Press(caption); };
}

Action Tick(FormTimer timer) {
    return [timer](OutlookSession& session) { session.Tick(timer); };
}

const Action kSend = Tick(FormTimer::Analysis);

void OpenExplorer(OutlookSession& session) { session.Program().OpenExplorer(true); }

/// Without a context box and a context, the adapter shows its warning box.
void SearchWithoutContext(OutlookSession& session) {
    session.Engine().toolbar.contextMode = 0;
    session.Press(L"Search in Context");
}

/// As the user does. The adapter notices when the window closes, where its message loop runs.
void DeleteBarAndClose(OutlookSession& session) {
    if (CommandBarsHost* const bars = session.BarsWith(L"Search in Context")) bars->DeleteBar(L"Beacon Toolbar");
    session.AwaitLoop();
    session.CloseActive();
}

// The item of an open window, otherwise the first item.
void Delete(OutlookSession& session) {
    Outlook& outlook = session.Program();
    if (const auto inspector = outlook.ActiveInspector())
        outlook.Delete(inspector->ShownItem());
    else if (outlook.Items().Count() > 0)
        outlook.Delete(outlook.Items().Items().front());
}

Action RaiseOfWindow(const wchar_t* name, DISPID member) {
    return [name, member](OutlookSession& session) {
        if (const auto frame = session.Program().ActiveFrame()) frame->Raise(name, member);
    };
}

// Without a Close event, as when another program ends the window.
void DestroyFollowedWindow(OutlookSession& session) {
    if (const auto frame = session.Program().ActiveFrame()) frame->Destroy();
}

void ChangeContext(OutlookSession& session) {
    if (CommandBarsHost* const bars = session.BarsWith(L"Context")) bars->EnterNow(L"Context", L"another context");
}

Action SendToForms(UINT message, FormTimer timer = {}) {
    return [message, timer](OutlookSession& session) {
        for (const HWND form : session.HiddenForms())
            if (IsWindow(form)) SendMessageW(form, message, static_cast<WPARAM>(timer), 0);
    };
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

Action Disconnect(Side side) {
    return [side](OutlookSession& session) {
        session.Engine().Each(side, [](MessageChannel& channel) { channel.SendDisconnect(channel.Handle()); });
    };
}

Action Order(const wchar_t* text) {
    return [text](OutlookSession& session) {
        session.Engine().Each(Side::Controller, [text](MessageChannel& channel) { channel.SendControl(text); });
    };
}

void ButtonClick(OutlookSession& session) {
    session.Engine().Each(Side::Controller,
                          [](MessageChannel& channel) { channel.SendMessageText(L"<BUTTON_CLICK id=\"1\"/>"); });
}

// The next calls of the engine's objects fail.
void RejectCalls(OutlookSession&) {
    constexpr unsigned kRejected = 10;
    TheCallPoints().SetListener([left = kRejected](unsigned number, const std::wstring& name) mutable {
        const bool ofEngine =
            name.starts_with(L"AppTo") || name.starts_with(L"Controller.") || name.starts_with(L"Engine.");
        if (!ofEngine || left == 0) return;
        --left;
        TheCallPoints().Add({number, RPC_E_CALL_REJECTED, 0, {}, {}});
    });
}

}  // namespace

const std::vector<Scenario> kScenarios = {
    {L"mails",
     L"",
     {&OutlookSession::Start, Select(L"One"), kSend, Select(L"Ann Lee"), kSend, Tick(FormTimer::Reconnect),
      OpenExplorer, kSend, Select(L"Two"), kSend, ButtonClick, kSend, &OutlookSession::CloseActive, Select(L"Three"),
      kSend},
     &OutlookSession::Quit},
    {L"items",
     L"",
     {&OutlookSession::Start, Open(L"One"), kSend, Open(L"Ann Lee"), kSend, Tick(FormTimer::Reconnect),
      &OutlookSession::CloseActive},
     &OutlookSession::Disconnect},
    {L"toolbar",
     L"1",
     {&OutlookSession::Start, Tick(FormTimer::Toolbar), Press(L"Update"), Select(L"One"), kSend, Press(L"New Search"),
      Press(L"Search in Context"), Press(L"Focus"), Press(L"Refresh"), &OutlookSession::CloseActive},
     &OutlookSession::Quit},
    {L"loops",
     L"1",
     {&OutlookSession::Start, Tick(FormTimer::Toolbar), SearchWithoutContext, DeleteBarAndClose},
     &OutlookSession::Quit},
    {L"windows",
     L"1",
     {&OutlookSession::Start, Tick(FormTimer::Toolbar), Open(L"One"), kSend, Open(L"Two"), kSend, Open(L"Ann Lee"),
      kSend, Tick(FormTimer::Toolbar), OpenExplorer, kSend},
     &OutlookSession::QuitWithWindows},
};

const std::vector<Event> kEvents = {
    {L"selection", Select(L"Ann Lee")},
    {L"activate", RaiseOfWindow(L"Activate", events::kActivate)},
    {L"deactivate", RaiseOfWindow(L"Deactivate", events::kDeactivate)},
    {L"close", &OutlookSession::CloseActive},
    {L"destroy-window", DestroyFollowedWindow},
    {L"delete", Delete},
    {L"quit", &OutlookSession::RaiseQuit},
    {L"on-disconnection", [](OutlookSession& session) { session.DisconnectAll(RemoveMode::UserClosed); }},
    {L"second-start", &OutlookSession::ConnectAgain},
    {L"inspector", Open(L"Ann Lee")},
    {L"click", Press(L"Update")},
    {L"change", ChangeContext},
    {L"clipboard", OccupyClipboard},
    {L"form-close", SendToForms(WM_CLOSE)},
    {L"tick-analysis", SendToForms(WM_TIMER, FormTimer::Analysis)},
    {L"tick-reconnect", SendToForms(WM_TIMER, FormTimer::Reconnect)},
    {L"tick-disconnect", SendToForms(WM_TIMER, FormTimer::Disconnect)},
    {L"tick-toolbar", SendToForms(WM_TIMER, FormTimer::Toolbar)},
    {L"engine-disconnect", Disconnect(Side::Engine)},
    {L"controller-disconnect", Disconnect(Side::Controller)},
    {L"engine-rejects", RejectCalls},
    {L"exit", Order(L"<EXIT now=\"1\"/>")},
    {L"button-click", ButtonClick},
    {L"set-autoupdate",
     [](OutlookSession& session) {
         Order(L"<SET_AUTOUPDATE value=\"false\"/>")(session);
         Order(L"<SET_AUTOUPDATE value=\"true\"/>")(session);
     }},
};

}  // namespace beacon::standin
