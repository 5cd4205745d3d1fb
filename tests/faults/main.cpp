// Runs scenarios of the stand-in Outlook with faults in the adapter's calls and in its requests for resources. Prints
// the events that can happen inside a call, and the outcome of each scenario without faults: with the argument "logs"
// also with logging. Then reads orders from standard input, one a line, until one damages the process.
#include <windows.h>

#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "com/error.h"
#include "com/module.h"
#include "common/call_points.h"
#include "common/journal.h"
#include "common/words.h"
#include "tests/faults/resource_points.h"
#include "tests/faults/run.h"
#include "tests/faults/scenarios.h"

namespace beacon::standin {
namespace {

void Print(const std::wstring& line) { std::cout << ToUtf8(line) << std::endl; }

/// State, what had faults, failures, what was left unavoidably, separated by tabs.
std::wstring Text(const RunOutcome& outcome) {
    const std::wstring state = outcome.damaged ? L"damaged" : outcome.failures.empty() ? L"good" : L"failed";
    return state + L"\t" + outcome.met + L"\t" + outcome.failures + L"\t" + outcome.unavoidable;
}

/// How many there are, then those that came by a new path.
std::wstring Numbers(unsigned count, const std::vector<unsigned>& firsts) {
    std::wstring text = std::to_wstring(count);
    for (const unsigned first : firsts) text += L" " + std::to_wstring(first);
    return text;
}

// The end of the process by a crash: what had faults and where it happened, as one line.
void PrintEnd(const std::wstring& what) {
    Print(L"crash\t" + TheCallPoints().Met() + ResourcePoints::Met() + L"\t" + what + L":" + ResourcePoints::Stack());
    TerminateProcess(GetCurrentProcess(), 3);
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
    PrintEnd(ResultText(static_cast<HRESULT>(exception->ExceptionRecord->ExceptionCode)));
    return EXCEPTION_EXECUTE_HANDLER;
}

/// "calls" before an order prints the calls, "run" what the stand-ins have printed. False if the process is damaged.
bool Run(InProcessEngine& engine, const std::wstring& line) {
    Words words(line);
    const bool showsLines = words.Accept(L"run");
    if (words.Accept(L"calls"))
        TheCallPoints().SetListener(
            [](unsigned number, const std::wstring& name) { Print(std::to_wstring(number) + L" " + name); });
    const RunOutcome outcome = CarryOut(engine, words.TakeRest());
    Print(Text(outcome));
    for (const std::wstring& said : TakeLines())
        if (showsLines) Print(L"    " + said);
    return !outcome.damaged;
}

void Serve(bool logs) {
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    com::Check(OleInitialize(nullptr));
    PrepareMachine();
    ResourcePoints::Install();
    SetUnhandledExceptionFilter(OnCrash);
    std::signal(SIGABRT, [](int) { PrintEnd(L"abort"); });
    auto& engine = *new InProcessEngine;
    for (const Event& event : kEvents) Print(std::wstring(L"event\t") + event.name);
    // The first run of each kind leaves what the system keeps for later ones.
    for (const Scenario& scenario : kScenarios)
        for (const wchar_t* const logging : {L"", L"/log"}) {
            if (*logging != L'\0' && !logs) continue;
            const std::wstring name = std::wstring(scenario.name) + logging;
            std::vector<unsigned> calls;
            TheCallPoints().SetListener([&](unsigned number, const std::wstring& call) {
                if (ResourcePoints::IsNewPath(call)) calls.push_back(number);
            });
            const RunOutcome outcome = CarryOut(engine, name);
            Print(name + L"\t" + Numbers(outcome.calls, calls) + L"\t" +
                  Numbers(outcome.memory, ResourcePoints::Firsts(Resource::Memory)) + L"\t" +
                  Numbers(outcome.system, ResourcePoints::Firsts(Resource::System)) + L"\t" + Text(outcome));
        }
    Print(L"ready");
    for (std::string line; std::getline(std::cin, line) && Run(engine, FromUtf8(line));) continue;
}

}  // namespace
}  // namespace beacon::standin

int main(int argc, char**) {
    using namespace beacon;
    try {
        standin::Serve(argc > 1);
    } catch (const standin::ScriptError& error) {
        standin::PrintError(L"fault_harness: " + error.text);
    } catch (...) {
        standin::PrintError(L"fault_harness: " + std::wstring(com::CurrentError().Description()));
    }
    // Objects that a run has left may refer to anything: nothing is destroyed.
    TerminateProcess(GetCurrentProcess(), 0);
}
