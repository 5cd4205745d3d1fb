#include <gmock/gmock.h>

#include "client.h"
#include "engine_process.h"

namespace beacon::tests {
namespace {

const HRESULT kServerUnavailable = HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
const HRESULT kCallFailed = HRESULT_FROM_WIN32(RPC_S_CALL_FAILED);

class Trouble : public testing::Test {
protected:
    void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }

    void TearDown() override { CoUninitialize(); }
};

TEST_F(Trouble, ADeadEngineIsGoneFromTheTableAndItsSuccessorStarts) {
    {
        EngineProcess engine;
        Client client(11);
        client.Connect();
        engine.Command("die");
        EXPECT_TRUE(engine.Wait("# dies"));
        EXPECT_EQ(engine.WaitEnd(), 1u);
        EXPECT_EQ(client.Message(L"<x/>"), kServerUnavailable);
        EXPECT_TRUE(PumpUntil([] { return !FindController(); }));
    }
    EngineProcess successor;
    Client client(11);
    client.Connect();
    successor.Command("die_in_call");
    successor.Command("state 3");
    successor.Command("clients");
    EXPECT_TRUE(successor.Wait("# client 11 controller engine"));
    EXPECT_EQ(client.Message(L"<x/>"), kCallFailed);
    EXPECT_EQ(client.Message(L"<x/>"), kServerUnavailable);
}

TEST_F(Trouble, AHangingEngineAnswersLater) {
    EngineProcess engine;
    Client client(12);
    client.Connect();
    engine.Command("hang_next 1");
    engine.Command("clients");
    EXPECT_TRUE(engine.Wait("# client 12 controller engine"));
    ULONGLONG start = GetTickCount64();
    EXPECT_HRESULT_SUCCEEDED(client.Message(L"<x/>"));
    EXPECT_GE(GetTickCount64() - start, 950u);
    start = GetTickCount64();
    EXPECT_HRESULT_SUCCEEDED(client.Message(L"<x/>"));
    EXPECT_LT(GetTickCount64() - start, 500u);
    engine.Command("hang 1");
    EXPECT_TRUE(engine.Wait("# hangs for 1000 ms"));
    start = GetTickCount64();
    EXPECT_EQ(client.IdOf(client.engine.Get()), 12);
    EXPECT_GE(GetTickCount64() - start, 700u);
}

TEST_F(Trouble, AwayAndBackChangesTheTableAlone) {
    EngineProcess engine;
    Client client(13);
    client.Connect();
    engine.Command("away");
    EXPECT_TRUE(engine.Wait("# away"));
    EXPECT_FALSE(FindController());
    EXPECT_EQ(client.IdOf(client.engine.Get()), 13);
    engine.Command("back");
    EXPECT_TRUE(engine.Wait("# back"));
    EXPECT_TRUE(FindController());
    EngineProcess second(L"", false);
    EXPECT_EQ(second.WaitEnd(), 3u);
}

TEST_F(Trouble, AClientWhoseProcessEndsIsLost) {
    EngineProcess engine;
    std::wstring command = L"\"" + PathBeside(L"standin_engine_dying_client.exe") + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    EXPECT_NE(engine.WaitBeginning("message ", 10000), "");
    EXPECT_NE(engine.WaitBeginning("# lost AppToController "), "");
    EXPECT_NE(engine.WaitBeginning("# lost AppToEngine "), "");
    engine.Command("clients");
    EXPECT_TRUE(engine.Wait("# no clients"));
}

TEST_F(Trouble, AClientThatDoesNotAnswerIsLostAtTheNextCall) {
    EngineProcess engine;
    Client client(14);
    client.Connect();
    CoDisconnectObject(client.controllerSink.Get(), 0);
    engine.Command("set_autoupdate true");
    EXPECT_NE(engine.WaitBeginning("# failed 0x"), "");
    EXPECT_TRUE(engine.Wait("# lost AppToController 14"));
}

TEST_F(Trouble, WrongCommandsAreErrorsAndNothingElse) {
    EngineProcess engine(L"--until-eof");
    const std::pair<const char*, const char*> rows[] = {
        {"exit", "exit: no client is connected"},
        {"exit 7", "exit: no connected client 7"},
        {"exit x", "exit: the handle must be a number, not \"x\""},
        {"set_autoupdate maybe", "set_autoupdate: must be true or false, not \"maybe\""},
        {"disconnect sideways", "disconnect: must be controller or engine, not \"sideways\""},
        {"state", "state: the state is missing"},
        {"state 1 2", "state: unexpected \"2\""},
        {"hang -1", "hang: the time must be between 0 and a day"},
        {"wait for (", "wait: \"(\" is not a regular expression"},
        {"jump", "unknown command \"jump\"; \"help\" lists them"},
        {"caption 6 x", "caption: no button 6"},
    };
    for (const auto& [command, error] : rows) {
        engine.Command(command);
        EXPECT_TRUE(engine.Wait(std::string("# error ") + error)) << command;
    }
    engine.CloseInput();
    EXPECT_EQ(engine.WaitEnd(), 1u);
}

}  // namespace
}  // namespace beacon::tests
