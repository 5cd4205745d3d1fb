#include "tests/faults/run.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "common/call_points.h"
#include "common/words.h"
#include "outlook/observation/counted_reader.h"
#include "outlook/observation/exit_report.h"
#include "outlook/observation/resources.h"
#include "tests/faults/resource_points.h"
#include "tests/faults/scenarios.h"

namespace beacon::standin {
namespace {

constexpr DWORD kLongestStep = 2000;                         // ms; a tenth of that is usual on a busy machine
constexpr size_t kLostHandles = sizeof(void*) == 8 ? 2 : 6;  // by Wine in the two loads of the adapter
constexpr wchar_t kLibrary[] = L"BeaconOLKAdapter.dll";
constexpr wchar_t kProofItem[] = L"Four";

template <class List>
const auto& Named(const std::wstring& name, const List& list) {
    const auto found = std::ranges::find_if(list, [&](const auto& one) { return name == one.name; });
    if (found == list.end()) throw ScriptError{L"there is no scenario or event \"" + name + L"\""};
    return *found;
}

void Add(std::wstring& list, const std::wstring& text) { list += (list.empty() ? L"" : L"; ") + text; }

/// Adds a failure unless this holds.
void Expect(bool holds, RunOutcome& outcome, const std::wstring& failure) {
    if (!holds) Add(outcome.failures, failure);
}

/// Runs a step; fails if it blocks the thread for too long.
void Timed(RunOutcome& outcome, DWORD hang, const std::wstring& name, const Action& step, OutlookSession& session) {
    const ULONGLONG begin = GetTickCount64();
    step(session);
    session.Pump();
    const ULONGLONG took = GetTickCount64() - begin;
    Expect(took <= hang + kLongestStep, outcome, L"thread blocked for " + std::to_wstring(took) + L" ms in " + name);
}

/// Ends the session; nothing may stay behind, except what only the failed calls could have removed.
void EndSession(OutlookSession& session, RunOutcome& outcome, bool disconnectFailed, bool adviseFailed) {
    const auto expectNone = [&](const wchar_t* what, const std::wstring& left, bool isUnavoidable = false) {
        if (!left.empty()) Add(isUnavoidable ? outcome.unavoidable : outcome.failures, what + left);
    };
    expectNone(L"held after Quit: ", session.HeldAfterQuit(), session.QuitIsUnheard());
    std::wstring handles;
    for (const long handle : session.Engine().clients.Handles()) handles += L" " + std::to_wstring(handle);
    expectNone(L"engine holds", handles, disconnectFailed);
    for (const Side side : {Side::Controller, Side::Engine})
        session.Engine().Each(side, [](MessageChannel& channel) { channel.DropSink(false); });
    expectNone(L"references: ", ExitReport::References());
    expectNone(L"sinks: ", ExitReport::Sinks(), adviseFailed);
    expectNone(L"PROP_OLK: ", ExitReport::Properties(session.Program()));
    const bool readerIsLeft = CountedReader::Alive() != 0;
    Expect(!readerIsLeft, outcome, L"property reader left");
    for (const auto& addin : session.Program().Addins().Addins())
        expectNone(L"windows: ", ExitReport::WindowsOf(*addin));
    TheCallPoints().Start({});
    TheCallPoints().SetListener({});
    session.Destroy();
    TheCallPoints().Watch(nullptr);
    if (const HMODULE library = GetModuleHandleW(kLibrary)) {
        const std::wstring answer = ExitReport::UnloadAnswer(library);
        Expect(answer == L"S_OK", outcome, L"DllCanUnloadNow: " + answer);
    }
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);  // the first call may only mark the library
    const bool isLoaded = GetModuleHandleW(kLibrary) != nullptr;
    Expect(!isLoaded, outcome, L"library still loaded");
    outcome.damaged = readerIsLeft || isLoaded;
}

/// Outlook starts again in the same process, without faults: the engine gets the same document as in the first run.
void CheckNextOutlook(InProcessEngine& engine, RunOutcome& outcome) {
    static std::wstring expected;
    OutlookSession session(engine, L"", false);
    session.Start();
    const std::wstring document = session.DocumentOf(kProofItem);
    if (expected.empty()) expected = document;
    Expect(!document.empty() && document == expected, outcome, L"the next Outlook sends no complete document");
    session.Quit();
    EndSession(session, outcome, false, false);
}

struct Faults {
    bool any = false;
    bool failsCalls = false;  // before their effect
    bool failsAfter = false;
    DWORD hang = 0;  // ms, of all calls
    ResourcePlan refused;
};

/// Plans the faults in calls that the words tell.
Faults PlanFaults(OutlookSession& session, Words& words) {
    Faults faults;
    for (faults.any = !words.AtEnd(); !words.AtEnd(); words.Accept(L"+")) {
        const bool memory = words.Accept(L"memory");
        if (memory || words.Accept(L"system")) {
            faults.refused = {memory ? Resource::Memory : Resource::System,
                              static_cast<unsigned>(words.TakeNumber(L"number of the request"))};
            if (words.NextIsNumber()) faults.refused.count = static_cast<unsigned>(words.TakeNumber(L"requests"));
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
            (after ? plan.after : plan.before) = [&session, &event = Named(what, kEvents)] { event.raise(session); };
        }
        faults.hang += plan.hang;
        faults.failsCalls = faults.failsCalls || (isResult && !after) || what == L"engine-rejects";
        faults.failsAfter = faults.failsAfter || plan.failsAfterEffect;
        TheCallPoints().Add(std::move(plan));
    }
    return faults;
}

}  // namespace

RunOutcome CarryOut(InProcessEngine& engine, const std::wstring& order) {
    Words words(order);
    std::wstring name = words.Take(L"scenario");
    const bool logging = name.ends_with(L"/log");
    if (logging) name.resize(name.rfind(L'/'));
    const Scenario& scenario = Named(name, kScenarios);
    RunOutcome outcome;
    OutlookSession session(engine, scenario.toolbar, logging);
    TakeLines();
    TheCallPoints().Start({});
    const Faults faults = PlanFaults(session, words);
    ResourcePoints::Start(faults.refused, !faults.any);
    size_t number = 0;
    for (const Action& step : scenario.steps) {
        if (++number > 1 && session.IsOver()) break;
        Timed(outcome, faults.hang, L"step " + std::to_wstring(number), step, session);
    }
    Timed(outcome, faults.hang, L"the end", scenario.end, session);
    ResourcePoints::Stop();
    outcome.calls = TheCallPoints().Count();
    outcome.memory = ResourcePoints::Count(Resource::Memory);
    outcome.system = ResourcePoints::Count(Resource::System);
    outcome.met = TheCallPoints().Met() + ResourcePoints::Met();
    Expect(!ResourcePoints::ExceptionLeft(), outcome, L"an exception has left the DLL");
    const auto met = [&](bool fails, const wchar_t* member) {
        return fails && outcome.met.find(member) != std::wstring::npos;
    };
    // Without the controller there is no way to tell the engine, and without its cookie none to end a subscription.
    EndSession(session, outcome,
               met(faults.failsCalls, L".Disconnect") || met(faults.failsCalls, L"Controller.QueryInterface"),
               met(faults.failsCalls, L".Unadvise") || met(faults.failsAfter, L".Advise"));
    if (!outcome.damaged && faults.any) CheckNextOutlook(engine, outcome);
    // A first time leaves some for the next time: a window that shows, a thread of COM's.
    static Resources before;
    const Resources now = Resources::Now();
    const auto expectNoMore = [&](const wchar_t* what, size_t earlier, size_t left) {
        if (faults.any && left > earlier) Add(outcome.failures, std::to_wstring(left - earlier) + what);
    };
    expectNoMore(L" GDI objects left", before.gdiObjects, now.gdiObjects);
    expectNoMore(L" kernel handles left", before.handles + kLostHandles, now.handles);
    before = now;
    return outcome;
}

}  // namespace beacon::standin
