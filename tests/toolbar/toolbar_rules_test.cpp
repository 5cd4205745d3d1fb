#include <gtest/gtest.h>

#include <fstream>

#include "com/module.h"
#include "com/text.h"
#include "tests/fakes/log_capture.h"
#include "support/registry.h"
#include "support/settings.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/click_state.h"
#include "toolbar/template_copy.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

TEST(ClickState, DropsARepeatWithinTheSameSecondOnly) {
    ClickState clicks;
    EXPECT_FALSE(clicks.IsRepeat(L"Search", 1, 77, 1000));
    clicks.Note(L"Search", 1, 77, 1000, true);
    EXPECT_TRUE(clicks.IsRepeat(L"Search", 1, 77, 1000));
    EXPECT_FALSE(clicks.IsRepeat(L"Search", 1, 77, 1001));
    EXPECT_FALSE(clicks.IsRepeat(L"Search", 1, 77, 999));
    EXPECT_FALSE(clicks.IsRepeat(L"Search", 1, 78, 1000));
    EXPECT_FALSE(clicks.IsRepeat(L"Search", 2, 77, 1000));
    EXPECT_FALSE(clicks.IsRepeat(L"search", 1, 77, 1000));
    EXPECT_EQ(clicks.g_nPendingButton, 0);
}

TEST(ClickState, ParksAClickUntilOneMeetsAReadyEngine) {
    ClickState clicks;
    clicks.Note(L"Focus", 1, 77, 1000, false);
    EXPECT_EQ(clicks.g_sPendingButton, L"Focus");
    EXPECT_EQ(clicks.g_nPendingButton, 1);
    EXPECT_FALSE(clicks.IsRepeat(L"Focus", 1, 77, 1000)) << "the replay must get through";
    clicks.Note(L"Search", 1, 77, 1000, false);
    EXPECT_EQ(clicks.g_sPendingButton, L"Search") << "the latest one waits";
    clicks.Note(L"Search", 1, 77, 1000, true);
    EXPECT_EQ(clicks.g_sPendingButton, L"");
    EXPECT_EQ(clicks.g_nPendingButton, 0);
    EXPECT_TRUE(clicks.IsRepeat(L"Search", 1, 77, 1000));
}

TEST(ToolbarTags, AreFoundInAnyCapitalsAndAnywhere) {
    for (const wchar_t* tag :
         {L"corvantis-beacon 5;1", L"CORVANTIS-Beacon", L"my Corvantis-BEACON bar", L"ccorvantis-beacon"})
        EXPECT_TRUE(HasToolbarMarker(tag));
    for (const wchar_t* tag : {L"", L"corvantis", L"corvantis beacon", L"corvantis-beaco"})
        EXPECT_FALSE(HasToolbarMarker(tag));
}

TEST(BarPositions, GoByTheirNamesAndBack) {
    const wchar_t* const names[] = {L"Left", L"Top", L"Right", L"Bottom", L"Floating", L"Popup", L"Menu Bar"};
    for (long position = 0; position < 7; ++position) {
        EXPECT_EQ(PositionName(position), names[position]);
        EXPECT_EQ(PositionFromName(names[position]), position);
    }
    EXPECT_EQ(PositionFromName(L"left"), 1);
    EXPECT_EQ(PositionFromName(L""), 1);
    EXPECT_EQ(PositionName(7), L"Unsupported type");
    EXPECT_EQ(PositionName(-1), L"Unsupported type");
}

std::wstring NewFolder() {
    static int count = 0;
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = std::wstring(folder) + L"toolbar-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(++count) + L"\\";
    CreateDirectoryW(path.c_str(), nullptr);
    return path;
}

void Write(const std::wstring& path, const std::string& text) {
    std::ofstream(com::ToAnsi(path), std::ios::binary) << text;
}

std::string Read(const std::wstring& path) {
    std::ifstream file(com::ToAnsi(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class TheTemplate : public testing::Test {
protected:
    void TearDown() override {
        for (const wchar_t* name : {L"word-toolbar-container.dot", L"target.dot", L"hidden.dot"}) {
            SetFileAttributesW((folder_ + name).c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileW((folder_ + name).c_str());
        }
        RemoveDirectoryW(folder_.c_str());
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, kMachineKey);
    }

    static void SetProgramDirectory(const std::wstring& value) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineKey, L"Program Directory", value);
    }

    const std::wstring folder_ = NewFolder();
    const std::wstring source_ = folder_ + L"word-toolbar-container.dot";
    const std::wstring target_ = folder_ + L"target.dot";
    test::LogCapture log_;
};

TEST_F(TheTemplate, ReplacesTheUsersFile) {
    Write(source_, "fresh");
    Write(target_, "stale and longer");
    SetProgramDirectory(folder_);
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    const auto toolbar = com::MakeObject<CToolbar>();
    EXPECT_EQ(toolbar->CopyFreshTemplateToAppData(_bstr_t(target_.c_str()).GetBSTR()), S_OK);
    EXPECT_EQ(Read(target_), "fresh");
    const std::vector<std::wstring> expected = {
        L"CopyFreshTemplateToAppData called", L"CopyFreshTemplateToAppData: Original DOT file is " + source_,
        L"CopyFreshTemplateToAppData: Successful copy of " + source_ + L" to " + target_};
    EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(TheTemplate, EveryOtherOutcomeIsOneExceptionLine) {
    const std::wstring nothing = L"Exception in CopyTemplateToAppDataIfNotThere:  0";
    CopyFreshTemplateToAppData(target_);  // no such value
    EXPECT_EQ(log_.Lines().back(), nothing);
    EXPECT_EQ(log_.Lines().size(), 2u);

    SetProgramDirectory(folder_);  // no such file
    CopyFreshTemplateToAppData(target_);
    EXPECT_EQ(log_.Lines().back(), nothing);

    Write(source_, "fresh");
    log_.Clear();
    SetProgramDirectory(folder_.substr(0, folder_.size() - 1));  // no separator
    CopyFreshTemplateToAppData(target_);
    EXPECT_EQ(log_.Lines().back(), nothing);

    SetProgramDirectory(folder_);
    CopyFreshTemplateToAppData(folder_ + L"missing\\target.dot");
    EXPECT_EQ(log_.Lines().back(), L"Exception in CopyTemplateToAppDataIfNotThere: Path not found 76");

    Write(target_, "kept");
    const HANDLE inUse = CreateFileW(target_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    CopyFreshTemplateToAppData(target_);
    CloseHandle(inUse);
    EXPECT_EQ(log_.Lines().back(), L"Exception in CopyTemplateToAppDataIfNotThere: Permission denied 70");
    EXPECT_EQ(Read(target_), "kept");
}

TEST_F(TheTemplate, OnlyOrdinaryFilesExist) {
    const std::wstring hidden = folder_ + L"hidden.dot";
    Write(source_, "x");
    Write(hidden, "x");
    SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(FileExists(source_));
    EXPECT_TRUE(FileExists(folder_ + L"*.dot"));
    EXPECT_FALSE(FileExists(hidden));
    EXPECT_FALSE(FileExists(L""));
    EXPECT_FALSE(FileExists(folder_));
    EXPECT_FALSE(FileExists(folder_.substr(0, folder_.size() - 1)));
    EXPECT_FALSE(FileExists(folder_ + L"none.dot"));
    EXPECT_FALSE(FileExists(folder_ + L"none\\none.dot"));
    EXPECT_TRUE(log_.Lines().empty());
}

TEST(TheToolbarsSettings, AreReadAndWrittenThroughItsInterface) {
    com::SetModuleInstance(GetModuleHandleW(nullptr));
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kMachineToolbarKey);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Corvantis");
    const auto toolbar = com::MakeObject<CToolbar>();
    const com::Object late(toolbar.Get());
    EXPECT_EQ(late.CallObject(L"GetCommandBar").Get(), nullptr);
    EXPECT_EQ(com::ToText(late.Call(L"GetAppName")), L"Outlook");
    EXPECT_EQ(com::ToText(late.Call(L"GetDefaultToolbarName")), L"Beacon Toolbar");
    SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"Lamp");
    EXPECT_EQ(com::ToText(late.Call(L"GetDefaultToolbarName")), L"Lamp");
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kMachineToolbarKey);

    const _variant_t outlook = com::FromText(L"Outlook");
    EXPECT_TRUE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {outlook})));
    late.Call(L"SetFirstInstallOfToolbar", {outlook, com::FromLong(1)});
    EXPECT_FALSE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {outlook})));
    EXPECT_TRUE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {com::FromText(L"Word")})));
    EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook", L"HasInstalled"), 1);
    late.Call(L"SetFirstInstallOfToolbar", {outlook, com::FromLong(0)});
    EXPECT_TRUE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {outlook})));

    try {
        late.Call(L"CopyBitmapAsButtonFace", {com::FromObject(nullptr), com::FromLong(0)});
        ADD_FAILURE() << "no error";
    } catch (const com::Error& error) {
        EXPECT_EQ(error.number, 481);
    }
    EXPECT_FALSE(com::ToBool(late.Get(L"gInitialized")));
    EXPECT_FALSE(com::ToBool(late.Get(L"gSharedConextList")));
    EXPECT_EQ(late.GetLong(L"g_nPendingButton"), 0);
    late.Put(L"g_strDOTName", com::FromText(L"C:\\x.dot"));
    EXPECT_EQ(late.GetText(L"g_strDOTName"), L"C:\\x.dot");
}

}  // namespace
}  // namespace beacon
