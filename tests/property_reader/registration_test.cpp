#include <gtest/gtest.h>
#include <mapi_prop.h>

#include <cstddef>
#include <filesystem>
#include <fstream>

#include "com/object.h"
#include "com/server_registration.h"
#include "tests/fakes/built_dll.h"
#include "tests/fakes/registry_dump.h"

namespace beacon::test {
namespace {

constexpr wchar_t kReader[] = L"BeaconMapiProp.dll";
constexpr HRESULT kTaken = static_cast<HRESULT>(0x800700B7);  // "already exists"
const std::wstring kName = L"Classes\\Mapiprop.MAPIPropWrapper";
const std::wstring kClassId = L"{C3EEC785-E482-475A-BB9A-D368521FD50A}";
const std::wstring kClass = L"Classes\\CLSID\\" + kClassId;
const std::wstring kLibrary = L"Classes\\TypeLib\\{53329747-6296-4990-BB17-EB73F51301BD}";
const std::wstring kInterface = L"Classes\\Interface\\{1B38C644-9A59-42F1-9BAA-CF6C806DBA85}";
const std::wstring kOtherClassId = L"{00000001-0002-0003-0004-000000000005}";
const std::wstring kOtherClass = L"Classes\\CLSID\\" + kOtherClassId;

void Set(const std::wstring& key, const std::wstring& text) {
    com::WriteText(HKEY_LOCAL_MACHINE, L"Software\\" + key, nullptr, text);
}

void Delete(const std::wstring& key) { RegDeleteTreeW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str()); }

Dump Registered() {
    Dump dump;
    for (const std::wstring& key : {kName, kClass, kOtherClass, kLibrary, kInterface})
        dump.merge(DumpOf(L"Software\\" + key));
    return dump;
}

class Registration : public testing::Test {
protected:
    void SetUp() override { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }

    void TearDown() override {
        for (const std::wstring& key : {kName, kClass, kOtherClass, kLibrary, kInterface}) Delete(key);
        CoFreeUnusedLibrariesEx(0, 0);
        CoUninitialize();
    }

    HRESULT Register() const { return BuiltDll(path_).Call("DllRegisterServer"); }

    HRESULT Unregister() const { return BuiltDll(path_).Call("DllUnregisterServer"); }

    const std::wstring path_ = BuiltDll::Path(kReader);
};

TEST_F(Registration, MakesTheReaderThatTheAdapterAsksForAndLeavesNothing) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Register(), S_OK) << "as a repair does";
    CLSID id{};
    ASSERT_EQ(CLSIDFromProgID(L"Mapiprop.MAPIPropWrapper", &id), S_OK);
    com::ComPtr<IDispatch> reader;
    ASSERT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&reader)), S_OK);
    com::Object(reader.Get()).Call(L"Initialize");
    com::Object(reader.Get()).Call(L"Uninitialize");
    reader.Reset();
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_TRUE(BuiltDll::IsLoaded(kReader)) << "COM would load it again for the next item";
    EXPECT_EQ(BuiltDll(path_).Call("DllCanUnloadNow"), S_OK) << "no object of it is left";
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Unregister(), S_OK);
    EXPECT_EQ(Registered(), Dump());
}

TEST_F(Registration, FailsIfAnotherProgramHasAReader) {
    wchar_t folder[MAX_PATH];
    GetSystemDirectoryW(folder, MAX_PATH);
    const std::wstring other = std::wstring(folder) + L"\\ole32.dll";

    const struct {
        std::wstring classId;
        const wchar_t* server;
        std::wstring file;
        bool hasName = true;
    } others[] = {
        {kClassId, L"\\InprocServer32", other, false},
        {kClassId, L"\\InprocServer32", L"ole32.dll"},
        {kOtherClassId, L"\\InprocServer32", other},
        {kOtherClassId, L"\\LocalServer32", L"\"C:\\reader.exe\" -x"},
    };

    for (const auto& one : others) {
        const std::wstring key = L"Classes\\CLSID\\" + one.classId;
        if (one.hasName) Set(kName + L"\\CLSID", one.classId);
        Set(key + one.server, one.file);
        const Dump with = Registered();
        EXPECT_EQ(Register(), kTaken) << one.file.c_str();
        EXPECT_EQ(Unregister(), S_OK);
        EXPECT_EQ(Registered(), with) << one.file.c_str();
        Delete(key);
    }
}

/// Writes the other bitness into the header of a program file.
void ChangeBitness(const std::filesystem::path& path) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    LONG header = 0;
    file.seekg(offsetof(IMAGE_DOS_HEADER, e_lfanew)).read(reinterpret_cast<char*>(&header), sizeof header);
    const WORD machine = sizeof(void*) == 8 ? IMAGE_FILE_MACHINE_I386 : IMAGE_FILE_MACHINE_AMD64;
    file.seekp(header + LONG{offsetof(IMAGE_NT_HEADERS, FileHeader)}).write(reinterpret_cast<const char*>(&machine), 2);
}

TEST_F(Registration, ReplacesAReaderThatCannotBeLoaded) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "readers";
    std::filesystem::create_directory(folder);
    std::filesystem::copy_file(path_, folder / kReader);
    std::filesystem::copy_file(path_, folder / "other_bits.dll");
    ChangeBitness(folder / "other_bits.dll");
    std::ofstream(folder / "text.dll") << "MZ, but no program";
    std::ofstream(folder / "empty.dll").flush();
    for (const wchar_t* name : {L"missing.dll", L"text.dll", L"empty.dll", L"other_bits.dll", kReader}) {
        for (const std::wstring& id : {kClassId, kOtherClassId}) {
            Set(kName + L"\\CLSID", id);
            Set(L"Classes\\CLSID\\" + id + L"\\InprocServer32", (folder / name).wstring());
            EXPECT_EQ(Register(), S_OK) << name;
            EXPECT_EQ(Value(kClass + L"\\InprocServer32", nullptr), path_) << name;
            EXPECT_EQ(Value(kName + L"\\CLSID", nullptr), kClassId) << name;
        }
    }
    std::filesystem::remove_all(folder);
}

TEST_F(Registration, LeavesANameAndALibraryThatNameAnotherMeanwhile) {
    const std::wstring library = kLibrary + L"\\1.0\\0\\" + (sizeof(void*) == 8 ? L"win64" : L"win32");
    EXPECT_EQ(Register(), S_OK);
    Set(kName + L"\\CLSID", kOtherClassId);
    Set(library, L"C:\\other.dll");
    EXPECT_EQ(Unregister(), S_OK);
    EXPECT_EQ(DumpOf(L"Software\\" + kClass), Dump());
    EXPECT_EQ(Value(kName + L"\\CLSID", nullptr), kOtherClassId);
    EXPECT_EQ(Value(library, nullptr), L"C:\\other.dll");
}

TEST_F(Registration, LeavesTheNameThat32BitProgramsUseToo) {
    if (com::OtherView() != KEY_WOW64_32KEY) GTEST_SKIP() << "no 64-bit program";
    const std::wstring classes = L"Classes\\Wow6432Node\\CLSID\\";
    Set(classes + kOtherClassId + L"\\LocalServer32", L"C:\\reader.exe");
    Set(kName + L"\\CLSID", kOtherClassId);
    const Dump with = Registered();
    EXPECT_EQ(Register(), kTaken);
    EXPECT_EQ(Registered(), with);
    Delete(classes + kOtherClassId);
    Set(classes + kClassId + L"\\InprocServer32", L"C:\\32\\BeaconMapiProp.dll");
    EXPECT_EQ(Register(), S_OK);
    EXPECT_EQ(Unregister(), S_OK);
    EXPECT_EQ(Value(kName + L"\\CLSID", nullptr), kClassId);
    EXPECT_EQ(DumpOf(L"Software\\" + kClass), Dump());
    Delete(classes + kClassId);
}

}  // namespace
}  // namespace beacon::test
