#include <gtest/gtest.h>
#include <objbase.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>

#include "addin/registration.h"
#include "com/server_registration.h"
#include "common/automation_object.h"
#include "support/settings.h"
#include "tests/fakes/built_dll.h"
#include "tests/fakes/child_process.h"

namespace beacon::test {
namespace {

using com::WriteText;
using nlohmann::json;
using testing::HasSubstr;
using Ids = std::vector<std::string>;

constexpr int kBits = 8 * sizeof(void*);
constexpr CLSID kController = {0x05F44787, 0xD470, 0x4D95, {0xBE, 0x1E, 0xC7, 0x10, 0xC4, 0xBF, 0xEC, 0xB0}};
const std::wstring kClasses = L"Software\\Classes\\";
const std::wstring kClassesOf32Bits = kClasses + L"Wow6432Node\\";  // Wine separates ProgIDs, too
const std::wstring kAddInClassId = L"{6E547C94-44EC-474B-AC54-1B05A2E339B9}";
const std::wstring kAddInServer = L"CLSID\\" + kAddInClassId + L"\\InprocServer32";
const std::wstring kAddInProgId = L"BeaconOLKAdapter.Connect";
const std::wstring kReaderClassKey = kClasses + L"CLSID\\{C3EEC785-E482-475A-BB9A-D368521FD50A}";
const std::wstring kReaderServerKey = kReaderClassKey + L"\\InprocServer32";
const std::wstring kOfficeKey = L"Software\\Microsoft\\Office\\";
const std::wstring kEngineLibrary = kClasses + L"TypeLib\\{7BA3A72F-9FA5-4C9D-A207-4F5C4F0D4978}\\1.0\\0\\win";

/// Outlook writes three numbers, then two texts.
void Disable(const wchar_t* list, std::wstring file) {
    file = std::wstring(6, L'\1') + file + L'\0' + L"an add-in" + L'\0';
    com::WriteValue(HKEY_CURRENT_USER, kOfficeKey + L"12.0\\Outlook\\Resiliency\\" + list, L"1A2B", REG_BINARY,
                    file.c_str(), file.size() * sizeof(wchar_t));
}

void SetNumber(HKEY hive, const std::wstring& key, const wchar_t* name, DWORD number) {
    com::WriteValue(hive, key, name, REG_DWORD, &number, sizeof number);
}

void Delete(HKEY hive, const std::wstring& key) { RegDeleteTreeW(hive, key.c_str()); }

/// Writes the first bytes of a program of this bitness.
void WriteProgram(const std::filesystem::path& path, int bits) {
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = sizeof dos;
    const DWORD machine = bits == 64 ? IMAGE_FILE_MACHINE_AMD64 : IMAGE_FILE_MACHINE_I386;
    const DWORD rest[] = {IMAGE_NT_SIGNATURE, machine};
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&dos), sizeof dos).write(reinterpret_cast<const char*>(rest), sizeof rest);
}

/// A machine without problems, except that no engine runs.
class Check : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        std::filesystem::create_directories(folder_ / L"other");
        WriteProgram(folder_ / L"OUTLOOK.EXE", kBits);
        WriteProgram(other_, 96 - kBits);
        Restore();
    }

    void TearDown() override {
        std::filesystem::remove_all(folder_);
        CoUninitialize();
    }

    void Restore() {
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            for (const std::wstring& key : {kOfficeKey, kReaderClassKey}) Delete(hive, key);
        Delete(HKEY_CURRENT_USER, L"Software\\Corvantis");
        Delete(HKEY_LOCAL_MACHINE, L"Software\\Tarnwell Systems, Inc");
        std::filesystem::remove_all(logs_);
        for (const wchar_t* name : {L"BeaconOLKAdapter.dll", L"BeaconMapiProp.dll"})
            ASSERT_EQ(BuiltDll(BuiltDll::Path(name)).Call("DllRegisterServer"), S_OK);
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"16.0\\Outlook\\InstallRoot", L"Path", folder_.wstring());
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"9.0\\Outlook\\InstallRoot", L"Path", L"C:\\removed long ago");
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"15.0\\Outlook", L"Bitness", kBits == 64 ? L"x86" : L"x64");
        Disable(L"DisabledItems", L"c:\\office\\another.dll");
        WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", L"1");
    }

    /// The ids of a run's findings; report_ has the rest.
    Ids Findings(const std::wstring& options = L"", std::optional<DWORD> expectedCode = {}) {
        ChildProcess program(L"beacon-check.exe", L"--json " + options);
        const DWORD code = program.WaitEnd();
        std::string text;
        for (const std::string& line : program.Lines())
            if (!line.starts_with("beacon-check: ")) text += line + "\n";
        report_ = json::parse(text, nullptr, false);
        if (report_.is_discarded()) ADD_FAILURE() << text;
        Ids ids;
        for (const json& finding : report_["findings"]) ids.push_back(finding["id"]);
        EXPECT_EQ(code, expectedCode.value_or(ids.empty() ? 0 : 1));
        EXPECT_EQ(report_["format"], 1);
        return ids;
    }

    const std::filesystem::path folder_ = std::filesystem::temp_directory_path() / L"beacon check \x00FC";
    const std::filesystem::path logs_ = std::filesystem::path(_wgetenv(L"AppData")) / L"Corvantis\\Beacon\\logs";
    const std::filesystem::path other_ = folder_ / L"other" / L"OUTLOOK.EXE";
    json report_;
};

/// A running engine, which ends in order: the entry of a killed one would stay in the table of running objects.
struct Engine : ChildProcess {
    Engine() : ChildProcess(L"standin_engine.exe", L"--raw") { EXPECT_TRUE(Wait("# ready")); }

    ~Engine() {
        Write("quit\n");
        WaitEnd();
    }
};

// The packages' test of the remedies breaks the files and keys of a real installation.
TEST_F(Check, FindsEachProblemAndNothingElse) {
    const Engine engine;
    const std::wstring other = other_.wstring();
    const std::wstring own = std::to_wstring(kBits);

    const struct {
        const char* what;
        std::function<void()> breakIt;
        Ids found;
    } cases[] = {
        {"no Outlook", [] { Delete(HKEY_LOCAL_MACHINE, kOfficeKey + L"16.0"); }, {"outlook-not-found"}},
        {"several things",
         [&] {
             WriteText(HKEY_LOCAL_MACHINE, kReaderServerKey, L"ThreadingModel", L"Free");
             SetNumber(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior", 2);
             Disable(L"DisabledItems", L"c:\\beacon\\beaconolkadapter.dll");
             WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"MaxDocUnits", L"12");
             SetNumber(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", 0);
         },
         {"reader-threading-model", "load-behavior", "disabled-item", "too-few-characters"}},
        {"other things",
         [&] {
             WriteText(HKEY_CURRENT_USER, kAddInKey, L"LoadBehavior", L"3");
             WriteText(HKEY_LOCAL_MACHINE, kEngineLibrary + own, nullptr, L"C:\\gone.exe");
             Disable(L"CrashingAddinList", L"BeaconOLKAdapter.Connect");
             WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", L"true");
             WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", L"yes");
             WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"MaxDocUnits", L"-1");
         },
         {"load-behavior", "engine-type-library", "disabled-item", "setting-not-used", "setting-not-used",
          "too-few-characters", "nothing-sends"}},
        {"unusual spellings, switched on by the user, and an engine of the other bitness",
         [&] {
             WriteText(HKEY_LOCAL_MACHINE, kClasses + kAddInServer, L"ThreadingModel", L"both");
             WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay", L" 5e2");
             Delete(HKEY_LOCAL_MACHINE, kEngineLibrary + own);
             WriteText(HKEY_LOCAL_MACHINE, kEngineLibrary + (kBits == 64 ? L"32" : L"64"), nullptr, other);
             SetNumber(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior", 0);
             SetNumber(HKEY_CURRENT_USER, kAddInKey, L"LoadBehavior", 3);
             WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", L"FALSE");
         },
         {}},
        {"Outlook of the other bitness, whose key for the add-in is missing",
         [&] {
             Delete(HKEY_LOCAL_MACHINE, kOfficeKey + L"16.0");
             WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"11.0\\Outlook\\InstallRoot", L"Path", other_.parent_path());
             WriteText(HKEY_LOCAL_MACHINE, kClassesOf32Bits + kAddInProgId + L"\\CLSID", nullptr, kAddInClassId);
             WriteText(HKEY_LOCAL_MACHINE, kClassesOf32Bits + kAddInServer, nullptr, other);
         },
         kBits == 64 ? Ids{"other-program", "reader-not-registered", "outlook-key-missing", "addin-type-library"}
                     : Ids{}},
    };

    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        Restore();
        one.breakIt();
        EXPECT_EQ(Findings(), one.found);
    }
    if (kBits == 64) EXPECT_THAT(report_.dump(), HasSubstr(R"(Software\\Wow6432Node\\Microsoft)"));
}

// Both would let a user's file run with an administrator's rights.
TEST_F(Check, LoadsNothingFromTheCurrentFolderNorOfTheUserAsAdministrator) {
    const auto before = std::filesystem::current_path();
    std::filesystem::copy_file(BuiltDll::Path(L"BeaconMapiProp.dll"), folder_ / L"planted.dll");
    std::filesystem::current_path(folder_);
    WriteText(HKEY_LOCAL_MACHINE, kReaderServerKey, nullptr, L"planted.dll");
    EXPECT_EQ(Findings(), (Ids{"reader-file-missing", "controller-absent"}));
    std::filesystem::current_path(before);

    Restore();
    WriteText(HKEY_CURRENT_USER, kReaderServerKey, nullptr, (folder_ / L"planted.dll").wstring());
    EXPECT_EQ(Findings(), (Ids{"run-as-user", "controller-absent"})) << "Wine runs every program as administrator";
}

TEST_F(Check, AsksTheEngineWithATimeOut) {
    EXPECT_EQ(Findings(), Ids{"controller-absent"});
    const auto nobody = std::make_shared<standin::AutomationObject>(L"Nobody");
    DWORD cookie = 0;
    ASSERT_EQ(RegisterActiveObject(static_cast<IDispatch*>(nobody.get()), kController, ACTIVEOBJECT_STRONG, &cookie),
              S_OK);
    EXPECT_EQ(Findings(), Ids{"controller-fails"});
    RevokeActiveObject(cookie, nullptr);

    const Engine engine;
    EXPECT_EQ(Findings(), Ids{});
    EXPECT_EQ(report_["controller"], "answers");
    engine.Write("hang 8\n");
    const ULONGLONG waited = Duration([&] { EXPECT_EQ(Findings(L"--wait 200"), Ids{"controller-hangs"}); });
    EXPECT_LT(waited, 6000U);
    engine.Kill();
}

TEST_F(Check, ExaminesLogsAndTheirFolder) {
    const Engine engine;
    SetNumber(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", 1);
    EXPECT_EQ(Findings(), Ids{"log-folder-missing"});
    std::filesystem::create_directories(logs_.parent_path());
    std::ofstream(logs_) << "a file in the way";
    EXPECT_EQ(Findings(L"--make-log-folder", 3), Ids{"log-folder-missing"});
    EXPECT_THAT(report_["findings"][0]["remedy"], HasSubstr("Delete the file"));
    std::filesystem::remove(logs_);
    EXPECT_EQ(Findings(L"--make-log-folder"), Ids{});
    EXPECT_TRUE(std::filesystem::is_empty(logs_)) << "only the add-in creates the files";

    std::filesystem::create_directory(logs_ / L"OlkLog1.txt");
    std::ofstream log(logs_ / L"OlkLog2.txt", std::ios::binary);
    log << "11-25-2026\t10:00:00\tSendMail: Exception in the rule\r\n"
        << "the text of the mailException in Inspector.Send\r\n";
    log.flush();
    EXPECT_EQ(Findings(), Ids{"log-read-only"});
    std::filesystem::remove(logs_ / L"OlkLog1.txt");
    for (const char* number : {"1", "2", "3", "4"})
        log << "11-25-2026\t10:00:0" << number << "\tException in Inspector.Send: gr\xFC\xDF " << number << "\r\n";
    log.close();
    EXPECT_EQ(Findings(), Ids{"exceptions-logged"});
    EXPECT_EQ(report_["logs"]["exceptionCount"], 4);
    EXPECT_EQ(report_["logs"]["exceptions"].size(), 3U);
    EXPECT_EQ(report_["logs"]["exceptions"].back(),
              "OlkLog2.txt: 11-25-2026\t10:00:04\tException in Inspector.Send: gr\xC3\xBC\xC3\x9F 4");
}

TEST_F(Check, PrintsTextOrJson) {
    const auto says = [](const std::wstring& options, DWORD code) {
        ChildProcess program(L"beacon-check.exe", options);
        EXPECT_EQ(program.WaitEnd(), code);
        return testing::PrintToString(program.Lines());
    };
    EXPECT_THAT(says(L"", 1), testing::ContainsRegex("Reader .*-bit  .*BeaconMapiProp.dll, version .*, loads\".*"
                                                     "Controller   not running.*1 problem found:"));
    EXPECT_THAT(says(L"--version", 0), HasSubstr("beacon-check 1."));
    EXPECT_THAT(says(L"--wait soon", 2), HasSubstr("wrong option: soon"));

    WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", L"True");
    WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay", L"500");
    Findings();
    for (const char* setting : {R"("from":"user","name":"DefaultAutoUpdate","registered":"True","value":"True")",
                                R"("from":"machine","name":"StartAnalysisDelay","registered":"500","value":"500")",
                                R"("from":"default","name":"MaxDocUnits","registered":null,"value":"3072")",
                                R"("name":"DisplayName","registered":null,"value":"Beacon Toolbar")"})
        EXPECT_THAT(report_["settings"].dump(), HasSubstr(setting));
    EXPECT_EQ(report_["outlook"].size(), 1U) << "one has been removed";
}

}  // namespace
}  // namespace beacon::test
