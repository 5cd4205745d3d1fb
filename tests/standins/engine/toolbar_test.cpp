#include <gmock/gmock.h>

#include "client.h"
#include "engine_process.h"

namespace beacon::tests {
namespace {

constexpr CLSID kToolbarConfig{0x78256BD9, 0xA478, 0x4B56, {0x88, 0x67, 0xBB, 0x0E, 0x43, 0xD1, 0x57, 0xBF}};

HRESULT MakeConfig(ComPtr<IToolbarConfig>& config) {
    return CoCreateInstance(kToolbarConfig, nullptr, CLSCTX_LOCAL_SERVER, IID_PPV_ARGS(&config));
}

template <class Getter>
std::wstring Text(Getter getter) {
    BSTR value = nullptr;
    com::Check(getter(&value));
    return com::ToText(_bstr_t(value, false).GetBSTR());
}

class Toolbar : public testing::Test {
protected:
    void SetUp() override { ASSERT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }

    void TearDown() override { CoUninitialize(); }
};

TEST_F(Toolbar, IsServedByTheRunningEngine) {
    EngineProcess engine(L"--toolbar --bitmaps C:\\faces");
    ComPtr<IToolbarConfig> config;
    ASSERT_HRESULT_SUCCEEDED(MakeConfig(config));
    LONG count = 0;
    LONG state = 0;
    LONG mode = 0;
    config->get_ButtonCount(&count);
    config->get_EngineState(&state);
    config->get_ContextMode(&mode);
    EXPECT_EQ(count, 6);
    EXPECT_EQ(state, 3);
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(Text([&](BSTR* v) { return config->get_ButtonCaption(3, v); }), L"Search in Context");
    EXPECT_EQ(Text([&](BSTR* v) { return config->get_ButtonBitmapPath(5, v); }), L"C:\\faces\\button5.bmp");
    OLE_COLOR mask = 0;
    config->get_ButtonMaskColor(0, &mask);
    EXPECT_EQ(mask, 0x00FF00FFu);
    BSTR none = nullptr;
    EXPECT_HRESULT_FAILED(config->get_ButtonCaption(6, &none));
    EXPECT_HRESULT_FAILED(config->get_ButtonTooltip(-1, &none));

    for (const char* command : {"state 1", "context_mode 0", "caption 0 Now then", "enable 0 false", "clients"})
        engine.Command(command);
    EXPECT_TRUE(engine.Wait("# no clients"));
    VARIANT_BOOL enabled = VARIANT_TRUE;
    config->get_EngineState(&state);
    config->get_ContextMode(&mode);
    config->get_ButtonEnabled(0, &enabled);
    EXPECT_EQ(state, 1);
    EXPECT_EQ(mode, 0);
    EXPECT_EQ(enabled, VARIANT_FALSE);
    EXPECT_EQ(Text([&](BSTR* v) { return config->get_ButtonCaption(0, v); }), L"Now then");
}

TEST_F(Toolbar, CommandsAndLayoutsShowOnTheMonitor) {
    {
        EngineProcess engine(L"--toolbar");
        ComPtr<IToolbarConfig> config;
        ASSERT_HRESULT_SUCCEEDED(MakeConfig(config));
        LONG result = -1;
        EXPECT_HRESULT_SUCCEEDED(config->BeginCommand());
        EXPECT_HRESULT_SUCCEEDED(config->NewSearch(1234, _bstr_t(L"two\r\nlines")));
        EXPECT_HRESULT_SUCCEEDED(config->CommandDone(1234, &result));
        EXPECT_EQ(result, 0);
        EXPECT_HRESULT_SUCCEEDED(config->SaveLayout(_bstr_t(L"Outlook"), 26, 500, 10, -20, 2, _bstr_t(L"Floating")));
        EXPECT_TRUE(engine.Wait("# BeginCommand"));
        EXPECT_TRUE(engine.Wait("# NewSearch 1234 two\\r\\nlines"));
        EXPECT_TRUE(engine.Wait("# CommandDone 1234"));
        EXPECT_TRUE(engine.Wait("# SaveLayout Outlook 26 500 10 -20 2 Floating"));
    }
    EngineProcess engine(L"--toolbar");  // the layout outlives the program
    ComPtr<IToolbarConfig> config;
    ASSERT_HRESULT_SUCCEEDED(MakeConfig(config));
    LONG values[5] = {};
    BSTR position = nullptr;
    EXPECT_HRESULT_SUCCEEDED(
        config->LoadLayout(_bstr_t(L"Outlook"), &values[0], &values[1], &values[2], &values[3], &values[4], &position));
    EXPECT_THAT(values, testing::ElementsAre(26, 500, 10, -20, 2));
    EXPECT_EQ(com::ToText(_bstr_t(position, false).GetBSTR()), L"Floating");
}

TEST_F(Toolbar, RegistrationIsMadeAndUndone) {
    EXPECT_EQ(EngineProcess(L"--register", false).WaitEnd(), 0u);
    {
        // Registered and not running: COM starts a server for the toolbar alone, which is no engine.
        ComPtr<IToolbarConfig> config;
        ASSERT_HRESULT_SUCCEEDED(MakeConfig(config));
        LONG state = -1;
        config->get_EngineState(&state);
        EXPECT_EQ(state, 0);
        EXPECT_FALSE(FindController());
        const EngineProcess engine;
        config->get_EngineState(&state);
        EXPECT_EQ(state, 3);
    }
    EXPECT_EQ(EngineProcess(L"--unregister", false).WaitEnd(), 0u);
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
