#include <windows.h>

#include <utility>

#include "com/class_factory.h"
#include "com/module.h"
#include "commands.h"
#include "common/program.h"
#include "controller.h"
#include "options.h"
#include "registration.h"

namespace beacon::standin {
namespace {

constexpr int kCommandFailed = 1;
constexpr int kWrongOptions = 2;
constexpr int kNotStarted = 3;

constexpr uint64_t kGoodbyeTime = 3000;       // for the clients' good-byes at quit
constexpr uint64_t kUnusedServerTime = 5000;  // a server started by COM ends when unused for so long
constexpr uint64_t kTakeOverTime = 2000;      // for the table to forget an engine that was killed

std::shared_ptr<CommandSource> g_input;

BOOL CALLBACK OnConsoleEvent(DWORD) {
    g_input->Add(L"quit");
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

std::wstring DefaultBitmaps() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.find_last_of(L'\\')) + L"\\bitmaps";
}

void WaitAndPump(HANDLE wake, DWORD milliseconds) {
    MsgWaitForMultipleObjectsEx(wake == nullptr ? 0 : 1, &wake, milliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    PumpMessages();
}

// Started by COM for the toolbar alone: serves until nobody uses it any more.
void ServeToolbarOnly(const ToolbarSettings& settings, Monitor& monitor) {
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

void RunUntilQuit(Engine& engine, const std::vector<std::shared_ptr<CommandSource>>& sources, HANDLE wake,
                  bool untilEof) {
    const CommandSource::Runner runner = [&](const std::wstring& line, CommandSource& source) {
        if (!engine.quit) RunCommand(engine, line, source);
    };
    while (!engine.quit) {
        bool waiting = false;
        bool done = true;
        for (const auto& source : sources) {
            source->Run(engine.monitor, runner);
            waiting = waiting || source->IsWaiting();
            done = done && source->IsDone();
        }
        if (engine.quit || (untilEof && done)) return;
        WaitAndPump(wake, waiting ? 10 : 200);
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

int Serve(const Options& options, Output& output, Monitor& monitor, ToolbarSettings& settings, Clients& clients,
          Mischief& mischief) {
    const HANDLE wake = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    g_input = std::make_shared<CommandSource>(wake);
    const auto script = std::make_shared<CommandSource>(wake);
    if (!options.script.empty() && !ReadScript(*script, options.script)) {
        output.Print(L"standin_engine: cannot read the script " + options.script);
        return kNotStarted;
    }
    script->End();

    RunningController running;
    Engine engine{monitor, clients, mischief, settings, running, MakeController(clients, monitor)};
    ClassObject object;
    com::Check(RegisterController());
    if (options.toolbar) {
        com::Check(RegisterToolbar());
        object.Register(kToolbarConfigClass,
                        com::MakeClassFactory([&] { return MakeToolbarConfig(settings, monitor); }));
    }
    if (!EnterTable(engine)) return kNotStarted;
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
    monitor.Event(L"ready");
    ReadStandardInput(g_input);
    RunUntilQuit(engine, {script, g_input}, wake, options.untilEof);
    SayGoodbye(engine);
    CoDisconnectObject(engine.controller.Get(), 0);
    clients.Clear();
    return monitor.HadError() ? kCommandFailed : 0;
}

int Run(const Options& options) {
    Output output;
    if (!options.error.empty()) {
        output.Print(L"standin_engine: " + options.error + L"\n\n" + UsageText());
        return kWrongOptions;
    }
    if (options.help) {
        output.Print(UsageText());
        return 0;
    }
    if (!options.log.empty() && !output.OpenLog(options.log)) {
        output.Print(L"standin_engine: cannot write the log " + options.log);
        return kNotStarted;
    }
    Monitor monitor(output, {.raw = options.raw, .trace = options.trace});
    ToolbarSettings settings;
    settings.bitmaps = options.bitmaps.empty() ? DefaultBitmaps() : options.bitmaps;
    settings.contextMode = options.contextMode;
    settings.engineState = options.engineState;
    // Calls may arrive until the apartment goes: what objects refer to outlives it.
    Mischief mischief;
    Clients clients(monitor, mischief);
    const Apartment apartment;
    if (options.unregister) {
        com::Check(UnregisterAll());
    } else if (options.registerOnly) {
        com::Check(RegisterController());
        com::Check(RegisterToolbar());
    } else if (options.embedding) {
        ServeToolbarOnly(settings, monitor);
    } else {
        if (!settings.engineState) settings.engineState = 3;
        return Serve(options, output, monitor, settings, clients, mischief);
    }
    return 0;
}

}  // namespace
}  // namespace beacon::standin

int main() {
    beacon::com::SetModuleInstance(GetModuleHandleW(nullptr));
    int code = beacon::standin::kNotStarted;
    try {
        code = beacon::standin::Run(beacon::standin::ParseOptions(beacon::standin::Arguments()));
    } catch (...) {
        const beacon::com::Error error = beacon::com::CurrentError();
        beacon::standin::Output().Print(L"standin_engine: " + error.description + L" (" +
                                        std::to_wstring(error.number) + L")");
    }
    // The reader of standard input may still wait there; it must not see statics being destroyed.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
    return code;
}
