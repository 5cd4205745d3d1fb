// Runs scenarios of the stand-in Outlook with faults in the adapter's calls and in its requests for resources.
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

constexpr wchar_t kUsage[] =
    L"fault_harness calls SCENARIO         its calls, by number\n"
    L"fault_harness events                 the events that can happen inside a call\n"
    L"fault_harness run SCENARIO FAULT [+ FAULT]\n"
    L"fault_harness serve                  prints the numbers of calls and requests of each scenario, then reads\n"
    L"                                     such runs from standard input, until one damages the process\n"
    L"SCENARIO/log switches logging on. A FAULT is one of\n"
    L"  CALL RESULT|EVENT [before|after]   the effect of the call\n"
    L"  CALL hang MS\n"
    L"  memory|system NUMBER [COUNT]       refuses COUNT requests (1) from this number on\n";

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

int Run(const std::vector<std::wstring>& arguments) {
    const std::wstring command = arguments.empty() ? L"" : arguments[0];
    std::wstring rest;
    for (size_t i = 1; i < arguments.size(); ++i) rest += arguments[i] + L" ";
    if (command == L"events") {
        for (const std::wstring& name : EventNames()) Print(name);
        return 0;
    }
    if (command != L"calls" && command != L"run" && command != L"serve") {
        Print(kUsage);
        return 2;
    }
    com::Check(OleInitialize(nullptr));
    CollectLines();
    PrepareMachine();
    ResourcePoints::Install();
    SetUnhandledExceptionFilter(OnCrash);
    std::signal(SIGABRT, [](int) { PrintEnd(L"abort"); });
    InProcessEngine engine;
    // The first run of each kind leaves what the system keeps for later ones.
    for (const Scenario& scenario : Scenarios()) {
        for (const wchar_t* const logging : {L"", L"/log"}) {
            const std::wstring name = std::wstring(scenario.name) + logging;
            if (command == L"serve")
                Report(engine, name, name + L"\t");
            else
                CarryOut(engine, name);
        }
    }
    if (command == L"serve") {
        Print(L"ready");
        for (std::string line; std::getline(std::cin, line);)
            if (Report(engine, FromUtf8(line), {}).damaged) return 1;
        return 0;
    }
    if (command == L"calls")
        TheCallPoints().SetListener(
            [](unsigned number, const std::wstring& name) { Print(std::to_wstring(number) + L" " + name); });
    const RunOutcome outcome = Report(engine, rest, {});
    if (command == L"run")
        for (const std::wstring& line : TakeLines()) Print(L"    " + line);
    return outcome.failures.empty() ? 0 : 1;
}

int Main() {
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    try {
        return Run(Arguments());
    } catch (const ScriptError& error) {
        PrintError(L"fault_harness: " + error.text);
    } catch (...) {
        PrintError(L"fault_harness: " + std::wstring(com::CurrentError().Description()));
    }
    return 2;
}

}  // namespace
}  // namespace beacon::standin

int main() {
    const int code = beacon::standin::Main();
    // Objects that a run has left may refer to anything: nothing is destroyed.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    return code;
}
