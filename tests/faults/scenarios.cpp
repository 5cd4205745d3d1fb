#include "tests/faults/scenarios.h"

#include "common/words.h"

namespace beacon::standin {
namespace {

std::function<void(OutlookSession&)> SelectAndSend(const wchar_t* item) {
    return [item](OutlookSession& session) {
        session.Select(item);
        session.Tick(FormTimer::Analysis);
    };
}

std::function<void(OutlookSession&)> OpenAndSend(const wchar_t* item) {
    return [item](OutlookSession& session) {
        session.Open(item);
        session.Tick(FormTimer::Analysis);
    };
}

template <FormTimer kTimer>
void Tick(OutlookSession& session) {
    session.Tick(kTimer);
}

void NewExplorer(OutlookSession& session) {
    session.Program().OpenExplorer(true);
    session.Tick(FormTimer::Analysis);
}

void CloseActive(OutlookSession& session) {
    session.CloseActive();
    session.Pump();
}

std::function<void(OutlookSession&)> Press(const wchar_t* caption) {
    return [caption](OutlookSession& session) { session.Press(caption); };
}

/// Without a context box and a context, the adapter shows its warning box.
void SearchWithoutContext(OutlookSession& session) {
    session.Engine().toolbar.contextMode = 0;
    session.Press(L"Search in Context");
}

/// As the user does. The adapter notices when the window closes.
void DeleteBar(OutlookSession& session) {
    constexpr wchar_t kBar[] = L"Beacon Toolbar";
    CommandBarsHost* const bars = session.Bars();
    if (bars != nullptr && bars->Describe().find(kBar) != std::wstring::npos) bars->DeleteBar(kBar);
    session.AwaitLoop();
}

void ButtonClick(OutlookSession& session) {
    session.Engine().SendButtonClick();
    session.Tick(FormTimer::Analysis);
}

}  // namespace

const std::vector<Scenario>& Scenarios() {
    static const std::vector<Scenario> scenarios = {
        {L"mails",
         L"",
         {&OutlookSession::Start, SelectAndSend(L"MOne"), SelectAndSend(L"C1"), Tick<FormTimer::Reconnect>, NewExplorer,
          SelectAndSend(L"MTwo"), ButtonClick, CloseActive, SelectAndSend(L"MThree")},
         &OutlookSession::Quit},
        {L"items",
         L"",
         {&OutlookSession::Start, OpenAndSend(L"MOne"), OpenAndSend(L"C1"), Tick<FormTimer::Reconnect>, CloseActive},
         &OutlookSession::Disconnect},
        {L"toolbar",
         L"1",
         {&OutlookSession::Start, Tick<FormTimer::Toolbar>, Press(L"Update"), SelectAndSend(L"MOne"),
          Press(L"New Search"), Press(L"Search in Context"), Press(L"Focus"), Press(L"Refresh"), CloseActive},
         &OutlookSession::Quit},
        {L"loops",
         L"1",
         {&OutlookSession::Start, Tick<FormTimer::Toolbar>, SearchWithoutContext, DeleteBar, CloseActive},
         &OutlookSession::Quit},
        {L"windows",
         L"1",
         {&OutlookSession::Start, Tick<FormTimer::Toolbar>, OpenAndSend(L"MOne"), OpenAndSend(L"MTwo"),
          OpenAndSend(L"C1"), Tick<FormTimer::Toolbar>, NewExplorer},
         &OutlookSession::QuitWithWindows},
    };
    return scenarios;
}

const Scenario& FindScenario(const std::wstring& name) {
    for (const Scenario& scenario : Scenarios())
        if (name == scenario.name) return scenario;
    throw ScriptError{L"there is no scenario \"" + name + L"\""};
}

}  // namespace beacon::standin
