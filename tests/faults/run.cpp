#include "tests/faults/run.h"

#include <cwchar>
#include <utility>

#include "common/call_points.h"
#include "common/words.h"
#include "outlook/observation/counted_reader.h"
#include "outlook/observation/exit_report.h"
#include "outlook/observation/resources.h"
#include "tests/faults/fault_events.h"
#include "tests/faults/resource_points.h"
#include "tests/faults/scenarios.h"

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

struct Faults {
    bool any = false;
    bool failsCalls = false;  // before their effect
    DWORD hang = 0;           // ms, of all calls
    ResourcePlan refused;
};

ResourcePlan TakeRefusal(Words& words, Resource kind) {
    ResourcePlan plan{kind};
    plan.first = static_cast<unsigned>(words.TakeNumber(L"number of the request"));
    if (words.NextIsNumber()) plan.count = static_cast<unsigned>(words.TakeNumber(L"requests"));
    return plan;
}

/// Plans the faults in calls that the words tell.
Faults PlanFaults(OutlookSession& session, Words& words) {
    Faults faults;
    faults.any = !words.AtEnd();
    for (bool more = faults.any; more; more = words.Accept(L"+")) {
        const bool memory = words.Accept(L"memory");
        if (memory || words.Accept(L"system")) {
            faults.refused = TakeRefusal(words, memory ? Resource::Memory : Resource::System);
            continue;
        }
        CallPlan plan;
        plan.number = static_cast<unsigned>(words.TakeNumber(L"call"));
        const std::wstring what = words.Take(L"result or event");
        if (what == L"hang") plan.hang = static_cast<DWORD>(words.TakeNumber(L"milliseconds"));
        const bool after = words.Accept(L"after");
        if (!after) words.Accept(L"before");
        const bool isResult = what.starts_with(L"0x");
        if (isResult) {
            plan.result = static_cast<HRESULT>(std::wcstoul(what.c_str(), nullptr, 16));
            plan.failsAfterEffect = after;
        } else if (plan.hang == 0) {
            (after ? plan.after : plan.before) = FindEvent(session, what);
        }
        faults.hang += plan.hang;
        faults.failsCalls = faults.failsCalls || (isResult && !after) || what == L"engine-rejects";
        TheCallPoints().Add(std::move(plan));
    }
    words.End();
    return faults;
}

}  // namespace

RunOutcome CarryOut(InProcessEngine& engine, const std::wstring& order) {
    Words words(order);
    std::wstring name = words.Take(L"scenario");
    const bool logging = name.ends_with(L"/log");
    if (logging) name.resize(name.rfind(L'/'));
    const Scenario& scenario = FindScenario(name);
    RunOutcome outcome;
    OutlookSession session(engine, scenario.toolbar, logging);
    TakeLines();
    TheCallPoints().Start({});
    const Faults faults = PlanFaults(session, words);
    ResourcePoints::Start(faults.refused);
    size_t number = 0;
    for (const auto& step : scenario.steps) {
        const std::wstring stepName = L"step " + std::to_wstring(++number);
        if (number > 1 && session.IsOver()) break;
        Timed(outcome, faults.hang, stepName, [&] { step(session); });
    }
    Timed(outcome, faults.hang, L"the end", [&] { (session.*scenario.end)(); });
    ResourcePoints::Stop();
    outcome.calls = TheCallPoints().Count();
    outcome.memory = ResourcePoints::Count(Resource::Memory);
    outcome.system = ResourcePoints::Count(Resource::System);
    outcome.met = TheCallPoints().Met() + ResourcePoints::Met();
    Expect(!ResourcePoints::ExceptionLeft(), outcome.failures, L"an exception has left the DLL");
    const auto met = [&](const wchar_t* member) {
        return faults.failsCalls && outcome.met.find(member) != std::wstring::npos;
    };
    EndSession(engine, session, outcome, {met(L".Disconnect"), met(L".Unadvise")});
    if (!outcome.damaged && faults.any) CheckNextOutlook(engine, outcome);
    static size_t drawings = 0;  // a window that shows for the first time leaves some for the next time
    const size_t before = std::exchange(drawings, Resources::GdiObjects());
    if (faults.any && drawings > before)
        outcome.failures.push_back(std::to_wstring(drawings - before) + L" GDI objects left");
    return outcome;
}

}  // namespace beacon::standin
