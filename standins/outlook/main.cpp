#include <windows.h>

#include <cstdio>
#include <vector>

#include "com/module.h"
#include "common/program.h"
#include "outlook/journal.h"
#include "outlook/outlook.h"
#include "outlook/script_runner.h"
#include "outlook/servers.h"

namespace beacon::standin {
namespace {

void Tell(const std::wstring& text) {
    std::fprintf(stderr, "%s\n", ToUtf8(text).c_str());
    std::fflush(stderr);
}

// A message box runs a loop of its own, in which the script has to go on: someone must answer the box.
ScriptRunner* modalRunner = nullptr;

void CALLBACK StepInModalLoop(HWND, UINT, UINT_PTR, DWORD) {
    if (modalRunner != nullptr && FindWindowW(L"#32770", nullptr) != nullptr) com::Method([] { modalRunner->Step(); });
}

int Run(const Options& options) {
    Outlook outlook(options, options.store.empty() ? StoreFile{} : StoreFile::Read(options.store));
    ScriptRunner runner(outlook);
    if (!options.script.empty()) runner.ReadFile(options.script);
    if (options.script.empty() || options.interactive) runner.ReadStandardInput();
    const Servers servers(outlook.ApplicationObject(), !options.noMapiReader);
    modalRunner = &runner;
    SetTimer(nullptr, 0, 50, &StepInModalLoop);
    outlook.Start();
    while (!outlook.Ended()) {
        PumpMessages();
        outlook.Step();
        runner.Step();
        if (outlook.Ended()) break;
        const HANDLE arrived = runner.LinesArrived();
        const DWORD patience = outlook.IsQuitting() ? 10 : runner.Patience();
        MsgWaitForMultipleObjectsEx(1, &arrived, patience, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
    const int code = runner.Failed() && outlook.ExitCode() == 0 ? 2 : outlook.ExitCode();
    Say(L"end " + std::to_wstring(code));
    outlook.Bars().Save();
    // Held references may outlive everything here, so nothing is torn down that they could still reach.
    ExitProcess(static_cast<UINT>(code));
}

int Main() {
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    try {
        const Options options = Options::Parse(Arguments());
        if (options.help) {
            Say(Options::Usage());
            return 0;
        }
        com::Check(OleInitialize(nullptr));
        return Run(options);
    } catch (const UsageError& error) {
        Tell(error.text);
        Tell(Options::Usage());
    } catch (...) {
        Tell(L"standin_outlook: " + com::CurrentError().description);
    }
    return 1;
}

}  // namespace
}  // namespace beacon::standin

int main() { return beacon::standin::Main(); }
