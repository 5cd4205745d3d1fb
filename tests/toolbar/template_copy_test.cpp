#include "toolbar/template_copy.h"

#include <fstream>

#include "com/text.h"
#include "support/registry.h"
#include "support/settings.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

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

class TheTemplate : public test::AdapterTest {
protected:
    void TearDown() override {
        for (const wchar_t* name : {L"word-toolbar-container.dot", L"target.dot", L"hidden.dot"}) {
            SetFileAttributesW((folder_ + name).c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileW((folder_ + name).c_str());
        }
        RemoveDirectoryW(folder_.c_str());
        AdapterTest::TearDown();
    }

    static void SetProgramDirectory(const std::wstring& value) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineKey, L"Program Directory", value);
    }

    const std::wstring folder_ = NewFolder();
    const std::wstring source_ = folder_ + L"word-toolbar-container.dot";
    const std::wstring target_ = folder_ + L"target.dot";
};

TEST_F(TheTemplate, ReplacesTheUsersFile) {
    Write(source_, "fresh");
    Write(target_, "stale and longer");
    SetProgramDirectory(folder_);
    const auto toolbar = com::MakeObject<CToolbar>();
    EXPECT_EQ(toolbar->CopyFreshTemplateToAppData(_bstr_t(target_.c_str()).GetBSTR()), S_OK);
    EXPECT_EQ(Read(target_), "fresh");
    const test::LogLines expected = {L"CopyFreshTemplateToAppData called",
                                     L"CopyFreshTemplateToAppData: Original DOT file is " + source_,
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

/// What the published interface shows, by name as its callers use it.
class TheToolbarsFace : public test::AdapterTest {};

TEST_F(TheToolbarsFace, ReadsAndWritesSettings) {
    const auto toolbar = com::MakeObject<CToolbar>();
    const com::Object late(toolbar.Get());
    EXPECT_EQ(late.CallObject(L"GetCommandBar").Get(), nullptr);
    EXPECT_EQ(late.GetObject(L"gConnect").Get(), nullptr);
    EXPECT_EQ(com::ToText(late.Call(L"GetAppName")), L"Outlook");
    EXPECT_EQ(com::ToText(late.Call(L"GetDefaultToolbarName")), L"Beacon Toolbar");
    SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"Lamp");
    EXPECT_EQ(com::ToText(late.Call(L"GetDefaultToolbarName")), L"Lamp");
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kMachineToolbarKey);

    EXPECT_TRUE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {L"Outlook"})));
    late.Call(L"SetFirstInstallOfToolbar", {L"Outlook", 1L});
    EXPECT_FALSE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {L"Outlook"})));
    EXPECT_TRUE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {L"Word"})));
    EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook", L"HasInstalled"), 1);
    late.Call(L"SetFirstInstallOfToolbar", {L"Outlook", 0L});
    EXPECT_TRUE(com::ToBool(late.Call(L"IsFirstInstallOfToolbar", {L"Outlook"})));

    const com::Error error = test::RaisedBy([&] {
        late.Call(L"CopyBitmapAsButtonFace", {com::FromObject(nullptr), 0L});
    });
    EXPECT_EQ(error.number, 481);
    for (const wchar_t* flag : {L"gInitialized", L"gSharedConextList"}) {
        EXPECT_FALSE(com::ToBool(late.Get(flag)));
        late.Put(flag, true);
        EXPECT_TRUE(com::ToBool(late.Get(flag)));
        late.Put(flag, false);
        EXPECT_FALSE(com::ToBool(late.Get(flag)));
    }
    EXPECT_EQ(late.GetLong(L"g_nPendingButton"), 0);
    late.Put(L"g_strDOTName", L"C:\\x.dot");
    EXPECT_EQ(late.GetText(L"g_strDOTName"), L"C:\\x.dot");
    SavedClipboard saved;
    saved.dib = _variant_t(5L);
    EXPECT_FALSE(saved.hasLink || saved.hasText || saved.hasBitmap || saved.hasMetafile || saved.hasDIB ||
                 saved.hasPalette);
}

}  // namespace
}  // namespace beacon
