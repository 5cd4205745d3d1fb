#include <windows.h>

#include <add_in_designer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "com/object.h"
#include "com/server_registration.h"
#include "common/threads.h"
#include "outlook/observation/resources.h"
#include "tests/fakes/built_dll.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/imports.h"
#include "tests/fakes/registry_dump.h"

namespace beacon::test {
namespace {

using com::ComPtr;

constexpr CLSID kConnect = {0x6E547C94, 0x44EC, 0x474B, {0xAC, 0x54, 0x1B, 0x05, 0xA2, 0xE3, 0x39, 0xB9}};
constexpr wchar_t kAdapter[] = L"BeaconOLKAdapter.dll";

bool outOfMemory = false;

void* Malloc(size_t size) { return outOfMemory ? nullptr : std::malloc(size); }

void* Calloc(size_t count, size_t size) { return outOfMemory ? nullptr : std::calloc(count, size); }

/// The registered add-in, used as Outlook does: by its name, through COM.
class Dll : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ASSERT_EQ(BuiltDll(BuiltDll::Path(kAdapter)).Call("DllRegisterServer"), S_OK);
        ASSERT_FALSE(BuiltDll::IsLoaded(kAdapter));
    }

    void TearDown() override {
        CoFreeUnusedLibrariesEx(0, 0);
        EXPECT_FALSE(BuiltDll::IsLoaded(kAdapter)) << "something of it is still alive";
        EXPECT_EQ(BuiltDll(BuiltDll::Path(kAdapter)).Call("DllUnregisterServer"), S_OK);
        CoUninitialize();
    }

    static ComPtr<IDTExtensibility2> Create() {
        CLSID id{};
        EXPECT_EQ(CLSIDFromProgID(L"BeaconOLKAdapter.Connect", &id), S_OK);
        EXPECT_EQ(id, kConnect);
        ComPtr<IDTExtensibility2> object;
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IDTExtensibility2),
                                   reinterpret_cast<void**>(object.GetAddressOf())),
                  S_OK);
        return object;
    }

    static bool StaysLoaded() {
        CoFreeUnusedLibrariesEx(0, 0);
        return BuiltDll::IsLoaded(kAdapter);
    }
};

// The tests of the packages compare the rows with those of the installers.
TEST_F(Dll, UnregisteringLeavesWhatWasThere) {
    const std::wstring office = L"Software\\Microsoft\\Office";
    const std::wstring addIns = office + L"\\Outlook\\Addins";
    const BuiltDll dll(BuiltDll::Path(kAdapter));
    const auto callTwice = [&](const char* function) {  // as a repair does, and when nothing is left
        for (int i = 0; i < 2; ++i) EXPECT_EQ(dll.Call(function), S_OK) << function;
    };
    callTwice("DllUnregisterServer");
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, office.c_str());
    for (const std::wstring& root : {std::wstring(L"Software"), office}) {
        // Another's value; the system itself keeps a key that has keys below it.
        if (root == office) RegSetKeyValueW(HKEY_LOCAL_MACHINE, addIns.c_str(), L"Other", REG_SZ, L"x", sizeof L"x");
        const Dump before = DumpOf(root);
        callTwice("DllRegisterServer");
        EXPECT_FALSE(before.empty() || DumpOf(addIns + L"\\BeaconOLKAdapter.Connect").empty());
        const std::wstring below = addIns + L"\\BeaconOLKAdapter.Connect\\one\\deep";  // Outlook's, or a policy's
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, below.c_str(), nullptr, REG_SZ, L"x", sizeof L"x");
        callTwice("DllUnregisterServer");
        const Dump after = DumpOf(root);
        std::vector<std::wstring> different;
        std::ranges::set_symmetric_difference(before, after, std::back_inserter(different));
        EXPECT_EQ(different, std::vector<std::wstring>());
    }
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, office.c_str());
}

TEST_F(Dll, UnregisteringReportsAKeyThatItMayNotDelete) {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CLASSES_ROOT, L"BeaconOLKAdapter.Connect", 0, WRITE_DAC, &key);
    const com::UniqueKey kept(key);
    ACL nobody;
    SECURITY_DESCRIPTOR access;
    InitializeAcl(&nobody, sizeof nobody, ACL_REVISION);
    InitializeSecurityDescriptor(&access, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&access, TRUE, &nobody, FALSE);
    ASSERT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &access), ERROR_SUCCESS);
    EXPECT_EQ(BuiltDll(BuiltDll::Path(kAdapter)).Call("DllUnregisterServer"), E_ACCESSDENIED);
    SetSecurityDescriptorDacl(&access, TRUE, nullptr, FALSE);  // everybody
    RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &access);
}

TEST_F(Dll, UnregisteringLeavesTheNameThat32BitProgramsUseToo) {
    if (com::OtherView() != KEY_WOW64_32KEY) GTEST_SKIP() << "no 64-bit program";
    const std::wstring id = L"{6E547C94-44EC-474B-AC54-1B05A2E339B9}";
    const std::wstring of32Bits = L"Software\\Classes\\Wow6432Node\\CLSID\\" + id;
    com::WriteText(HKEY_LOCAL_MACHINE, of32Bits + L"\\InprocServer32", nullptr, L"C:\\32\\BeaconOLKAdapter.dll");
    EXPECT_EQ(BuiltDll(BuiltDll::Path(kAdapter)).Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(Value(L"Classes\\BeaconOLKAdapter.Connect\\CLSID", nullptr), id);
    EXPECT_EQ(DumpOf(L"Software\\Classes\\CLSID\\" + id), Dump());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, of32Bits.c_str());
}

TEST_F(Dll, ConnectsByNameAndStaysAsLongAsItLives) {
    // Another program may have loaded the shared run-time, which ours must not use. Only the name matters.
    const std::wstring shared = std::filesystem::temp_directory_path() / L"libgcc_s_dw2-1.dll";
    ASSERT_TRUE(CopyFileW(BuiltDll::Path(L"BeaconMapiProp.dll").c_str(), shared.c_str(), FALSE));
    const BuiltDll runTime(shared);
    const auto outlook = std::make_shared<FakeApplication>();
    standin::Resources early, late;
    DWORD freeIndex[2];
    for (int round = 0; round < 12; ++round) {
        const bool disconnects = round % 2 == 0;
        ComPtr<IDTExtensibility2> addIn = Create();
        ASSERT_NE(addIn, nullptr);
        addIn->OnConnection(static_cast<IDispatch*>(outlook.get()), 0, nullptr, nullptr);
        EXPECT_EQ(outlook->Sinks(), 1u);
        EXPECT_TRUE(StaysLoaded());
        if (disconnects) {
            EXPECT_EQ(addIn->OnDisconnection(0, nullptr), S_OK);
            EXPECT_EQ(outlook->OutsideReferences(), 0u) << "an Outlook of these years would never end";
            EXPECT_TRUE(StaysLoaded()) << "the object itself is still held";
        }
        addIn.Reset();
        EXPECT_EQ(outlook->Sinks(), 0u);
        EXPECT_FALSE(StaysLoaded());
        TlsFree(freeIndex[round == 0] = TlsAlloc());
        (round == 0 ? early : late) = standin::Resources::Now();
        // The hook's procedure is gone with the code: the thread's messages still pass.
        MSG message;
        PostThreadMessageW(GetCurrentThreadId(), WM_KEYDOWN, 0, 0);
        EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_KEYDOWN, PM_REMOVE));
    }
    EXPECT_EQ(freeIndex[0], freeIndex[1]) << "of thread storage";
    constexpr size_t kLoads = 11;
    EXPECT_LE(late.handles, early.handles + kLoads * (sizeof(void*) == 8 ? 2 : 3));
    // Wine keeps what is freed for a while where it fills it.
    if (std::getenv("BEACON_FILL_MEMORY") == nullptr) EXPECT_LT(late.heap, early.heap + kLoads) << "KB";
}

TEST_F(Dll, FailsWithoutMemoryOnAnyThread) {
    const BuiltDll dll(BuiltDll::Path(kAdapter));
    const auto get = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(dll.Export("DllGetClassObject"));
    const HMODULE module = GetModuleHandleW(kAdapter);
    ASSERT_NE(ReplaceImport(module, "malloc", reinterpret_cast<void*>(&Malloc)), nullptr);
    ReplaceImport(module, "calloc", reinterpret_cast<void*>(&Calloc));
    constexpr size_t kThreads = 80;  // more than the DLL has places for
    const standin::UniqueHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::vector<standin::UniqueHandle> threads;
    std::atomic<size_t> failures = 0;
    outOfMemory = true;
    while (threads.size() < kThreads) {
        threads.push_back(standin::StartThread([&] {
            void* object = nullptr;
            for (int twice = 0; twice < 2; ++twice)
                if (get(kConnect, IID_IClassFactory, &object) == E_OUTOFMEMORY) ++failures;
            WaitForSingleObject(done.get(), INFINITE);
        }));
        for (int tries = 0; failures < 2 * threads.size() && tries < 500; ++tries) Sleep(1);
    }
    outOfMemory = false;
    SetEvent(done.get());
    for (const auto& thread : threads) WaitForSingleObject(thread.get(), INFINITE);
    EXPECT_EQ(failures.load(), 2 * kThreads);
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(get(kConnect, IID_PPV_ARGS(&factory)), S_OK);
}

TEST_F(Dll, WorksFromAnyFolderAndUnregistersWithoutIt) {
    const std::wstring folder = std::filesystem::temp_directory_path() / L"Beacon f\u00FCr \u65E5\u672C";
    const std::wstring path = folder + L"\\" + kAdapter;
    CreateDirectoryW(folder.c_str(), nullptr);
    ASSERT_TRUE(CopyFileW(BuiltDll::Path(kAdapter).c_str(), path.c_str(), FALSE));
    ASSERT_EQ(BuiltDll(path).Call("DllRegisterServer"), S_OK);
    ComPtr<IDTExtensibility2> object = Create();
    ASSERT_NE(object, nullptr);
    wchar_t loaded[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(kAdapter), loaded, MAX_PATH);
    EXPECT_EQ(loaded, path);
    SAFEARRAY* none = nullptr;
    _variant_t custom;
    custom.vt = VT_ARRAY | VT_VARIANT | VT_BYREF;
    custom.pparray = &none;
    com::Object(object.Get()).Call(L"OnBeginShutdown", {custom});  // by the type library inside
    object.Reset();
    EXPECT_FALSE(StaysLoaded());
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    RemoveDirectoryW(folder.c_str());
    EXPECT_EQ(BuiltDll(BuiltDll::Path(kAdapter)).Call("DllUnregisterServer"), S_OK)
        << "the file that was registered is gone";
    for (const wchar_t* key :
         {L"TypeLib\\{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}", L"Interface\\{4782F604-7662-4EFB-B25F-DC141F49A92D}"})
        EXPECT_TRUE(DumpOf(std::wstring(L"Software\\Classes\\") + key).empty()) << key;
}

}  // namespace
}  // namespace beacon::test
