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

constexpr int kBits = 8 * sizeof(void*);
constexpr CLSID kController = {0x05F44787, 0xD470, 0x4D95, {0xBE, 0x1E, 0xC7, 0x10, 0xC4, 0xBF, 0xEC, 0xB0}};
const std::wstring kClasses = L"Software\\Classes\\";
const std::wstring kServerKey = kClasses + L"CLSID\\{6E547C94-44EC-474B-AC54-1B05A2E339B9}\\InprocServer32";
const std::wstring kAddInClassId = L"{6E547C94-44EC-474B-AC54-1B05A2E339B9}";
const std::wstring kClassesOf32Bits = kClasses + L"Wow6432Node\\";
const std::wstring kServerKeyOf32Bits = kClassesOf32Bits + L"CLSID\\" + kAddInClassId + L"\\InprocServer32";
const std::wstring kAddInProgIdKeyOf32Bits =
    kClassesOf32Bits + L"BeaconOLKAdapter.Connect";  // Wine separates ProgIDs, too
const std::wstring kAddInProgIdKey = kClasses + L"BeaconOLKAdapter.Connect";
const std::wstring kReaderClassKey = kClasses + L"CLSID\\{C3EEC785-E482-475A-BB9A-D368521FD50A}";
const std::wstring kReaderKey = kClasses + L"Mapiprop.MAPIPropWrapper";
const std::wstring kOfficeKey = L"Software\\Microsoft\\Office\\";
const std::wstring kResiliency = kOfficeKey + L"12.0\\Outlook\\Resiliency\\";
const std::wstring kLibraryPlace = L"\\1.0\\0\\win" + std::to_wstring(kBits);
const std::wstring kAddInLibraryKey = kClasses + L"TypeLib\\{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}" + kLibraryPlace;
const std::wstring kEngineLibrary = kClasses + L"TypeLib\\{7BA3A72F-9FA5-4C9D-A207-4F5C4F0D4978}\\1.0\\0\\win";
const std::wstring kEngineLibraryKey = kEngineLibrary + std::to_wstring(kBits);
const std::wstring kEngineLibraryKeyOfOther = kEngineLibrary + std::to_wstring(96 - kBits);

/// Outlook writes three numbers, then two texts.
void Disable(const wchar_t* list, std::wstring file) {
    file = std::wstring(6, L'\1') + file + L'\0' + L"an add-in" + L'\0';
    com::WriteValue(HKEY_CURRENT_USER, kResiliency + list, L"1A2B", REG_BINARY, file.c_str(),
                    file.size() * sizeof(wchar_t));
}

void SetNumber(HKEY hive, const std::wstring& key, const wchar_t* name, DWORD number) {
    com::WriteValue(hive, key, name, REG_DWORD, &number, sizeof number);
}

void Delete(HKEY hive, const std::wstring& key) { RegDeleteTreeW(hive, key.c_str()); }

/// The first bytes of a program of this bitness or the other one.
void WriteProgram(const std::filesystem::path& file, bool isOther) {
    IMAGE_DOS_HEADER dos{};
    dos.e_magic = IMAGE_DOS_SIGNATURE;
    dos.e_lfanew = sizeof dos;
    const WORD machine = (kBits == 64) != isOther ? IMAGE_FILE_MACHINE_AMD64 : IMAGE_FILE_MACHINE_I386;
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(&dos), sizeof dos)
        .write("PE\0\0", 4)
        .write(reinterpret_cast<const char*>(&machine), sizeof machine)
        .write("\0\0", 2);
}

/// A machine without problems, except that no engine runs.
class Check : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        std::filesystem::create_directories(folder_ / L"other");
        WriteProgram(folder_ / L"OUTLOOK.EXE", false);
        WriteProgram(folder_ / L"other" / L"OUTLOOK.EXE", true);
        Restore();
    }

    void TearDown() override {
        std::filesystem::remove_all(folder_);
        CoUninitialize();
    }

    void Restore() {
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) Delete(hive, kOfficeKey);
        Delete(HKEY_CURRENT_USER, L"Software\\Corvantis");
        Delete(HKEY_LOCAL_MACHINE, L"Software\\Tarnwell Systems, Inc");
        std::filesystem::remove_all(logs_);
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) Delete(hive, kReaderClassKey);
        for (const wchar_t* name : {L"BeaconOLKAdapter.dll", L"BeaconMapiProp.dll"})
            ASSERT_EQ(BuiltDll(BuiltDll::Path(name)).Call("DllRegisterServer"), S_OK);
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"16.0\\Outlook\\InstallRoot", L"Path", folder_.wstring());
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"9.0\\Outlook\\InstallRoot", L"Path", L"C:\\removed long ago");
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"15.0\\Outlook", L"Bitness", kBits == 64 ? L"x86" : L"x64");
        Disable(L"DisabledItems", L"c:\\office\\another.dll");
        WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", L"1");
    }

    /// Registers one file as the add-in and the reader.
    static void SetFiles(const std::wstring& file) {
        WriteText(HKEY_LOCAL_MACHINE, kServerKey, nullptr, file);
        WriteText(HKEY_LOCAL_MACHINE, kReaderClassKey + L"\\InprocServer32", nullptr, file);
    }

    /// The ids of a run's findings; report_ has the rest.
    std::vector<std::string> Findings(const std::wstring& options = L"", std::optional<DWORD> expectedCode = {}) {
        ChildProcess program(L"beacon-check.exe", L"--json " + options);
        const DWORD code = program.WaitEnd();
        std::string text;
        for (const std::string& line : program.Lines())
            if (!line.starts_with("beacon-check: ")) text += line + "\n";
        report_ = json::parse(text, nullptr, false);
        if (report_.is_discarded()) ADD_FAILURE() << text;
        std::vector<std::string> ids;
        for (const json& finding : report_["findings"]) ids.push_back(finding["id"]);
        EXPECT_EQ(code, expectedCode.value_or(ids.empty() ? 0 : 1));
        EXPECT_EQ(report_["format"], 1);
        return ids;
    }

    using Ids = std::vector<std::string>;

    const std::filesystem::path folder_ = std::filesystem::temp_directory_path() / L"beacon check \x00FC";
    const std::filesystem::path logs_ = std::filesystem::path(_wgetenv(L"AppData")) / L"Corvantis\\Beacon\\logs";
    json report_;
};

struct Running {
    Running() { EXPECT_TRUE(engine.Wait("# ready")); }

    ChildProcess engine{L"standin_engine.exe", L"--raw"};
};

TEST_F(Check, FindsEachProblemAndNothingElse) {
    const Running running;
    const std::wstring other = (folder_ / L"other" / L"OUTLOOK.EXE").wstring();
    const std::wstring noLibrary = (folder_ / L"text.dll").wstring();
    std::ofstream(folder_ / L"text.dll")
        << "This is a text that is long enough for the header of a program, but is none.";
    std::wstring engineLibrary(1024, L'\0');
    auto size = static_cast<DWORD>(engineLibrary.size() * sizeof(wchar_t));
    ASSERT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, kEngineLibraryKey.c_str(), nullptr, RRF_RT_REG_SZ, nullptr,
                           engineLibrary.data(), &size),
              ERROR_SUCCESS);

    const auto outlookOfOther = [&] {
        Delete(HKEY_LOCAL_MACHINE, kOfficeKey + L"16.0");
        WriteText(HKEY_LOCAL_MACHINE, kOfficeKey + L"11.0\\Outlook\\InstallRoot", L"Path",
                  (folder_ / L"other").wstring());
    };

    const struct {
        const char* what;
        std::function<void()> breakIt;
        Ids found;
    } cases[] = {
        {"nothing", [] {}, {}},
        {"no reader", [] { Delete(HKEY_LOCAL_MACHINE, kReaderKey); }, {"reader-not-registered"}},
        {"no add-in", [] { Delete(HKEY_LOCAL_MACHINE, kAddInProgIdKey); }, {"addin-not-registered"}},
        {"files gone", [&] { SetFiles(L"C:\\gone.dll"); }, {"reader-file-missing", "addin-file-missing"}},
        {"no libraries", [&] { SetFiles(noLibrary); }, {"reader-not-a-library", "addin-not-a-library"}},
        {"other bitness", [&] { SetFiles(other); }, {"reader-other-bitness", "addin-other-bitness"}},
        {"another DLL", [&] { SetFiles(L"ole32.dll"); }, {"reader-does-not-load", "addin-does-not-load"}},
        {"unknown to Outlook", [] { Delete(HKEY_LOCAL_MACHINE, kAddInKey); }, {"outlook-key-missing"}},
        {"switched off in other words",
         [] {
             WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"MaxDocUnits", L"12");
             SetNumber(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", 0);
         },
         {"too-few-characters"}},
        {"no Outlook", [] { Delete(HKEY_LOCAL_MACHINE, kOfficeKey + L"16.0"); }, {"outlook-not-found"}},
        {"several things",
         [] {
             WriteText(HKEY_LOCAL_MACHINE, kReaderClassKey + L"\\InprocServer32", L"ThreadingModel", L"Free");
             WriteText(HKEY_LOCAL_MACHINE, kServerKey, L"ThreadingModel", L"");
             SetNumber(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior", 2);
             Delete(HKEY_LOCAL_MACHINE, kAddInLibraryKey);
             Disable(L"DisabledItems", L"c:\\beacon\\beaconolkadapter.dll");
         },
         {"reader-threading-model", "addin-threading-model", "load-behavior", "addin-type-library", "disabled-item"}},
        {"other things",
         [] {
             WriteText(HKEY_CURRENT_USER, kAddInKey, L"LoadBehavior", L"3");
             WriteText(HKEY_LOCAL_MACHINE, kEngineLibraryKey, nullptr, L"C:\\gone.exe");
             Disable(L"CrashingAddinList", L"BeaconOLKAdapter.Connect");
             WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", L"true");
             WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", L"yes");
             WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"MaxDocUnits", L"-1");
         },
         {"load-behavior", "engine-type-library", "disabled-item", "setting-not-used", "setting-not-used",
          "too-few-characters", "nothing-sends"}},
        {"unusual spellings, switched on by the user, and an engine of the other bitness",
         [&] {
             WriteText(HKEY_LOCAL_MACHINE, kServerKey, L"ThreadingModel", L"both");
             WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay", L" 5e2");
             WriteText(HKEY_LOCAL_MACHINE, kEngineLibraryKeyOfOther, nullptr, engineLibrary);
             SetNumber(HKEY_LOCAL_MACHINE, kAddInKey, L"LoadBehavior", 0);
             SetNumber(HKEY_CURRENT_USER, kAddInKey, L"LoadBehavior", 3);
             WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", L"FALSE");
         },
         {}},
        {"Outlook of the other bitness", outlookOfOther,
         kBits == 64 ? Ids{"other-program", "reader-not-registered", "addin-not-registered"} : Ids{}},
        {"the same, whose key for the add-in is missing",
         [&] {
             outlookOfOther();
             WriteText(HKEY_LOCAL_MACHINE, kAddInProgIdKeyOf32Bits + L"\\CLSID", nullptr, kAddInClassId);
             WriteText(HKEY_LOCAL_MACHINE, kServerKeyOf32Bits, nullptr, other);
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
    if (kBits == 64) EXPECT_THAT(report_.dump(), testing::HasSubstr("Software\\\\Wow6432Node\\\\Microsoft"));
    for (const std::wstring& key : {kServerKeyOf32Bits, kAddInProgIdKeyOf32Bits}) Delete(HKEY_LOCAL_MACHINE, key);
}

TEST_F(Check, NamesWhatToDeleteButNoForeignFile) {
    const auto remedy = [this](const std::wstring& registered) {
        SetFiles(registered);
        Findings();
        return report_["findings"][0]["remedy"].get<std::string>() +
               report_["findings"][1]["remedy"].get<std::string>();
    };
    const auto ours = (folder_ / L"BeaconMapiProp.dll").wstring();
    std::ofstream(folder_ / L"BeaconMapiProp.dll") << "garbage";
    EXPECT_THAT(remedy(ours), testing::AllOf(testing::StartsWith("Delete the file \"C:"),
                                             testing::HasSubstr("BeaconMapiProp.dll\". As administrator, repair")));
    EXPECT_THAT(remedy(L"C:\\gone\\BeaconMapiProp.dll"), testing::StartsWith("As administrator, repair"));
    for (const wchar_t* foreign : {L"ole32.dll", L"C:\\gone.dll"})
        EXPECT_THAT(remedy(foreign), testing::AllOf(testing::HasSubstr("Delete the key \"HKEY_LOCAL_MACHINE\\Software\\"
                                                                       "Classes\\CLSID\\{C3EEC785"),
                                                    testing::Not(testing::HasSubstr("Delete the file"))));
}

// Both would let a user's file run with an administrator's rights.
TEST_F(Check, LoadsNothingFromTheCurrentFolderNorOfTheUserAsAdministrator) {
    const auto before = std::filesystem::current_path();
    std::filesystem::copy_file(BuiltDll::Path(L"BeaconMapiProp.dll"), folder_ / L"planted.dll");
    std::filesystem::current_path(folder_);
    SetFiles(L"planted.dll");
    EXPECT_EQ(Findings(), (Ids{"reader-file-missing", "addin-file-missing", "controller-absent"}));
    std::filesystem::current_path(before);

    Restore();
    const std::wstring key = kReaderClassKey + L"\\InprocServer32";
    WriteText(HKEY_CURRENT_USER, key, nullptr, (folder_ / L"planted.dll").wstring());
    EXPECT_EQ(Findings(), (Ids{"run-as-user", "controller-absent"})) << "Wine runs every program as administrator";
    EXPECT_EQ(report_["reader"][0]["state"], "not tried");
}

TEST_F(Check, AsksTheEngineWithATimeOut) {
    EXPECT_EQ(Findings().back(), "controller-absent");
    {
        const Running running;
        EXPECT_EQ(Findings(), Ids{});
        EXPECT_EQ(report_["controller"], "answers");
        running.engine.Write("hang 8\n");
        const ULONGLONG start = GetTickCount64();
        EXPECT_EQ(Findings(L"--wait 200"), Ids{"controller-hangs"});
        EXPECT_LT(GetTickCount64() - start, 6000U);
    }
    const auto nobody = std::make_shared<standin::AutomationObject>(L"Nobody");
    DWORD cookie = 0;
    const auto enter = [&] {
        return RegisterActiveObject(static_cast<IDispatch*>(nobody.get()), kController, ACTIVEOBJECT_STRONG, &cookie);
    };
    HRESULT result = enter();
    for (int i = 0; result == MK_S_MONIKERALREADYREGISTERED && i < 100; ++i) {  // the killed engine's entry goes late
        RevokeActiveObject(cookie, nullptr);
        Sleep(50);
        result = enter();
    }
    ASSERT_EQ(result, S_OK);
    EXPECT_EQ(Findings(), Ids{"controller-fails"});
    RevokeActiveObject(cookie, nullptr);
}

TEST_F(Check, ReportsSettingsAndLogs) {
    const auto setting = [this](const char* name) {
        for (const json& one : report_["settings"])
            if (one["name"] == name) return one["from"].get<std::string>() + " " + one["value"].get<std::string>();
        return std::string("none");
    };
    EXPECT_EQ(Findings(), Ids{"controller-absent"});
    EXPECT_EQ(setting("DefaultAutoUpdate"), "default False");
    EXPECT_EQ(setting("StartAnalysisDelay"), "default 2000");
    EXPECT_EQ(setting("DisplayName"), "default Beacon Toolbar");
    EXPECT_EQ(report_["logs"]["on"], false);
    EXPECT_EQ(report_["outlook"].size(), 1U) << "one has been removed";

    WriteText(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", L"True");
    WriteText(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"StartAnalysisDelay", L"500");
    WriteText(HKEY_LOCAL_MACHINE, kMachineToolbarKey, L"DisplayName", L"\x65E5\x672C");
    SetNumber(HKEY_LOCAL_MACHINE, kMachineAdapterKey, L"Logging", 1);
    EXPECT_EQ(Findings(), (Ids{"controller-absent", "log-folder-missing"}));
    EXPECT_EQ(setting("DefaultAutoUpdate"), "user True");
    EXPECT_EQ(setting("StartAnalysisDelay"), "machine 500");
    EXPECT_EQ(setting("MaxDocUnits"), "default 3072");
    EXPECT_EQ(setting("Logging"), "machine 1");

    std::filesystem::create_directories(logs_.parent_path());
    std::ofstream(logs_) << "a file in the way";
    EXPECT_EQ(Findings(L"--make-log-folder", 3), (Ids{"controller-absent", "log-folder-missing"}));
    EXPECT_THAT(report_["findings"][1]["remedy"].get<std::string>(), testing::HasSubstr("Delete the file"));
    std::filesystem::remove(logs_);

    EXPECT_EQ(Findings(L"--make-log-folder"), Ids{"controller-absent"});
    EXPECT_TRUE(std::filesystem::is_empty(logs_)) << "only the add-in creates the files";
    std::ofstream log(logs_ / L"OlkLog2.txt", std::ios::binary);
    log << "11-25-2026\t10:00:00\tSendMail: Exception in the rule\r\nthe text of the mailException in "
           "Inspector.Send\r\n";
    log.flush();
    EXPECT_EQ(Findings(), Ids{"controller-absent"});
    std::filesystem::create_directory(logs_ / L"OlkLog1.txt");
    EXPECT_EQ(Findings(), (Ids{"controller-absent", "log-read-only"}));
    std::filesystem::remove(logs_ / L"OlkLog1.txt");
    for (const char* number : {"1", "2", "3", "4"})
        log << "11-25-2026\t10:00:0" << number << "\tException in Inspector.Send: gr\xFC\xDF " << number << "\r\n";
    log.close();
    EXPECT_EQ(Findings(), (Ids{"controller-absent", "exceptions-logged"}));
    EXPECT_EQ(report_["logs"]["exceptionCount"], 4);
    EXPECT_EQ(report_["logs"]["exceptions"].size(), 3U);
    EXPECT_EQ(report_["logs"]["exceptions"].back(),
              "OlkLog2.txt: 11-25-2026\t10:00:04\tException in Inspector.Send: gr\xC3\xBC\xC3\x9F 4");
}

TEST_F(Check, PrintsTextForPeople) {
    Delete(HKEY_LOCAL_MACHINE, kReaderKey);
    const auto says = [](const std::wstring& options, DWORD code) {
        ChildProcess program(L"beacon-check.exe", options);
        EXPECT_EQ(program.WaitEnd(), code);
        return testing::PrintToString(program.Lines());
    };
    const std::string text = says(L"", 1);
    EXPECT_THAT(text, testing::ContainsRegex("Reader .*-bit  not registered"));
    EXPECT_THAT(text, testing::HasSubstr("bit programs, the MAPI property reader"));
    EXPECT_THAT(says(L"--version", 0), testing::HasSubstr("beacon-check 1."));
    EXPECT_THAT(says(L"--wait soon", 2), testing::HasSubstr("wrong option: soon"));
}

}  // namespace
}  // namespace beacon::test
