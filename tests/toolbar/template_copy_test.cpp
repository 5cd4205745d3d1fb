#include "toolbar/template_copy.h"

#include "com/text.h"
#include "tests/fakes/adapter_fixture.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/beacon_bar.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

class WordTemplate : public test::AdapterTest {
protected:
    static void Write(const std::wstring& path, const std::string& text) {
        std::ofstream(com::ToAnsi(path), std::ios::binary) << text;
    }

    const std::wstring folder_ = log_.Root() + L"\\";
};

TEST_F(WordTemplate, ReplacesTheUsersFileOrLogsOneError) {
    const std::wstring source = folder_ + L"word-toolbar-container.dot";
    const std::wstring target = folder_ + L"target.dot";
    const auto copy = [&](const std::wstring& programDirectory, const std::wstring& to) {
        SetRegString(HKEY_LOCAL_MACHINE, kMachineKey, L"Program Directory", programDirectory);
        log_.Clear();
        const auto toolbar = com::MakeObject<CToolbar>();
        EXPECT_EQ(toolbar->CopyFreshTemplateToAppData(_bstr_t(to.c_str()).GetBSTR()), S_OK);
        return log_.Lines();
    };
    const std::wstring failed = L"Exception in CopyTemplateToAppDataIfNotThere: ";
    CopyFreshTemplateToAppData(target);
    EXPECT_EQ(log_.Lines(), (test::LogLines{L"CopyFreshTemplateToAppData called", failed + L" 0"})) << "no directory";
    EXPECT_EQ(copy(folder_, target).back(), failed + L" 0") << "no file to copy";
    Write(source, "fresh");
    EXPECT_EQ(copy(log_.Root(), target).back(), failed + L" 0") << "no separator";
    EXPECT_EQ(copy(folder_, folder_ + L"missing\\target.dot").back(), failed + L"Path not found 76");

    Write(target, "stale and longer");
    const HANDLE inUse = CreateFileW(target.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(copy(folder_, target).back(), failed + L"Permission denied 70");
    CloseHandle(inUse);
    EXPECT_EQ(Bytes(target), "stale and longer");
    const test::LogLines expected = {L"CopyFreshTemplateToAppData called",
                                     L"CopyFreshTemplateToAppData: Original DOT file is " + source,
                                     L"CopyFreshTemplateToAppData: Successful copy of " + source + L" to " + target};
    EXPECT_EQ(copy(folder_, target), expected);
    EXPECT_EQ(Bytes(target), "fresh");
}

TEST_F(WordTemplate, HiddenFilesAndFoldersDoNotExist) {
    Write(folder_ + L"hidden.dot", "x");
    SetFileAttributesW((folder_ + L"hidden.dot").c_str(), FILE_ATTRIBUTE_HIDDEN);
    Write(folder_ + L"source.dot", "x");
    for (const wchar_t* name : {L"source.dot", L"*.dot"}) EXPECT_TRUE(FileExists(folder_ + name)) << com::ToAnsi(name);
    for (const wchar_t* name : {L"hidden.dot", L"", L"none.dot", L"none\\none.dot"})
        EXPECT_FALSE(FileExists(folder_ + name)) << com::ToAnsi(name);
    EXPECT_FALSE(FileExists(L""));
    EXPECT_FALSE(FileExists(log_.Root())) << "a folder";
    EXPECT_TRUE(log_.Lines().empty());
}

class ToolbarObject : public test::AdapterTest {};

TEST_F(ToolbarObject, OffersItsMembersToLateBoundCallers) {
    const auto toolbar = com::MakeObject<CToolbar>();
    const com::Object late(toolbar.Get());
    EXPECT_EQ(late.CallObject(L"GetCommandBar").Get(), nullptr);
    EXPECT_EQ(late.GetObject(L"gConnect").Get(), nullptr);
    EXPECT_EQ(com::ToText(late.Call(L"GetAppName")), L"Outlook");
    EXPECT_EQ(com::ToText(late.Call(L"GetDefaultToolbarName")), L"Beacon Toolbar");
    SetRegString(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"Lamp");
    EXPECT_EQ(com::ToText(late.Call(L"GetDefaultToolbarName")), L"Lamp");

    EXPECT_NE(com::ToLong(late.Call(L"IsFirstInstallOfToolbar", {L"Outlook"})), 0);
    late.Call(L"SetFirstInstallOfToolbar", {L"Outlook", 1L});
    EXPECT_EQ(com::ToLong(late.Call(L"IsFirstInstallOfToolbar", {L"Outlook"})), 0);
    EXPECT_NE(com::ToLong(late.Call(L"IsFirstInstallOfToolbar", {L"Word"})), 0);
    EXPECT_EQ(modGetDword(HKEY_CURRENT_USER, L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook", L"HasInstalled"), 1);

    const auto paste = [&] { late.Call(L"CopyBitmapAsButtonFace", {com::FromObject(nullptr), 0L}); };
    EXPECT_EQ(test::RaisedBy(paste).number, 481);
    for (const auto flag : std::initializer_list<com::MemberName>{L"gInitialized", L"gSharedConextList"}) {
        late.Put(flag, true);
        EXPECT_NE(com::ToLong(late.Get(flag)), 0);
    }
    late.Put(L"g_strDOTName", L"C:\\x.dot");
    EXPECT_EQ(late.GetText(L"g_strDOTName"), L"C:\\x.dot");
}

}  // namespace
}  // namespace beacon
