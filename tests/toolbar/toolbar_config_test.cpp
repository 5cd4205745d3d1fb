#include "toolbar/toolbar_config.h"

#include <gtest/gtest.h>

#include <fstream>

#include "com/object.h"
#include "tests/fakes/log_capture.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/config_client.h"
#include "toolbar/picture.h"

namespace beacon {
namespace {

class OwnToolbarConfig : public testing::Test {
protected:
    void SetUp() override {
        com::SetModuleInstance(GetModuleHandleW(nullptr));
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        Forget();
        config_ = MakeToolbarConfig();  // no utility server is registered here
        late_ = com::Object(config_.Get());
    }

    void TearDown() override {
        late_.Reset();
        config_.Reset();
        Forget();
        CoUninitialize();
    }

    static void Forget() {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kMachineToolbarKey);
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
    }

    static void Set(const wchar_t* name, const wchar_t* value) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, name, value);
    }

    com::ComPtr<IToolbarConfig> config_;
    com::Object late_;
};

std::string Bytes(const std::wstring& path) {
    std::ifstream file(com::ToAnsi(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST_F(OwnToolbarConfig, HasSixDistinctButtonsWithPicturesOfItsOwn) {
    ASSERT_EQ(late_.GetLong(L"ButtonCount"), 6);
    std::vector<std::wstring> captions;
    for (long i = 0; i < 6; ++i) {
        const _variant_t index = com::FromLong(i);
        const std::wstring caption = late_.GetText(L"ButtonCaption", {index});
        EXPECT_FALSE(caption.empty());
        EXPECT_EQ(std::count(captions.begin(), captions.end(), caption), 0) << "commands are told apart by caption";
        captions.push_back(caption);
        EXPECT_FALSE(late_.GetText(L"ButtonTooltip", {index}).empty());
        EXPECT_TRUE(com::ToBool(late_.Get(L"ButtonEnabled", {index})));
        EXPECT_EQ(late_.GetLong(L"ButtonMaskColor", {index}), 0xFF00FF);
        const std::wstring path = late_.GetText(L"ButtonBitmapPath", {index});
        EXPECT_EQ(path, late_.GetText(L"ButtonBitmapPath", {index}));
        const auto picture = LoadPicture(path);
        ASSERT_NE(picture, nullptr);
        OLE_HANDLE handle = 0;
        picture->get_Handle(&handle);
        BITMAP record{};
        GetObjectW(LongToHandle(static_cast<LONG>(handle)), sizeof record, &record);
        EXPECT_EQ(record.bmWidth, 16);
        EXPECT_EQ(record.bmHeight, 16);
    }
    EXPECT_EQ(late_.GetLong(L"ContextMode"), 1);
    EXPECT_FALSE(late_.GetText(L"DefaultContextText").empty());
    EXPECT_FALSE(late_.GetText(L"ContextWarningText").empty());
    EXPECT_FALSE(late_.GetText(L"ContextWarningTitle").empty());
}

TEST_F(OwnToolbarConfig, PicturesOfTwoObjectsDoNotDisturbEachOtherAndGoWithThem) {
    const com::ComPtr<IToolbarConfig> other = MakeToolbarConfig();
    const std::wstring mine = late_.GetText(L"ButtonBitmapPath", {com::FromLong(0)});
    std::wstring others;
    {
        const com::Object late(other.Get());
        others = late.GetText(L"ButtonBitmapPath", {com::FromLong(0)});
    }
    EXPECT_NE(mine, others);
    EXPECT_EQ(Bytes(mine), Bytes(others));
    DeleteFileW(others.c_str());
    EXPECT_FALSE(Bytes(com::Object(other.Get()).GetText(L"ButtonBitmapPath", {com::FromLong(0)})).empty())
        << "a file that a clean-up took is written again";
    late_.Reset();
    config_.Reset();
    EXPECT_EQ(GetFileAttributesW(mine.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST_F(OwnToolbarConfig, ValuesOfTheMachineReplaceTheBuiltInOnes) {
    Set(L"ButtonCaption2", L"Find");
    Set(L"ButtonTooltip2", L"");
    Set(L"ButtonEnabled2", L"False");
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"ButtonEnabled3", 0);
    Set(L"ButtonBitmapPath2", L"C:\\faces\\find.bmp");
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"ButtonMaskColor2", static_cast<long>(0x8000000F));
    Set(L"ButtonMaskColor3", L"255");
    Set(L"ButtonMaskColor4", L"pink");
    SetRegDword(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"ContextMode", 2);
    Set(L"DefaultContextText", L"anywhere");
    const _variant_t two = com::FromLong(2);
    EXPECT_EQ(late_.GetText(L"ButtonCaption", {two}), L"Find");
    EXPECT_EQ(late_.GetText(L"ButtonTooltip", {two}), L"");
    EXPECT_FALSE(com::ToBool(late_.Get(L"ButtonEnabled", {two})));
    EXPECT_FALSE(com::ToBool(late_.Get(L"ButtonEnabled", {com::FromLong(3)})));
    EXPECT_TRUE(com::ToBool(late_.Get(L"ButtonEnabled", {com::FromLong(1)})));
    EXPECT_EQ(late_.GetText(L"ButtonBitmapPath", {two}), L"C:\\faces\\find.bmp");
    OLE_COLOR colour = 0;
    EXPECT_EQ(config_->get_ButtonMaskColor(2, &colour), S_OK);
    EXPECT_EQ(colour, 0x8000000F);
    EXPECT_EQ(config_->get_ButtonMaskColor(3, &colour), S_OK);
    EXPECT_EQ(colour, 255u);
    EXPECT_EQ(config_->get_ButtonMaskColor(4, &colour), S_OK);
    EXPECT_EQ(colour, 0xFF00FFu);
    EXPECT_EQ(late_.GetLong(L"ContextMode"), 2);
    EXPECT_EQ(late_.GetText(L"DefaultContextText"), L"anywhere");
}

TEST_F(OwnToolbarConfig, AButtonThatDoesNotExistIsErrorNine) {
    for (const wchar_t* member :
         {L"ButtonCaption", L"ButtonTooltip", L"ButtonBitmapPath", L"ButtonEnabled", L"ButtonMaskColor"}) {
        for (const long index : {-1L, 6L}) {
            try {
                late_.Get(member, {com::FromLong(index)});
                ADD_FAILURE() << "no error";
            } catch (const com::Error& error) {
                EXPECT_EQ(error.number, 9);
            }
        }
    }
    BSTR caption = nullptr;
    EXPECT_EQ(config_->get_ButtonCaption(6, &caption), static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(config_->get_ButtonCaption(0, nullptr), E_POINTER);
}

TEST_F(OwnToolbarConfig, EngineStateFollowsTheRunningObjectTable) {
    constexpr CLSID kController = {0x05F44787, 0xD470, 0x4D95, {0xBE, 0x1E, 0xC7, 0x10, 0xC4, 0xBF, 0xEC, 0xB0}};
    constexpr wchar_t kProgId[] = L"SOFTWARE\\Classes\\BeaconController.Application\\CLSID";
    constexpr wchar_t kText[] = L"{05F44787-D470-4D95-BE1E-C710C4BFECB0}";
    EXPECT_EQ(late_.GetLong(L"EngineState"), 0);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kProgId, nullptr, REG_SZ, kText, sizeof kText);
    EXPECT_EQ(late_.GetLong(L"EngineState"), 0);
    DWORD registration = 0;
    const auto controller = com::MakeObject<ToolbarConfig>();  // any object will do
    ASSERT_EQ(RegisterActiveObject(controller.Get(), kController, ACTIVEOBJECT_WEAK, &registration), S_OK);
    EXPECT_EQ(late_.GetLong(L"EngineState"), 3);
    RevokeActiveObject(registration, nullptr);
    EXPECT_EQ(late_.GetLong(L"EngineState"), 0);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Classes\\BeaconController.Application");
}

TEST_F(OwnToolbarConfig, CommandsWithoutAServerSucceedAndASearchIsLogged) {
    const test::LogCapture log;
    late_.Call(L"BeginCommand");
    late_.Call(L"NewSearch", {com::FromLong(-5), com::FromText(L"lost?")});
    EXPECT_EQ(com::ToLong(late_.Call(L"CommandDone", {com::FromLong(-5)})), 0);
    EXPECT_TRUE(log.Has(L"ToolbarConfig: the utility server is missing, no search for window -5 with text <lost?>", 1));
}

TEST_F(OwnToolbarConfig, LayoutsAreKeptForEachApplication) {
    ConfigClient client;
    EXPECT_THROW(client.LoadLayout(L"Outlook"), com::Error) << "nothing saved must not become a bar without size";
    client.SaveLayout(L"Outlook", {26, 400, -3, 52, 2, L"Floating"});
    client.SaveLayout(L"Word", {1, 2, 3, 4, 5, L"Top"});
    const ConfigClient::Layout layout = client.LoadLayout(L"Outlook");
    EXPECT_EQ(layout.height, 26);
    EXPECT_EQ(layout.width, 400);
    EXPECT_EQ(layout.left, -3);
    EXPECT_EQ(layout.top, 52);
    EXPECT_EQ(layout.rowIndex, 2);
    EXPECT_EQ(layout.position, L"Floating");
    EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook\\Layout", L"Width"),
              400);
}

}  // namespace
}  // namespace beacon
