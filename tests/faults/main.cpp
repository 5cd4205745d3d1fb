// Runs scenarios of the stand-in Outlook with faults in the adapter's calls and in its requests for resources. Prints
// the events that can happen inside a call, and the outcome of each scenario without faults. Then reads orders from
// standard input, one a line, until one damages the process.
#include <windows.h>

#include <csignal>
#include <iostream>
#include <string>

#include "com/module.h"
#include "com/text.h"
#include "common/call_points.h"
#include "common/journal.h"
#include "common/program.h"
#include "common/words.h"
#include "tests/faults/fault_events.h"
#include "tests/faults/resource_points.h"
#include "tests/faults/run.h"
#include "tests/faults/scenarios.h"

namespace beacon::standin {
namespace {

void Print(const std::wstring& line) { std::cout << ToUtf8(line) << std::endl; }

std::wstring Joined(const std::vector<std::wstring>& parts) {
    std::wstring text;
    for (const std::wstring& part : parts) text += (text.empty() ? L"" : L"; ") + part;
    return text;
}

/// One line, its fields separated by tabs: state, milliseconds, calls, memory requests, system requests, what had
/// faults, failures, what was left unavoidably.
RunOutcome Report(InProcessEngine& engine, const std::wstring& order, const std::wstring& prefix) {
    const ULONGLONG begin = GetTickCount64();
    const RunOutcome outcome = CarryOut(engine, order);
    const wchar_t* const state = outcome.damaged ? L"damaged" : outcome.failures.empty() ? L"good" : L"failed";
    Print(prefix + state + L"\t" + std::to_wstring(GetTickCount64() - begin) + L"\t" + std::to_wstring(outcome.calls) +
          L"\t" + std::to_wstring(outcome.memory) + L"\t" + std::to_wstring(outcome.system) + L"\t" + outcome.met +
          L"\t" + Joined(outcome.failures) + L"\t" + Joined(outcome.unavoidable));
    return outcome;
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
    const RunOutcome outcome = Report(engine, words.TakeRest(), {});
    for (const std::wstring& said : TakeLines())
        if (showsLines) Print(L"    " + said);
    return !outcome.damaged;
}

void Serve() {
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    com::Check(OleInitialize(nullptr));
    CollectLines();
    PrepareMachine();
    ResourcePoints::Install();
    SetUnhandledExceptionFilter(OnCrash);
    std::signal(SIGABRT, [](int) { PrintEnd(L"abort"); });
    InProcessEngine engine;
    for (const std::wstring& name : EventNames()) Print(L"event\t" + name);
    // The first run of each kind leaves what the system keeps for later ones.
    for (const Scenario& scenario : Scenarios())
        for (const wchar_t* const logging : {L"", L"/log"}) {
            const std::wstring name = std::wstring(scenario.name) + logging;
            Report(engine, name, name + L"\t");
        }
    Print(L"ready");
    for (std::string line; std::getline(std::cin, line) && Run(engine, FromUtf8(line));) continue;
}

}  // namespace
}  // namespace beacon::standin

int main() {
    using namespace beacon;
    try {
        standin::Serve();
    } catch (const standin::ScriptError& error) {
        standin::PrintError(L"fault_harness: " + error.text);
    } catch (...) {
        standin::PrintError(L"fault_harness: " + std::wstring(com::CurrentError().Description()));
    }
    // Objects that a run has left may refer to anything: nothing is destroyed.
    TerminateProcess(GetCurrentProcess(), 0);
}
