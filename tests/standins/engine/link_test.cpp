#include <gmock/gmock.h>

#include "client.h"
#include "engine_process.h"

namespace beacon::tests {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

std::vector<std::string> After(const std::vector<std::string>& lines, const std::string& line) {
    const auto found = std::ranges::find(lines, line);
    return found == lines.end() ? std::vector<std::string>() : std::vector<std::string>(found + 1, lines.end());
}

class Link : public testing::Test {
protected:
    void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }

    void TearDown() override { CoUninitialize(); }
};

TEST_F(Link, CarriesAClientFromHelloToExit) {
    EngineProcess engine;
    {
        Client client(1234);
        EXPECT_EQ(client.IdOf(client.controller.Get()), 0);
        EXPECT_EQ(client.IdOf(client.engine.Get()), 0);
        client.Connect();
        EXPECT_EQ(client.IdOf(client.controller.Get()), 1234);
        EXPECT_EQ(client.IdOf(client.engine.Get()), 1234);
        client.SayGoodbye();
        EXPECT_EQ(client.IdOf(client.controller.Get()), 0);
        EXPECT_EQ(client.IdOf(client.engine.Get()), 0);
    }
    engine.Command("quit");
    EXPECT_EQ(engine.WaitEnd(), 0u);
    EXPECT_THAT(After(engine.Lines(), "# ready"),
                ElementsAre("# connected AppToController 1234", "# note 1234 the handle is not that of a window",
                            "# connected AppToEngine 1234", "message 1234 <hello id=\"1234\"/>",
                            "control 1234 <exit id=\"1234\"/>", "message 1234 <exit id=\"1234\"/>",
                            "# disconnected AppToEngine 1234", "# disconnected AppToController 1234", "# bye"));
    EXPECT_FALSE(FindController());
}

TEST_F(Link, RawLinesAreExact) {
    EngineProcess engine(L"--log raw.log");
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
    engine.Command("quit");
    engine.WaitEnd();
    std::string expected;
    for (const std::string& line : engine.Lines()) expected += line + "\n";
    const HANDLE log =
        CreateFileW(L"raw.log", GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    ASSERT_NE(log, INVALID_HANDLE_VALUE);
    std::string logged(GetFileSize(log, nullptr), '\0');
    DWORD read = 0;
    ReadFile(log, logged.data(), static_cast<DWORD>(logged.size()), &read, nullptr);
    CloseHandle(log);
    EXPECT_EQ(logged, expected);
}

TEST_F(Link, CommandsReachTheSinks) {
    EngineProcess engine;
    Client first(1);
    Client second(2);
    first.Connect();
    second.Connect();
    for (const char* command :
         {"set_autoupdate true", "set_autoupdate false 2", "button_click 3 1", "exit all", "control <A b>",
          "message <C d>", "engine_control <E f>", "engine_message <G \xC3\xA9>", "second_connect 1", "read_id 2"})
        engine.Command(command);
    EXPECT_TRUE(engine.Wait("# sent control AppToController 1 <SET_AUTOUPDATE value=\"true\"/>"));
    EXPECT_TRUE(engine.Wait("# sink_id AppToController 2 2"));
    EXPECT_TRUE(engine.Wait("# sink_id AppToEngine 2 2"));
    EXPECT_THAT(first.controllerSink->calls,
                ElementsAre(L"control 1 <SET_AUTOUPDATE value=\"true\"/>", L"message 1 <BUTTON_CLICK id=\"3\"/>",
                            L"control 1 <EXIT now=\"1\"/>", L"control 1 <A b>", L"message 1 <C d>",
                            L"connect AppToController 2"));
    EXPECT_THAT(
        second.controllerSink->calls,
        ElementsAre(L"control 2 <SET_AUTOUPDATE value=\"true\"/>", L"control 2 <SET_AUTOUPDATE value=\"false\"/>",
                    L"control 2 <EXIT now=\"1\"/>", L"control 2 <A b>", L"message 2 <C d>"));
    EXPECT_THAT(first.engineSink->calls, ElementsAre(L"control 1 <E f>", L"message 1 <G é>", L"connect AppToEngine 2"));
}

TEST_F(Link, EngineDisconnectsAndLetsGo) {
    EngineProcess engine;
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

TEST_F(Link, AClientMayStartAnew) {
    EngineProcess engine;
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
    for (const std::string& line : engine.Lines()) EXPECT_FALSE(line.starts_with("# fault")) << line;
}

TEST_F(Link, DeparturesFromTheProtocolAreNamed) {
    EngineProcess engine;
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

TEST_F(Link, ScriptsRunBesideTheClients) {
    {
        const HANDLE file = CreateFileW(L"script.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        const std::string script =
            "# waits hold back the script, not the engine\r\n\r\nwait for \"^message 4 <hello\" 8\n"
            "set_autoupdate true 4 # now\nwait 50\nwait for never 1\nno_such\nquit\n";
        DWORD written = 0;
        WriteFile(file, script.data(), static_cast<DWORD>(script.size()), &written, nullptr);
        CloseHandle(file);
    }
    EngineProcess engine(L"--script script.txt");
    Client client(4);
    client.Connect();
    EXPECT_EQ(engine.WaitEnd(), 1u);
    EXPECT_THAT(client.controllerSink->calls,
                ElementsAre(L"control 4 <SET_AUTOUPDATE value=\"true\"/>", L"control 4 <EXIT now=\"1\"/>"));
    EXPECT_THAT(engine.Lines(), IsSupersetOf({"# error wait: no line matched \"never\" in time",
                                              "# error unknown command \"no_such\"; \"help\" lists them", "# bye"}));
    DeleteFileW(L"script.txt");
}

}  // namespace
}  // namespace beacon::tests
