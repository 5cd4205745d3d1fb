// Clients and the toolbar's users against one engine that runs all the while.
#include <gmock/gmock.h>

#include <chrono>
#include <optional>

#include "client.h"
#include "engine_process.h"

namespace beacon::tests {
namespace {

using testing::ElementsAre;

class Link : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
        running.emplace(L"--toolbar --bitmaps C:\\faces --log raw.log");
    }

    static void TearDownTestSuite() {
        running.reset();
        CoUninitialize();
        DeleteFileW(L"raw.log");
    }

    void SetUp() override {
        engine.Command("say begin");
        ASSERT_TRUE(engine.Wait("# say begin"));
        first_ = engine.Lines().size();
    }

    /// What the engine said in this test.
    std::vector<std::string> Said() const { return {engine.Lines().begin() + first_, engine.Lines().end()}; }

    static std::optional<EngineProcess> running;
    EngineProcess& engine = *running;

private:
    std::ptrdiff_t first_ = 0;
};

std::optional<EngineProcess> Link::running;

TEST_F(Link, CarriesAClientFromHelloToExit) {
    Client client(1234);
    EXPECT_EQ(client.IdOf(client.controller.Get()), 0);
    EXPECT_EQ(client.IdOf(client.engine.Get()), 0);
    client.Connect();
    EXPECT_EQ(client.IdOf(client.controller.Get()), 1234);
    EXPECT_EQ(client.IdOf(client.engine.Get()), 1234);
    client.SayGoodbye();
    EXPECT_EQ(client.IdOf(client.controller.Get()), 0);
    EXPECT_EQ(client.IdOf(client.engine.Get()), 0);
    EXPECT_TRUE(engine.Wait("# disconnected AppToController 1234"));
    EXPECT_THAT(Said(),
                ElementsAre("# connected AppToController 1234", "# note 1234 the handle is not that of a window",
                            "# connected AppToEngine 1234", "message 1234 <hello id=\"1234\"/>",
                            "control 1234 <exit id=\"1234\"/>", "message 1234 <exit id=\"1234\"/>",
                            "# disconnected AppToEngine 1234", "# disconnected AppToController 1234"));
}

TEST_F(Link, RawLinesAreExact) {
    Client client(77);
    client.Connect();
    // What a text may hold: backslashes, line ends, non-ASCII in and beyond the basic plane, tab, an embedded NUL.
    client.Message(std::wstring(L"<x a=\"C:\\n\r\n\tü€\U0001F600") + L'\0' + L"\"/>");
    client.Message(std::wstring(100000, L'a'));
    client.Message(L"");
    EXPECT_TRUE(engine.Wait(std::string("message 77 <x a=\"C:\\\\n\\r\\n\t\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80") +
                            '\0' + "\"/>"));
    EXPECT_TRUE(engine.Wait("message 77 " + std::string(100000, 'a')));
    EXPECT_TRUE(engine.Wait("message 77 "));
    client.SayGoodbye();
    EXPECT_TRUE(engine.Wait("# disconnected AppToController 77"));
    std::string expected;
    for (const std::string& line : engine.Lines()) expected += line + "\n";
    const HANDLE log =
        CreateFileW(L"raw.log", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(log, INVALID_HANDLE_VALUE);
    std::string logged(GetFileSize(log, nullptr), '\0');
    DWORD read = 0;
    ReadFile(log, logged.data(), static_cast<DWORD>(logged.size()), &read, nullptr);
    CloseHandle(log);
    EXPECT_EQ(logged, expected);
}

TEST_F(Link, CommandsReachTheSinks) {
    Client first(1);
    Client second(2);
    first.Connect();
    second.Connect();
    for (const char* command : {"set_autoupdate true # all", "set_autoupdate false 2", "button_click 3 1", "exit all",
                                "control <A b=\"1, #2\">", "message <C d>", "engine_control <E f>",
                                "engine_message <G \xC3\xA9>", "second_connect 1", "read_id 2"})
        engine.Command(command);
    EXPECT_TRUE(engine.Wait("# sent control AppToController 1 <SET_AUTOUPDATE value=\"true\"/>"));
    EXPECT_TRUE(engine.Wait("# sink_id AppToController 2 2"));
    EXPECT_TRUE(engine.Wait("# sink_id AppToEngine 2 2"));
    EXPECT_THAT(first.controllerSink->calls,
                ElementsAre(L"control 1 <SET_AUTOUPDATE value=\"true\"/>", L"message 1 <BUTTON_CLICK id=\"3\"/>",
                            L"control 1 <EXIT now=\"1\"/>", L"control 1 <A b=\"1, #2\">", L"message 1 <C d>",
                            L"connect AppToController 2"));
    EXPECT_THAT(
        second.controllerSink->calls,
        ElementsAre(L"control 2 <SET_AUTOUPDATE value=\"true\"/>", L"control 2 <SET_AUTOUPDATE value=\"false\"/>",
                    L"control 2 <EXIT now=\"1\"/>", L"control 2 <A b=\"1, #2\">", L"message 2 <C d>"));
    EXPECT_THAT(first.engineSink->calls, ElementsAre(L"control 1 <E f>", L"message 1 <G é>", L"connect AppToEngine 2"));
}

TEST_F(Link, EngineDisconnectsAndLetsGo) {
    Client client(5);
    client.Connect();
    engine.Command("disconnect engine 5 999");
    EXPECT_TRUE(engine.Wait("# disconnected AppToEngine 5"));
    EXPECT_THAT(client.engineSink->calls, ElementsAre(L"disconnect 999"));
    EXPECT_EQ(client.IdOf(client.engine.Get()), 0);
    EXPECT_TRUE(PumpUntil([&] { return client.engineSink->References() == 1; })) << client.engineSink->References();
    engine.Command("disconnect controller");
    EXPECT_TRUE(engine.Wait("# disconnected AppToController 5"));
    EXPECT_THAT(client.controllerSink->calls, ElementsAre(L"disconnect 5"));
    engine.Command("clients");
    EXPECT_TRUE(engine.Wait("# no clients"));
}

TEST_F(Link, AClientMayStartAnewEvenFromInsideADisconnect) {
    Client client(6);
    client.Connect();
    Client again(6);  // the same window: a client that met an error has dropped its sinks
    again.Connect();
    EXPECT_TRUE(engine.Wait("# note 6 Connect while connected: the new sink replaces the old one"));
    EXPECT_TRUE(engine.Wait("# lost AppToEngine 6"));
    engine.Command("set_autoupdate true");
    EXPECT_TRUE(PumpUntil([&] { return !again.controllerSink->calls.empty(); }));
    EXPECT_TRUE(client.controllerSink->calls.empty());
    EXPECT_TRUE(PumpUntil([&] { return client.engineSink->References() == 1; }));
    Client third(6);
    again.engineSink->onDisconnect = [&] { third.Connect(); };
    engine.Command("disconnect engine 6");
    engine.Command("read_id");
    EXPECT_TRUE(engine.Wait("# sink_id AppToEngine 6 6"));  // the new sink is not let go with the old one
    EXPECT_THAT(Said(), testing::Not(testing::Contains(testing::StartsWith("# fault"))));
}

TEST_F(Link, DeparturesFromTheProtocolAreNamed) {
    Client client(9);
    client.Message(L"<hello id=\"9\"/>");
    EXPECT_TRUE(engine.Wait("# fault 9 PutMessage on a dispatcher that is not connected"));
    client.Connect();
    EXPECT_TRUE(engine.Wait("# fault 9 hello again without exit"));
    client.Message(L"<eod docId=\"x\" shouldProcess=\"1\"/>", 10);
    EXPECT_TRUE(engine.Wait("# fault 9 eod before any preamble"));
    EXPECT_TRUE(engine.Wait("# fault 9 PutMessage: id 10 is not the handle 9 that the dispatcher was asked for with"));
    _variant_t result;
    client.controller->PutMessage(_bstr_t(L"<hello id=\"9\"/>"), nullptr, 9, &result);
    EXPECT_TRUE(engine.Wait("# fault 9 PutMessage to the controller: messages go to the engine"));
    client.engine->PutControl(_bstr_t(L"<bye/>"), nullptr, 9, &result);
    EXPECT_TRUE(engine.Wait("# fault 9 unknown control \"bye\""));
    EXPECT_TRUE(engine.Wait("# fault 9 PutControl to the engine: controls go to the controller"));
    client.engine->Connect(_bstr_t(L"Sideways"), nullptr, 9, &result);
    EXPECT_TRUE(engine.Wait("# fault 9 Connect: connection type \"Sideways\" instead of \"AppToEngine\""));
    EXPECT_TRUE(engine.Wait("# fault 9 Connect without a sink"));
    FindController().Call(L"GetMessageInterface", {com::FromText(L"Nowhere"), com::FromLong(-1)});
    EXPECT_TRUE(engine.Wait("# fault -1 GetMessageInterface: channel \"Nowhere\" instead of \"AppToController\""));
    EXPECT_TRUE(engine.Wait("# fault -1 GetMessageInterface: bad handle -1"));
    client.engine->Disconnect(9, &result);
    EXPECT_TRUE(engine.Wait("# note 9 disconnected without exit"));
}

TEST_F(Link, AHangingEngineAnswersLater) {
    using Clock = std::chrono::steady_clock;
    using std::chrono::milliseconds;
    Client client(12);
    client.Connect();
    engine.Command("hang_next 1");
    engine.Command("clients");
    EXPECT_TRUE(engine.Wait("# client 12 controller engine"));
    auto start = Clock::now();
    EXPECT_HRESULT_SUCCEEDED(client.Message(L"<x/>"));
    EXPECT_GE(Clock::now() - start, milliseconds(950));
    start = Clock::now();
    EXPECT_HRESULT_SUCCEEDED(client.Message(L"<x/>"));
    EXPECT_LT(Clock::now() - start, milliseconds(500));
    engine.Command("hang 1");
    EXPECT_TRUE(engine.Wait("# hangs for 1000 ms"));
    start = Clock::now();
    EXPECT_EQ(client.IdOf(client.engine.Get()), 12);
    EXPECT_GE(Clock::now() - start, milliseconds(700));
}

TEST_F(Link, AwayAndBackChangesTheTableAlone) {
    Client client(13);
    client.Connect();
    engine.Command("away");
    EXPECT_TRUE(engine.Wait("# away"));
    EXPECT_FALSE(FindController());
    EXPECT_EQ(client.IdOf(client.engine.Get()), 13);
    engine.Command("back");
    EXPECT_TRUE(engine.Wait("# back"));
    EXPECT_TRUE(FindController());
    EXPECT_EQ(RunEngine(L""), 3u);  // there can be one engine only
}

TEST_F(Link, AClientThatIsGoneIsLost) {
    ChildProcess dying(L"standin_engine_dying_client.exe", L"");
    EXPECT_TRUE(engine.WaitBeginning("message ", 10000));
    EXPECT_TRUE(engine.WaitBeginning("# lost AppToController "));
    EXPECT_TRUE(engine.WaitBeginning("# lost AppToEngine "));
    engine.Command("clients");
    EXPECT_TRUE(engine.Wait("# no clients"));
    Client client(14);
    client.Connect();
    CoDisconnectObject(client.controllerSink.Get(), 0);  // it does not answer: lost at the next call
    engine.Command("set_autoupdate true");
    EXPECT_TRUE(engine.WaitBeginning("# failed 0x"));
    EXPECT_TRUE(engine.Wait("# lost AppToController 14"));
}

TEST_F(Link, WrongCommandsAreErrorsAndNothingElse) {
    const std::pair<const char*, const char*> rows[] = {
        {"exit", "exit: no client is connected"},
        {"exit 7", "exit: no connected client 7"},
        {"exit x", "exit: the handle must be a number, not \"x\""},
        {"set_autoupdate maybe", "set_autoupdate: must be true or false, not \"maybe\""},
        {"disconnect sideways", "disconnect: must be controller or engine, not \"sideways\""},
        {"state", "state: the state is missing"},
        {"state 1 2", "state: unexpected \"2\""},
        {"die now", "die: unexpected \"now\""},
        {"hang -1", "hang: the time must be between 0 and a day"},
        {"wait for (", "wait: \"(\" is not a regular expression"},
        {"caption 6 x", "caption: no button 6"},
        {"jump", "unknown command \"jump\"; \"help\" lists them"},
    };
    for (const auto& [command, error] : rows) {
        engine.Command(command);
        EXPECT_TRUE(engine.Wait(std::string("# error ") + error)) << command;
    }
}

TEST_F(Link, ServesTheToolbar) {
    ComPtr<IToolbarConfig> config;
    ASSERT_HRESULT_SUCCEEDED(MakeToolbar(config));
    LONG values[3] = {};
    config->get_ButtonCount(&values[0]);
    config->get_EngineState(&values[1]);
    config->get_ContextMode(&values[2]);
    EXPECT_THAT(values, ElementsAre(6, 3, 1));
    _bstr_t text;
    config->get_ButtonCaption(3, text.GetAddress());
    EXPECT_EQ(text, _bstr_t(L"Search in Context"));
    config->get_ButtonBitmapPath(5, text.GetAddress());
    EXPECT_EQ(text, _bstr_t(L"C:\\faces\\button5.bmp"));
    OLE_COLOR mask = 0;
    config->get_ButtonMaskColor(0, &mask);
    EXPECT_EQ(mask, 0x00FF00FFu);
    EXPECT_HRESULT_FAILED(config->get_ButtonCaption(6, text.GetAddress()));
    EXPECT_HRESULT_FAILED(config->get_ButtonTooltip(-1, text.GetAddress()));

    for (const char* command : {"state 1", "context_mode 0", "caption 0 Now then", "enable 0 false", "clients"})
        engine.Command(command);
    EXPECT_TRUE(engine.Wait("# no clients"));
    VARIANT_BOOL enabled = VARIANT_TRUE;
    config->get_EngineState(&values[1]);
    config->get_ContextMode(&values[2]);
    config->get_ButtonEnabled(0, &enabled);
    EXPECT_THAT(values, ElementsAre(6, 1, 0));
    EXPECT_EQ(enabled, VARIANT_FALSE);
    config->get_ButtonCaption(0, text.GetAddress());
    EXPECT_EQ(text, _bstr_t(L"Now then"));

    EXPECT_HRESULT_SUCCEEDED(config->BeginCommand());
    EXPECT_HRESULT_SUCCEEDED(config->NewSearch(1234, _bstr_t(L"two\r\nlines")));
    LONG result = -1;
    EXPECT_HRESULT_SUCCEEDED(config->CommandDone(1234, &result));
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(engine.Wait("# BeginCommand"));
    EXPECT_TRUE(engine.Wait("# NewSearch 1234 two\\r\\nlines"));
    EXPECT_TRUE(engine.Wait("# CommandDone 1234"));
}

}  // namespace
}  // namespace beacon::tests
