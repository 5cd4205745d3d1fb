#include <windows.h>

#include <atomic>

#include "com/class_factory.h"
#include "com/module.h"
#include "common/command_line.h"
#include "common/journal.h"
#include "common/program.h"
#include "engine/commands.h"
#include "engine/controller.h"
#include "engine/options.h"
#include "engine/registration.h"

namespace beacon::standin {
namespace {

constexpr int kCommandFailed = 1;
constexpr int kWrongOptions = 2;
constexpr int kNotStarted = 3;

constexpr uint64_t kGoodbyeTime = 3000;       // for the clients' good-byes at quit
constexpr uint64_t kUnusedServerTime = 5000;  // a server started by COM ends when unused for so long
constexpr uint64_t kTakeOverTime = 2000;      // for the table to forget an engine that was killed

std::atomic<bool> g_interrupted = false;

BOOL CALLBACK OnConsoleEvent(DWORD) {
    g_interrupted = true;
    // The system ends the process when this returns for a closed console; the main thread ends it first.
    Sleep(static_cast<DWORD>(kGoodbyeTime) + 1000);
    return TRUE;
}

class Apartment {
public:
    Apartment() { com::Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }

    ~Apartment() { CoUninitialize(); }
};

class ClassObject {
public:
    void Register(REFCLSID id, const com::ComPtr<IClassFactory>& factory) {
        com::Check(CoRegisterClassObject(id, factory.Get(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
    }

    ~ClassObject() {
        if (cookie_ != 0) CoRevokeClassObject(cookie_);
    }

private:
    DWORD cookie_ = 0;
};

// Started by COM for the toolbar alone: serves until nobody uses it any more.
void ServeToolbarOnly(ToolbarSettings& settings, Monitor& monitor) {
    ClassObject object;
    object.Register(kToolbarConfigClass, com::MakeClassFactory([&] { return MakeToolbarConfig(settings, monitor); }));
    const long unused = com::LiveThings();
    for (uint64_t since = GetTickCount64(); GetTickCount64() - since < kUnusedServerTime;) {
        WaitAndPump(nullptr, 200);
        if (com::LiveThings() > unused) since = GetTickCount64();
    }
}

bool EnterTable(Engine& engine) {
    const uint64_t start = GetTickCount64();
    while (IsControllerRunning()) {
        if (GetTickCount64() - start > kTakeOverTime) {
            engine.monitor.Error(L"another engine is already running");
            return false;
        }
        WaitAndPump(nullptr, 50);
    }
    const HRESULT entered = engine.running.Enter(engine.controller.Get());
    if (FAILED(entered)) engine.monitor.Error(L"the running object table refuses the controller");
    return SUCCEEDED(entered);
}

void RunUntilQuit(Engine& engine, EngineConsole& console, bool untilEof) {
    while (!engine.quit && !g_interrupted && !(untilEof && console.IsDone())) {
        if (!console.Step()) WaitAndPump(console.Arrived(), console.Patience());
        engine.clients.DropEnded();
    }
}

// Clients connect again when they find a controller, so the table comes first. Their last word is to the controller.
void SayGoodbye(Engine& engine) {
    engine.running.Leave();
    SendExitToAll(engine);
    const uint64_t start = GetTickCount64();
    while (GetTickCount64() - start < kGoodbyeTime && !engine.clients.Connected(Side::Controller, {}).empty()) {
        WaitAndPump(nullptr, 20);
        engine.clients.DropEnded();
    }
    engine.monitor.Event(L"bye");
}

int Serve(const Options& options, Monitor& monitor, ToolbarSettings& settings, Clients& clients,
          InjectedFaults& faults) {
    RunningController running;
    Engine engine{monitor, clients, faults, settings, running, MakeController(clients, monitor)};
    EngineConsole console(engine);
    if (!options.script.empty()) console.ReadScript(options.script);
    ClassObject object;
    RegisterController();
    if (options.toolbar) {
        RegisterToolbar();
        object.Register(kToolbarConfigClass,
                        com::MakeClassFactory([&] { return MakeToolbarConfig(settings, monitor); }));
    }
    if (!EnterTable(engine)) return kNotStarted;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
    monitor.Event(L"ready");
    console.ReadStandardInput();
    RunUntilQuit(engine, console, options.untilEof);
    SayGoodbye(engine);
    CoDisconnectObject(engine.controller.Get(), 0);
    clients.Clear();
    return monitor.HadError() ? kCommandFailed : 0;
}

int Run(const Options& options) {
    if (options.help) {
        TheJournal().Print(Options::Usage());
        return 0;
    }
    if (!options.log.empty() && !TheJournal().OpenLog(options.log)) {
        PrintError(L"standin_engine: cannot write the log " + options.log);
        return kNotStarted;
    }
    Monitor monitor(options.raw);
    ToolbarSettings settings;
    settings.bitmaps = ProgramFolder() + L"\\bitmaps";
    settings.engineState = options.engineState;
    // Calls may arrive until the apartment goes: what objects refer to outlives it.
    InjectedFaults faults;
    Clients clients(monitor, faults);
    const Apartment apartment;
    if (options.unregister) {
        UnregisterAll();
    } else if (options.registerOnly) {
        RegisterController();
        RegisterToolbar();
    } else if (options.embedding) {
        ServeToolbarOnly(settings, monitor);
    } else {
        return Serve(options, monitor, settings, clients, faults);
    }
    return 0;
}

}  // namespace
}  // namespace beacon::standin

int main() {
    using namespace beacon::standin;
    beacon::com::SetModuleInstance(GetModuleHandleW(nullptr));
    int code = kNotStarted;
    try {
        code = Run(Options::Parse(Arguments()));
    } catch (const UsageError& error) {
        PrintError(L"standin_engine: " + error.text + L"\n\n" + Options::Usage());
        code = kWrongOptions;
    } catch (...) {
        const beacon::com::Error error = beacon::com::CurrentError();
        PrintError(L"standin_engine: " + std::wstring(error.Description()) + L" (" + std::to_wstring(error.number) +
                   L")");
    }
    // The reader of standard input may still wait there; it must not see statics being destroyed.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    return code;
}
