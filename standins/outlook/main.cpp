#include <windows.h>

#include <cwchar>

#include "com/module.h"
#include "common/command_line.h"
#include "common/journal.h"
#include "common/program.h"
#include "outlook/commands/script_runner.h"
#include "outlook/observation/counted_reader.h"
#include "outlook/program/outlook.h"

namespace beacon::standin {
namespace {

// A message box runs its own message loop. A timer continues the script there; when Outlook is quitting, it cancels the
// box.
Outlook* modalOutlook = nullptr;
ScriptRunner* modalRunner = nullptr;

BOOL CALLBACK CancelBox(HWND window, LPARAM) {
    wchar_t name[8] = L"";
    GetClassNameW(window, name, 8);
    if (IsWindowVisible(window) && std::wcscmp(name, L"#32770") == 0) PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    return TRUE;
}

void CALLBACK StepInModalLoop(HWND, UINT, UINT_PTR, DWORD) {
    if (modalRunner == nullptr || FindWindowW(L"#32770", nullptr) == nullptr) return;
    com::Method([] { modalRunner->Step(); });
    if (modalOutlook->IsQuitting()) EnumThreadWindows(GetCurrentThreadId(), &CancelBox, 0);
}

int Run(const Options& options) {
    Outlook outlook(options, options.store.empty() ? StoreFile{} : StoreFile::Read(options.store));
    ScriptRunner runner(outlook);
    if (!options.script.empty()) runner.ReadScript(options.script);
    if (options.script.empty() || options.interactive) runner.ReadStandardInput();
    const ReaderServer readerServer;
    modalOutlook = &outlook;
    modalRunner = &runner;
    SetTimer(nullptr, 0, 50, &StepInModalLoop);
    outlook.Start();
    for (PumpMessages(); !outlook.Ended();) {
        outlook.Step();
        runner.Step();
        if (!outlook.Ended()) WaitAndPump(runner.Arrived(), outlook.IsQuitting() ? 10 : runner.Patience());
    }
    const int code = runner.HasFailed() && outlook.ExitCode() == 0 ? 2 : outlook.ExitCode();
    Say(L"end " + std::to_wstring(code));
    outlook.Bars().Save();
    // Add-ins may still reference objects, so nothing is destroyed.
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
        PrintError(L"standin_outlook: " + error.text + L"\n\n" + Options::Usage());
    } catch (...) {
        PrintError(L"standin_outlook: " + std::wstring(com::CurrentError().Description()));
    }
    return 1;
}

}  // namespace
}  // namespace beacon::standin

int main() { return beacon::standin::Main(); }
