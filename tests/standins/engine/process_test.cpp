// How an engine begins and ends: scripts, death, registration.
#include <gmock/gmock.h>

#include <fstream>

#include "client.h"
#include "engine_process.h"

namespace beacon::tests {
namespace {

class Process : public testing::Test {
protected:
    void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }

    void TearDown() override { CoUninitialize(); }
};

TEST_F(Process, ScriptsRunBesideTheClients) {
    std::ofstream("script.txt", std::ios::binary)
        << "\xEF\xBB\xBF# waits hold back the script, not the engine\r\n\r\nwait for \"^message 4 <hello\" 8\n"
           "set_autoupdate true 4 # now\nwait 50\nwait for never 1\nno_such\n";
    EngineProcess engine(L"--until-eof --script script.txt");
    engine.Command("say typed");
    engine.CloseInput();
    Client client(4);
    client.Connect();
    EXPECT_EQ(engine.WaitEnd(), 1u);
    EXPECT_THAT(client.controllerSink->calls,
                testing::ElementsAre(L"control 4 <SET_AUTOUPDATE value=\"true\"/>", L"control 4 <EXIT now=\"1\"/>"));
    EXPECT_TRUE(engine.Wait("# error wait: no line matched \"never\" in time"));
    EXPECT_TRUE(engine.Wait("# error unknown command \"no_such\"; \"help\" lists them"));
    EXPECT_TRUE(engine.Wait("# say typed"));  // standard input has its turn after the script
    EXPECT_TRUE(engine.Wait("# bye"));
    EXPECT_FALSE(FindController());
    DeleteFileW(L"script.txt");
    EXPECT_EQ(RunEngine(L"--script C:\\none"), 3u);
    EXPECT_EQ(RunEngine(L"--state much"), 2u);
}

TEST_F(Process, ADeadEngineIsGoneFromTheTableAndItsSuccessorStarts) {
    const HRESULT serverUnavailable = HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
    {
        EngineProcess engine;
        Client client(11);
        client.Connect();
        engine.Command("die");
        EXPECT_TRUE(engine.Wait("# dies"));
        EXPECT_EQ(engine.WaitEnd(), 1u);
        EXPECT_EQ(client.Message(L"<x/>"), serverUnavailable);
        EXPECT_TRUE(PumpUntil([] { return !FindController(); }));
    }
    EngineProcess successor;
    Client client(11);
    client.Connect();
    successor.Command("die_in_call");
    successor.Command("clients");
    EXPECT_TRUE(successor.Wait("# client 11 controller engine"));
    EXPECT_EQ(client.Message(L"<x/>"), HRESULT_FROM_WIN32(RPC_S_CALL_FAILED));
    EXPECT_EQ(client.Message(L"<x/>"), serverUnavailable);
}

TEST_F(Process, RegistrationIsMadeAndUndone) {
    {
        EngineProcess engine(L"--toolbar");
        ComPtr<IToolbarConfig> config;
        ASSERT_HRESULT_SUCCEEDED(MakeToolbar(config));
        EXPECT_HRESULT_SUCCEEDED(config->SaveLayout(_bstr_t(L"Outlook"), 26, 500, 10, -20, 2, _bstr_t(L"Floating")));
        EXPECT_TRUE(engine.Wait("# SaveLayout Outlook 26 500 10 -20 2 Floating"));
        engine.Command("quit");
        EXPECT_EQ(engine.WaitEnd(), 0u);
    }
    EXPECT_EQ(RunEngine(L"--register"), 0u);
    {
        // Registered and not running: COM starts a server for the toolbar alone, which is no engine.
        ComPtr<IToolbarConfig> config;
        ASSERT_HRESULT_SUCCEEDED(MakeToolbar(config));
        LONG state = -1;
        config->get_EngineState(&state);
        EXPECT_EQ(state, 0);
        EXPECT_FALSE(FindController());
        LONG values[5] = {};
        _bstr_t position;  // the layout outlives the program that saved it
        EXPECT_HRESULT_SUCCEEDED(config->LoadLayout(_bstr_t(L"Outlook"), &values[0], &values[1], &values[2], &values[3],
                                                    &values[4], position.GetAddress()));
        EXPECT_THAT(values, testing::ElementsAre(26, 500, 10, -20, 2));
        EXPECT_EQ(position, _bstr_t(L"Floating"));
        const EngineProcess engine;
        config->get_EngineState(&state);
        EXPECT_EQ(state, 3);
    }
    EXPECT_EQ(RunEngine(L"--unregister"), 0u);
    for (const wchar_t* key :
         {L"Software\\Classes\\BeaconController.Application", L"Software\\Classes\\BeaconUtil.ToolbarConfig",
          L"Software\\Classes\\CLSID\\{05F44787-D470-4D95-BE1E-C710C4BFECB0}",
          L"Software\\Classes\\CLSID\\{78256BD9-A478-4B56-8867-BB0E43D157BF}",
          L"Software\\Classes\\TypeLib\\{7BA3A72F-9FA5-4C9D-A207-4F5C4F0D4978}\\1.0\\0"}) {
        HKEY open = nullptr;
        EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, &open), ERROR_FILE_NOT_FOUND) << key;
    }
}

}  // namespace
}  // namespace beacon::tests
