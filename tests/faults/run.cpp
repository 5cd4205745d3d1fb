#include "tests/faults/run.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "common/call_points.h"
#include "common/words.h"
#include "outlook/observation/counted_reader.h"
#include "outlook/observation/exit_report.h"
#include "outlook/observation/resources.h"

namespace beacon::standin {
namespace {

constexpr DWORD kLongestStep = 1000;  // ms; a step that waits for nobody takes a tenth of that on a busy machine
constexpr wchar_t kLibrary[] = L"BeaconOLKAdapter.dll";
constexpr wchar_t kProofItem[] = L"MFour";

void Expect(bool holds, std::vector<std::wstring>& list, const std::wstring& text) {
    if (!holds) list.push_back(text);
}

/// Runs a step and notes when it held the thread for longer than it may.
template <class Step>
void Timed(RunOutcome& outcome, const RunOrder& order, const wchar_t* name, Step&& step) {
    const ULONGLONG begin = GetTickCount64();
    step();
    const ULONGLONG took = GetTickCount64() - begin;
    if (took > order.hang + kLongestStep)
        outcome.shortfalls.push_back(std::wstring(L"thread held for ") + std::to_wstring(took) + L" ms in " + name);
}

void CheckLeftovers(InProcessEngine& engine, OutlookSession& session, RunOutcome& outcome, bool disconnectFailed,
                    bool unadviseFailed) {
    if (const auto& held = session.HeldAfterQuit(); !held.empty())
        (session.QuitIsUnheard() ? outcome.apart : outcome.shortfalls).push_back(L"held after Quit: " + held);
    std::wstring handles;
    for (const long handle : engine.Handles()) handles += L" " + std::to_wstring(handle);
    if (!handles.empty()) (disconnectFailed ? outcome.apart : outcome.shortfalls).push_back(L"engine holds" + handles);
    engine.LetGo();
    if (const auto held = ExitReport::References(); !held.empty()) outcome.shortfalls.push_back(L"references: " + held);
    if (const auto sinks = ExitReport::Sinks(); !sinks.empty())
        (unadviseFailed ? outcome.apart : outcome.shortfalls).push_back(L"sinks: " + sinks);
    if (const auto properties = ExitReport::Properties(session.Program()); !properties.empty())
        outcome.shortfalls.push_back(L"PROP_OLK: " + properties);
    if (CountedReader::Alive() != 0) outcome.shortfalls.emplace_back(L"property reader left");
    for (const auto& addin : session.Program().Addins().Addins())
        if (const auto windows = ExitReport::WindowsOf(*addin); !windows.empty())
            outcome.shortfalls.push_back(L"windows: " + windows);
}

void CheckUnload(RunOutcome& outcome) {
    if (const HMODULE library = GetModuleHandleW(kLibrary)) {
        const std::wstring answer = ExitReport::UnloadAnswer(library);
        Expect(answer == L"S_OK", outcome.shortfalls, L"DllCanUnloadNow: " + answer);
    }
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);  // the first call may only mark the library
    outcome.damaged = GetModuleHandleW(kLibrary) != nullptr;
    Expect(!outcome.damaged, outcome.shortfalls, L"library still loaded");
}

}  // namespace

RunOrder RunOrder::Parse(const std::wstring& line) {
    Words words(line);
    RunOrder order;
    order.scenario = words.Take(L"scenario");
    if (FindScenario(order.scenario) == nullptr) throw ScriptError{L"no scenario \"" + order.scenario + L"\""};
    order.call = static_cast<unsigned>(words.TakeNumber(L"call"));
    if (words.AtEnd()) return order;
    order.what = words.Take(L"result or event");
    if (order.what == L"hang") order.hang = static_cast<unsigned>(words.TakeNumber(L"milliseconds"));
    order.after = words.Accept(L"after");
    if (!order.after) words.Accept(L"before");
    words.End();
    return order;
}

/// A second life of Outlook in the same process, in which nothing fails: it sends the same document as at first.
void CheckNextOutlook(InProcessEngine& engine, RunOutcome& outcome) {
    static std::wstring expected;
    OutlookSession session(engine, L"");
    session.Start();
    const std::wstring document = session.DocumentOf(kProofItem);
    if (expected.empty()) expected = document;
    Expect(!document.empty() && document == expected, outcome.shortfalls, L"the next session sends no whole document");
    session.Quit();
    CheckLeftovers(engine, session, outcome, false, false);
    session.Destroy();
    TheCallPoints().Watch(nullptr);
    CheckUnload(outcome);
}

RunOutcome CarryOut(InProcessEngine& engine, const RunOrder& order) {
    const Scenario& scenario = *FindScenario(order.scenario);
    RunOutcome outcome;
    OutlookSession session(engine, scenario.toolbar);
    CallPlan plan{order.call, S_OK, order.hang, {}, {}};
    if (order.what.starts_with(L"0x"))
        plan.result = static_cast<HRESULT>(std::wcstoul(order.what.c_str(), nullptr, 16));
    else if (!order.what.empty() && order.hang == 0)
        (order.after ? plan.after : plan.before) = FindEvent(session, order.what);
    TakeLines();
    TheCallPoints().Start(std::move(plan));
    size_t number = 0;
    for (const auto& step : scenario.steps) {
        const std::wstring name = L"step " + std::to_wstring(++number);
        if (number > 1 && session.IsOver()) break;
        Timed(outcome, order, name.c_str(), [&] { step(session); });
    }
    Timed(outcome, order, L"the end", [&] { (session.*scenario.end)(); });
    outcome.calls = TheCallPoints().Count();
    outcome.met = TheCallPoints().Met();
    const bool failed = order.what.starts_with(L"0x");
    CheckLeftovers(engine, session, outcome, failed && outcome.met.find(L".Disconnect") != std::wstring::npos,
                   failed && outcome.met.find(L".Unadvise") != std::wstring::npos);
    TheCallPoints().Start({});
    session.Destroy();
    TheCallPoints().Watch(nullptr);
    CheckUnload(outcome);
    if (!outcome.damaged && order.call != 0) CheckNextOutlook(engine, outcome);
    static size_t drawings = 0;  // windows that show for the first time leave some for the next time
    const size_t before = std::exchange(drawings, Resources::GdiObjects());
    if (order.call != 0 && drawings > before)
        outcome.shortfalls.push_back(std::to_wstring(drawings - before) + L" GDI objects left");
    return outcome;
}

}  // namespace beacon::standin
