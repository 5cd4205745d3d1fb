// Clients of a stand-in engine that runs as a program of its own.

#include <filesystem>
#include <fstream>

#include "tests/fakes/child_process.h"
#include "tests/fakes/fake_dispatcher.h"
#include "tests/fakes/pump.h"

namespace beacon::test {
namespace {

using com::ComPtr;
using testing::ElementsAre;

/// The controller in the running object table, by its name; empty when there is none.
com::Object FindController() {
    CLSID id;
    ComPtr<IUnknown> found;
    ComPtr<IDispatch> dispatch;
    if (FAILED(CLSIDFromProgID(L"BeaconController.Application", &id))) return {};
    if (FAILED(GetActiveObject(id, nullptr, &found)) || FAILED(found.As(&dispatch))) return {};
    return com::Object(dispatch);
}

/// One client window, connected as the adapter connects. At its end it disconnects, without exit.
class Client {
public:
    /// Finds the controller and makes both dispatchers and sinks; throws com::Error.
    explicit Client(long window) : handle(window) {
        controllerSink_->id = engineSink_->id = handle;
        const com::Object found = FindController();
        controller = Dispatcher(found, L"AppToController");
        engine = Dispatcher(found.CallObject(L"GetEngineInterface", {L"AppToEngine", handle}), L"AppToEngine");
    }

    ~Client() {
        Disconnect(engine);  // fails when the engine has ended
        Disconnect(controller);
        CoDisconnectObject(controllerSink_.Get(), 0);
        CoDisconnectObject(engineSink_.Get(), 0);
    }

    void Connect() {
        _variant_t result;
        com::Check(controller->Connect(_bstr_t(L"ControllerToApp"), controllerSink_.Get(), handle, &result));
        com::Check(engine->Connect(_bstr_t(L"AppToEngine"), engineSink_.Get(), handle, &result));
        Message(L"<hello id=\"" + std::to_wstring(handle) + L"\"/>");
    }

    void Message(const std::wstring& text) {
        _variant_t result;
        com::Check(engine->PutMessage(_bstr_t(text.c_str()), nullptr, handle, &result));
    }

    void Disconnect(const ComPtr<IMessageDispatch>& dispatcher) const {
        _variant_t result;
        dispatcher->Disconnect(handle, &result);
    }

    /// The engine's number of this link.
    long LinkId() const {
        LONG id = -1;
        engine->get_id(&id);
        return id;
    }

    const LONG handle;
    std::vector<std::wstring> toController;  // what the sinks have heard, such as "PutControl <EXIT now="1"/> 5"
    std::vector<std::wstring> toEngine;
    ComPtr<IMessageDispatch> controller;
    ComPtr<IMessageDispatch> engine;

private:
    static ComPtr<FakeDispatcher> Sink(std::vector<std::wstring>& calls) {
        return com::MakeObject<FakeDispatcher>([&calls](const std::wstring& member, BSTR text, auto*, long id) {
            if (text != nullptr) calls.push_back(member + L" " + com::ToText(text) + L" " + std::to_wstring(id));
        });
    }

    ComPtr<IMessageDispatch> Dispatcher(const com::Object& owner, const wchar_t* channel) const {
        ComPtr<IMessageDispatch> dispatcher;
        com::Check(owner.CallObject(L"GetMessageInterface", {channel, handle})
                       .Get()
                       ->QueryInterface(IID_PPV_ARGS(&dispatcher)));
        return dispatcher;
    }

    const ComPtr<FakeDispatcher> controllerSink_ = Sink(toController);
    const ComPtr<FakeDispatcher> engineSink_ = Sink(toEngine);
};

class EngineProcess : public ChildProcess {
public:
    explicit EngineProcess(const std::wstring& options = L"")
        : ChildProcess(L"standin_engine.exe", L"--raw " + options) {
        Wait("# ready", 20000);
    }

    // In order where it can: a killed server's class object stays in Wine's table and is offered to later clients.
    ~EngineProcess() {
        Command("quit");
        WaitEnd(5000);
    }

    void Command(const std::string& line) { Write(line + "\n"); }
};

DWORD RunEngine(const std::wstring& options) { return ChildProcess(L"standin_engine.exe", options).WaitEnd(); }

class Process : public testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }

    static void TearDownTestSuite() { CoUninitialize(); }
};

class Link : public Process {
protected:
    void TearDown() override {
        engine.Command("quit");
        EXPECT_EQ(engine.WaitEnd(), 0u) << "a command or a client had an error";
    }

    EngineProcess engine;
    _variant_t ignored_;
};

TEST_F(Link, CommandsReachTheSinks) {
    Client client(1);
    client.Connect();
    for (const char* command :
         {"set_autoupdate true # all", "button_click 3 1", "exit 1", "control <A b=\"1, #2\">", "message <C d>",
          "engine_control <E f>", "engine_message <G \xC3\xA9>", "second_connect", "read_id 1"})
        engine.Command(command);
    EXPECT_TRUE(engine.Wait("# sent control AppToController 1 <SET_AUTOUPDATE value=\"true\"/>"));
    EXPECT_TRUE(engine.Wait("# sink_id AppToController 1 2")) << "the number of the second Connect";
    EXPECT_TRUE(engine.Wait("# sink_id AppToEngine 1 2"));
    EXPECT_THAT(client.toController,
                ElementsAre(L"PutControl <SET_AUTOUPDATE value=\"true\"/> 1", L"PutMessage <BUTTON_CLICK id=\"3\"/> 1",
                            L"PutControl <EXIT now=\"1\"/> 1", L"PutControl <A b=\"1, #2\"> 1", L"PutMessage <C d> 1",
                            L"Connect AppToController 2"));
    EXPECT_THAT(client.toEngine, ElementsAre(L"PutControl <E f> 1", L"PutMessage <G é> 1", L"Connect AppToEngine 2"));
}

TEST_F(Link, AClientWhoseProcessEndsIsLost) {
    ChildProcess other(L"standin_outlook.exe", L"--no-addins");  // only for its window
    HWND window = nullptr;
    ASSERT_TRUE(Pump(20000, [&] { return (window = FindWindowW(L"rctrl_renwnd32", nullptr)) != nullptr; }));
    Client client(HandleToLong(window));
    client.Connect();
    other.Kill();
    for (const char* side : {"AppToController ", "AppToEngine "})
        EXPECT_TRUE(engine.Wait(std::string("# lost ") + side + std::to_string(client.handle)));
    engine.Command("clients");
    EXPECT_TRUE(engine.Wait("# no clients"));
}

TEST_F(Link, DeparturesFromTheProtocolAreNamed) {
    Client client(9);
    EXPECT_EQ(client.LinkId(), 0);
    IMessageDispatch& toEngine = *client.engine.Get();
    const _bstr_t hello(L"<hello id=\"9\"/>");
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"9 PutMessage on a dispatcher that is not connected", [&] { client.Message(L"<hello id=\"9\"/>"); }},
        {"9 hello again without exit", [&] { client.Connect(); }},
        {"9 PutMessage: id 10 is not the handle 9 that the dispatcher was asked for with",
         [&] { toEngine.PutMessage(hello, nullptr, 10, &ignored_); }},
        {"9 PutMessage to the controller: messages go to the engine",
         [&] { client.controller->PutMessage(hello, nullptr, 9, &ignored_); }},
        {"9 PutControl to the engine: controls go to the controller",
         [&] { toEngine.PutControl(hello, nullptr, 9, &ignored_); }},
        {"9 Connect: connection type \"Sideways\" instead of \"AppToEngine\"",
         [&] { toEngine.Connect(_bstr_t(L"Sideways"), nullptr, 9, &ignored_); }},
        {"-1 GetMessageInterface: channel \"Nowhere\" instead of \"AppToController\"",
         [] {
             FindController().Call(L"GetMessageInterface", {L"Nowhere", -1L});
         }},
    };
    for (const auto& [fault, act] : cases) {
        act();
        EXPECT_TRUE(engine.Wait(std::string("# fault ") + fault));
    }
    EXPECT_EQ(client.LinkId(), 9);
    client.Disconnect(client.engine);
    EXPECT_EQ(client.LinkId(), 0);
    EXPECT_TRUE(engine.Wait("# note 9 disconnected without exit"));
}

TEST_F(Process, AScriptRunsWhileClientsAreServedAndErrorsAreNamed) {
    std::filesystem::current_path(std::filesystem::temp_directory_path());
    std::ofstream("script.txt", std::ios::binary)
        << "\xEF\xBB\xBF# a comment\r\nwait for \"^message 4 <hello\" 8\nset_autoupdate true 4 # another\n"
           "exit 7\ndisconnect sideways\nno_such\nwait for never 1\n";
    EngineProcess engine(L"--until-eof --script script.txt");
    EXPECT_EQ(RunEngine(L""), 3u) << "a second engine must not start";
    engine.CloseInput();
    Client client(4);
    client.Connect();
    EXPECT_EQ(engine.WaitEnd(), 1u);
    EXPECT_THAT(client.toController,
                ElementsAre(L"PutControl <SET_AUTOUPDATE value=\"true\"/> 4", L"PutControl <EXIT now=\"1\"/> 4"));
    for (const char* error :
         {"exit: no connected client 7", "disconnect: must be controller or engine, not \"sideways\"",
          "unknown command \"no_such\"; \"help\" lists them", "wait: no line matched \"never\" in time"})
        EXPECT_TRUE(engine.Wait(std::string("# error ") + error));
    EXPECT_EQ(RunEngine(L"--state much"), 2u);
}

TEST_F(Process, RegistrationIsMadeAndUndone) {
    EXPECT_EQ(RunEngine(L"--register"), 0u);
    const auto state = [] {
        ComPtr<IToolbarConfig> config;  // COM starts a server for it, which is no engine
        EXPECT_HRESULT_SUCCEEDED(
            CoCreateInstance(__uuidof(ToolbarConfig), nullptr, CLSCTX_LOCAL_SERVER, IID_PPV_ARGS(&config)));
        LONG value = -1;
        if (config) config->get_EngineState(&value);
        return value;
    };
    EXPECT_EQ(state(), 0);
    EXPECT_FALSE(FindController());
    {
        const EngineProcess engine;
        EXPECT_EQ(state(), 3);
    }
    EXPECT_EQ(RunEngine(L"--unregister"), 0u);
    for (const wchar_t* key : {L"Software\\Classes\\BeaconController.Application",
                               L"Software\\Classes\\CLSID\\{78256BD9-A478-4B56-8867-BB0E43D157BF}",
                               L"Software\\Classes\\TypeLib\\{7BA3A72F-9FA5-4C9D-A207-4F5C4F0D4978}\\1.0\\0"}) {
        HKEY open = nullptr;
        EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, &open), ERROR_FILE_NOT_FOUND) << key;
    }
}

}  // namespace
}  // namespace beacon::test
