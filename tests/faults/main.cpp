// Runs scenarios of the stand-in Outlook in which one call of the add-in fails, hangs or is entered again.
#include <windows.h>

#include <iostream>
#include <string>

#include "com/module.h"
#include "com/text.h"
#include "common/call_points.h"
#include "common/journal.h"
#include "common/program.h"
#include "common/words.h"
#include "tests/faults/run.h"

namespace beacon::standin {
namespace {

constexpr wchar_t kUsage[] =
    L"fault_harness calls SCENARIO    the calls of a run in which nothing fails\n"
    L"fault_harness events            what may happen inside a call\n"
    L"fault_harness run SCENARIO CALL RESULT|EVENT [before|after]\n"
    L"fault_harness run SCENARIO CALL hang MS\n"
    L"fault_harness serve             such runs, one a line of standard input, until one damages the process";

void Print(const std::wstring& line) { std::cout << ToUtf8(line) << std::endl; }

std::wstring Joined(const std::vector<std::wstring>& parts) {
    std::wstring text;
    for (const std::wstring& part : parts) text += (text.empty() ? L"" : L"; ") + part;
    return text;
}

/// One line: state, milliseconds, calls, the call met, shortfalls, what is listed apart; tabs between.
RunOutcome Report(InProcessEngine& engine, const RunOrder& order) {
    const ULONGLONG begin = GetTickCount64();
    const RunOutcome outcome = CarryOut(engine, order);
    const wchar_t* const state = outcome.damaged ? L"damaged" : outcome.shortfalls.empty() ? L"good" : L"short";
    Print(std::wstring(state) + L"\t" + std::to_wstring(GetTickCount64() - begin) + L"\t" +
          std::to_wstring(outcome.calls) + L"\t" + outcome.met + L"\t" + Joined(outcome.shortfalls) + L"\t" +
          Joined(outcome.apart));
    return outcome;
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
    InProcessEngine engine;
    for (const Scenario& scenario : Scenarios()) CarryOut(engine, RunOrder::Parse(std::wstring(scenario.name) + L" 0"));
    if (command == L"serve") {
        for (std::string line; std::getline(std::cin, line);)
            if (Report(engine, RunOrder::Parse(FromUtf8(line))).damaged) return 1;
        return 0;
    }
    if (command == L"calls") {
        TheCallPoints().SetListener(
            [](unsigned number, const std::wstring& name) { Print(std::to_wstring(number) + L" " + name); });
        rest += L" 0";
    }
    const RunOutcome outcome = Report(engine, RunOrder::Parse(rest));
    for (const std::wstring& line : TakeLines()) Print(L"    " + line);
    return outcome.shortfalls.empty() ? 0 : 1;
}

int Main() {
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    try {
        return Run(Arguments());
    } catch (const ScriptError& error) {
        Complain(L"fault_harness: " + error.text);
    } catch (...) {
        Complain(L"fault_harness: " + com::CurrentError().description);
    }
    return 2;
}

}  // namespace
}  // namespace beacon::standin

int main() {
    const int code = beacon::standin::Main();
    // What a run has left may refer to anything: nothing is torn down.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    return code;
}
