// The program as an add-in meets it that has faults of its own (addin/test_addin.cpp).
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "com/server_registration.h"
#include "common/program.h"
#include "tests/standins/child_process.h"

namespace beacon::tests {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

constexpr char kStore[] = R"({"folder": "Inbox", "items": [
 {"class": "mail", "entryId": "A1", "subject": "Budget", "senderName": "Anna", "to": "Paul", "body": "One.\r\n"},
 {"class": "contact", "entryId": "C1", "fullName": "Anna Weber", "firstName": "Anna", "lastName": "Weber"}]})";

/// What one run of the program with a mail and a contact said, and how it ended.
struct OutlookRun {
    /// Without a script it reads `input`. The add-in does wrong what `faults` asks for.
    OutlookRun(const std::wstring& arguments, const std::string& script, const wchar_t* faults = L"",
               const char* input = "") {
        SetEnvironmentVariableW(L"TEST_ADDIN", faults);
        std::filesystem::current_path(std::filesystem::temp_directory_path());
        std::wstring all = L"--store outlook_store.json " + arguments;
        if (!script.empty()) all += L" --script outlook_script.txt";
        std::ofstream("outlook_store.json", std::ios::binary) << kStore;
        std::ofstream("outlook_script.txt", std::ios::binary) << script;
        ChildProcess outlook(L"standin_outlook.exe", all);
        outlook.Write(input);
        outlook.CloseInput();
        code = outlook.WaitEnd(20000);
        lines = outlook.Lines();
    }

    /// The lines that begin with this text, without it.
    std::vector<std::string> After(const std::string& start) const {
        std::vector<std::string> result;
        for (const std::string& line : lines)
            if (line.starts_with(start)) result.push_back(line.substr(start.size()));
        return result;
    }

    unsigned long code = 0;
    std::vector<std::string> lines;  // in UTF-8, the add-in's among them
};

class TheProgram : public testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::wstring classes = L"Software\\Classes\\";
        const std::wstring server = classes + L"CLSID\\{5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}\\InprocServer32";
        const std::wstring addin = L"Software\\Microsoft\\Office\\Outlook\\Addins\\StandinTest.Addin";
        com::WriteText(HKEY_LOCAL_MACHINE, classes + L"StandinTest.Addin\\CLSID", nullptr,
                       L"{5D0B7A4E-1C0F-4B57-9B0D-1F6C3A1F5E21}");
        com::WriteText(HKEY_LOCAL_MACHINE, server, nullptr, standin::ProgramFolder() + L"\\standin_test_addin.dll");
        com::WriteText(HKEY_LOCAL_MACHINE, server, L"ThreadingModel", L"Apartment");
        const DWORD behavior = 3;
        com::WriteValue(HKEY_LOCAL_MACHINE, addin, L"LoadBehavior", REG_DWORD, &behavior, sizeof behavior);
    }
};

TEST_F(TheProgram, StartsAndQuitsInOrderAndFindsNothingLeft) {
    const OutlookRun run(L"--strict-exit", "quit\n");
    EXPECT_THAT(run.After("addin: "),
                ElementsAre("OnConnection 1 custom", "Startup", "OnStartupComplete", "explorer Close",
                            "Quit, no window", "OnBeginShutdown", "OnDisconnection 0"));
    EXPECT_THAT(run.lines, IsSupersetOf({"references: none", "sinks: none", "PROP_OLK: none",
                                         "DllCanUnloadNow: S_OK (StandinTest.Addin)",
                                         "windows of StandinTest.Addin: none", "library of StandinTest.Addin: unloaded",
                                         "hooks: none called after the unload", "end 0"}));
    EXPECT_EQ(run.code, 0u);
}

TEST_F(TheProgram, CountsReferencesThatAreLeftByObject) {
    const OutlookRun run(L"", "open Budget\nquit\n",
                         L" leak-explorer leak-selection leak-instance leak-item leak-inspector ");
    EXPECT_THAT(run.After("references: "),
                ElementsAre("MailItem \"Budget\": 1, COMAddIn StandinTest.Addin: 1, Explorer 1: 1, Selection: 1, "
                            "Inspector 1: 1"));
    EXPECT_THAT(run.After("addin: OnDisconnection"), ElementsAre(" 0"));  // not strict: goes on all the same
    EXPECT_EQ(run.code, 0u);

    const OutlookRun strict(L"--strict-exit --strict-timeout 0.3", "quit\n", L" leak-explorer ");
    EXPECT_THAT(strict.After("strict exit: held back by references: "), ElementsAre("Explorer 1: 1"));
    EXPECT_THAT(strict.After("addin: On").back(), "BeginShutdown");
    EXPECT_EQ(strict.code, 3u);
}

TEST_F(TheProgram, ReportsPropertiesWindowsAndHooksThatAreLeft) {
    const OutlookRun run(L"", "quit\n", L" keep-window keep-property keep-hook ");
    EXPECT_THAT(run.After("windows of StandinTest.Addin: "), ElementsAre("TestAddinWindow"));
    EXPECT_THAT(run.After("PROP_OLK: "), ElementsAre(testing::MatchesRegex("\\d+=0x\\w+")));
    // Windows ends the program at the call of an unloaded hook; Wine lets it go on, and it says so.
    EXPECT_THAT(run.After("hooks: none"), ElementsAre());
    EXPECT_NE(run.code, 0u);
}

TEST_F(TheProgram, RaisesTheEventsOfItsVersion) {
    const OutlookRun older(L"--outlook-version 9", "open 1\ndelete 1\n");
    EXPECT_EQ(older.After("addin: inspector ").back(), "Close");
    EXPECT_THAT(older.lines, testing::Not(testing::Contains("addin: inspector item BeforeDelete")));
    const OutlookRun run(L"--outlook-version 10",
                         "open 1\nactivate explorer\nactivate Budget\nactivate Budget\ndelete 1\n");
    EXPECT_THAT(run.After("addin: inspector "), ElementsAre("new, no window", "Activate", "Deactivate", "Activate",
                                                            "item BeforeDelete", "item Close", "Close"));
    const OutlookRun selections(L"", "select 1\nselect \"Anna Weber\",1\nselect none\n");
    EXPECT_THAT(selections.After("addin: SelectionChange "), ElementsAre("1", "1", "2", "2", "0", "0"));
}

TEST_F(TheProgram, KeepsAWindowWhoseCloseIsCancelledAndItself) {
    const OutlookRun run(L"", "open 1\nclose\nquit\n", L" cancel ");
    EXPECT_EQ(run.After("close cancelled inspector 1").size(), 3u);  // by hand, by the quit, at the end of the script
    EXPECT_EQ(run.After("quit cancelled").size(), 2u);
    EXPECT_EQ(run.code, 2u);
}

TEST_F(TheProgram, QuitsWhileAMessageBoxIsOpen) {
    const OutlookRun run(L"", "wait 500\nboxes\nquit\n", L" box ");
    EXPECT_THAT(run.After("box "), ElementsAre("\"Test add-in\""));
    EXPECT_THAT(run.After("addin: box"), ElementsAre(" closed"));
    EXPECT_EQ(run.code, 0u);
}

TEST_F(TheProgram, SaysWhatIsWrongAndEndsOnlyForAScript) {
    const OutlookRun script(L"", "# fine\n\nselect 9\nselect 1\n");
    EXPECT_THAT(script.After("error: "), ElementsAre("line 3: there is no item 9 (items: 2)"));
    EXPECT_THAT(script.After("addin: SelectionChange"), ElementsAre());
    EXPECT_EQ(script.code, 2u);
    const OutlookRun typed(
        L"", "", L"",
        "jump\nopen \"Bud\nclose inspector 1\nquit later\nedit 1 replace \"none of it\" x\nitems all\n"
        "select 1\n");
    EXPECT_THAT(
        typed.After("error: "),
        ElementsAre("unknown command \"jump\"; \"help\" lists them", "quote is not closed", "there is no inspector 1",
                    "unexpected \"later\"", "the body does not hold \"none of it\"", "unexpected \"all\""));
    EXPECT_EQ(typed.code, 0u);
    const OutlookRun option(L"--fast", "");
    EXPECT_THAT(option.lines, testing::Contains(testing::HasSubstr("unknown argument \"--fast\"")));
    EXPECT_EQ(option.code, 1u);
}

}  // namespace
}  // namespace beacon::tests
