#include "tests/faults/run.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "common/call_points.h"
#include "common/words.h"
#include "outlook/observation/counted_reader.h"
#include "outlook/observation/exit_report.h"
#include "outlook/observation/resources.h"
#include "tests/faults/fault_events.h"

namespace beacon::standin {
namespace {

constexpr DWORD kLongestStep = 2000;  // ms; a tenth of that is usual on a busy machine
constexpr wchar_t kLibrary[] = L"BeaconOLKAdapter.dll";
constexpr wchar_t kProofItem[] = L"MFour";

void Expect(bool holds, std::vector<std::wstring>& list, const std::wstring& text) {
    if (!holds) list.push_back(text);
}

/// Runs a step; fails if it blocks the thread for too long.
template <class Step>
void Timed(RunOutcome& outcome, DWORD hang, const std::wstring& name, Step&& step) {
    const ULONGLONG begin = GetTickCount64();
    step();
    const ULONGLONG took = GetTickCount64() - begin;
    if (took > hang + kLongestStep)
        outcome.failures.push_back(L"thread blocked for " + std::to_wstring(took) + L" ms in " + name);
}

/// What a failed call may leave behind.
struct Excuses {
    bool disconnectFailed = false;
    bool unadviseFailed = false;
};

void CheckLeftovers(InProcessEngine& engine, OutlookSession& session, RunOutcome& outcome, Excuses excuses) {
    const auto list = [&](bool isUnavoidable, const wchar_t* what, const std::wstring& left) {
        if (!left.empty()) (isUnavoidable ? outcome.unavoidable : outcome.failures).push_back(what + left);
    };
    list(session.QuitIsUnheard(), L"held after Quit: ", session.HeldAfterQuit());
    std::wstring handles;
    for (const long handle : engine.Handles()) handles += L" " + std::to_wstring(handle);
    list(excuses.disconnectFailed, L"engine holds", handles);
    engine.LetGo();
    list(false, L"references: ", ExitReport::References());
    list(excuses.unadviseFailed, L"sinks: ", ExitReport::Sinks());
    list(false, L"PROP_OLK: ", ExitReport::Properties(session.Program()));
    outcome.damaged = CountedReader::Alive() != 0;
    Expect(!outcome.damaged, outcome.failures, L"property reader left");
    for (const auto& addin : session.Program().Addins().Addins())
        list(false, L"windows: ", ExitReport::WindowsOf(*addin));
}

void CheckUnload(RunOutcome& outcome) {
    if (const HMODULE library = GetModuleHandleW(kLibrary)) {
        const std::wstring answer = ExitReport::UnloadAnswer(library);
        Expect(answer == L"S_OK", outcome.failures, L"DllCanUnloadNow: " + answer);
    }
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);  // the first call may only mark the library
    const bool isLoaded = GetModuleHandleW(kLibrary) != nullptr;
    Expect(!isLoaded, outcome.failures, L"library still loaded");
    outcome.damaged = outcome.damaged || isLoaded;
}

/// Ends the session; nothing may stay behind.
void EndSession(InProcessEngine& engine, OutlookSession& session, RunOutcome& outcome, Excuses excuses) {
    CheckLeftovers(engine, session, outcome, excuses);
    TheCallPoints().Start({});
    TheCallPoints().SetListener({});
    session.Destroy();
    TheCallPoints().Watch(nullptr);
    CheckUnload(outcome);
}

/// Outlook starts again in the same process, without faults: the engine gets the same document as in the first run.
void CheckNextOutlook(InProcessEngine& engine, RunOutcome& outcome) {
    static std::wstring expected;
    OutlookSession session(engine, L"", false);
    session.Start();
    const std::wstring document = session.DocumentOf(kProofItem);
    if (expected.empty()) expected = document;
    Expect(!document.empty() && document == expected, outcome.failures, L"the next Outlook sends no complete document");
    session.Quit();
    EndSession(engine, session, outcome, {});
}

CallFault TakeCallFault(Words& words) {
    CallFault fault;
    fault.call = static_cast<unsigned>(words.TakeNumber(L"call"));
    fault.what = words.Take(L"result or event");
    if (fault.what == L"hang") fault.hang = static_cast<unsigned>(words.TakeNumber(L"milliseconds"));
    fault.after = words.Accept(L"after");
    if (!fault.after) words.Accept(L"before");
    return fault;
}

void Plan(OutlookSession& session, const CallFault& fault) {
    CallPlan plan{fault.call, S_OK, fault.hang, {}, {}};
    if (fault.IsResult()) {
        plan.result = static_cast<HRESULT>(std::wcstoul(fault.what.c_str(), nullptr, 16));
        plan.failsAfterEffect = fault.after;
    } else if (fault.hang == 0) {
        (fault.after ? plan.after : plan.before) = FindEvent(session, fault.what);
    }
    TheCallPoints().Add(std::move(plan));
}

}  // namespace

RunOrder RunOrder::Parse(const std::wstring& line) {
    Words words(line);
    RunOrder order;
    order.scenario = words.Take(L"scenario");
    if (const size_t slash = order.scenario.find(L"/log"); slash != std::wstring::npos) {
        order.logging = true;
        order.scenario.resize(slash);
    }
    if (FindScenario(order.scenario) == nullptr) throw ScriptError{L"there is no scenario \"" + order.scenario + L"\""};
    for (bool more = !words.AtEnd(); more; more = words.Accept(L"+")) {
        const bool memory = words.Accept(L"memory");
        if (memory || words.Accept(L"system")) {
            order.refused.kind = memory ? Resource::Memory : Resource::System;
            order.refused.first = static_cast<unsigned>(words.TakeNumber(L"number of the request"));
            if (words.NextIsNumber()) order.refused.count = static_cast<unsigned>(words.TakeNumber(L"requests"));
        } else {
            order.calls.push_back(TakeCallFault(words));
        }
    }
    words.End();
    return order;
}

RunOutcome CarryOut(InProcessEngine& engine, const RunOrder& order) {
    const Scenario& scenario = *FindScenario(order.scenario);
    RunOutcome outcome;
    OutlookSession session(engine, scenario.toolbar, order.logging);
    TakeLines();
    TheCallPoints().Start({});
    DWORD hang = 0;
    for (const CallFault& fault : order.calls) {
        Plan(session, fault);
        hang += fault.hang;
    }
    ResourcePoints::Start(order.refused);
    size_t number = 0;
    for (const auto& step : scenario.steps) {
        const std::wstring name = L"step " + std::to_wstring(++number);
        if (number > 1 && session.IsOver()) break;
        Timed(outcome, hang, name, [&] { step(session); });
    }
    Timed(outcome, hang, L"the end", [&] { (session.*scenario.end)(); });
    ResourcePoints::Stop();
    outcome.calls = TheCallPoints().Count();
    outcome.memory = ResourcePoints::Count(Resource::Memory);
    outcome.system = ResourcePoints::Count(Resource::System);
    outcome.met = TheCallPoints().Met() + ResourcePoints::Met();
    Expect(!ResourcePoints::ExceptionLeft(), outcome.failures, L"an exception has left the DLL");
    const bool failed = std::ranges::any_of(order.calls, [](const CallFault& fault) {
        return (fault.IsResult() && !fault.after) || fault.what == L"engine-rejects";
    });
    const auto met = [&](const wchar_t* member) { return failed && outcome.met.find(member) != std::wstring::npos; };
    EndSession(engine, session, outcome, {met(L".Disconnect"), met(L".Unadvise")});
    if (!outcome.damaged && order.HasFault()) CheckNextOutlook(engine, outcome);
    static size_t drawings = 0;  // a window that shows for the first time leaves some for the next time
    const size_t before = std::exchange(drawings, Resources::GdiObjects());
    if (order.HasFault() && drawings > before)
        outcome.failures.push_back(std::to_wstring(drawings - before) + L" GDI objects left");
    return outcome;
}

}  // namespace beacon::standin
