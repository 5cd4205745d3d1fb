#include <windows.h>

#include <add_in_designer.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "adapter_dll.h"
#include "com/object.h"
#include "common/automation_object.h"

namespace beacon::test {
namespace {

using com::ComPtr;
using com::FromLong;
using com::FromObject;

constexpr CLSID kConnect = {0x6E547C94, 0x44EC, 0x474B, {0xAC, 0x54, 0x1B, 0x05, 0xA2, 0xE3, 0x39, 0xB9}};
constexpr IID kApplicationEvents = {0x0006304E, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

/// As much of Outlook as an add-in sees that is connected at start-up.
class Outlook final : public standin::AutomationObject {
public:
    Outlook() : AutomationObject(L"Application") {
        AddProperty(1, L"Version", [] { return com::FromText(L"10.0.2627"); });
        AddEvents(kApplicationEvents, L"ApplicationEvents");
    }

    IDispatch* Give() { return this; }
};

/// Outlook's "custom" argument: an empty array, by reference.
class Custom {
public:
    Custom() : array_(SafeArrayCreateVector(VT_VARIANT, 1, 0)) {}

    Custom(const Custom&) = delete;
    Custom& operator=(const Custom&) = delete;

    ~Custom() { SafeArrayDestroy(array_); }

    SAFEARRAY** Get() { return &array_; }

    _variant_t Variant() {
        _variant_t value;
        value.vt = VT_ARRAY | VT_VARIANT | VT_BYREF;
        value.pparray = &array_;
        return value;
    }

private:
    SAFEARRAY* array_;
};

/// The registered add-in, used as Outlook does: by its name, through COM.
class Loading : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ASSERT_EQ(AdapterDll().Call("DllRegisterServer"), S_OK);
        ASSERT_FALSE(AdapterDll::IsLoaded());
    }

    void TearDown() override {
        CoFreeUnusedLibrariesEx(0, 0);
        EXPECT_FALSE(AdapterDll::IsLoaded()) << "something of it is still alive";
        EXPECT_EQ(AdapterDll().Call("DllUnregisterServer"), S_OK);
        CoUninitialize();
    }

    static ComPtr<IDispatch> Create() {
        CLSID id{};
        EXPECT_EQ(CLSIDFromProgID(L"BeaconOLKAdapter.Connect", &id), S_OK);
        EXPECT_EQ(id, kConnect);
        ComPtr<IDispatch> object;
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)), S_OK);
        return object;
    }

    static bool StaysLoaded() {
        CoFreeUnusedLibrariesEx(0, 0);
        return AdapterDll::IsLoaded();
    }
};

TEST_F(Loading, ConnectsEarlyAndLateBoundAndLeavesNothingBehind) {
    for (const bool late : {false, true}) {
        SCOPED_TRACE(late ? "by name" : "by interface");
        const auto outlook = std::make_shared<Outlook>();
        {
            ComPtr<IDispatch> object = Create();
            ASSERT_NE(object, nullptr);
            ComPtr<IDTExtensibility2> addIn;
            ASSERT_EQ(object.As(&addIn), S_OK);
            Custom custom;
            const com::Object named(object.Get());
            if (late) {
                named.Call(L"OnConnection",
                           {FromObject(outlook->Give()), FromLong(1), FromObject(nullptr), custom.Variant()});
            } else {
                EXPECT_EQ(addIn->OnConnection(outlook->Give(), 1, nullptr, custom.Get()), S_OK);
            }
            EXPECT_EQ(outlook->Sinks(), 1u);
            for (const wchar_t* name : {L"OnAddInsUpdate", L"OnStartupComplete", L"OnBeginShutdown"})
                named.Call(name, {custom.Variant()});
            EXPECT_TRUE(StaysLoaded());
            if (late)
                named.Call(L"OnDisconnection", {FromLong(0), custom.Variant()});
            else
                EXPECT_EQ(addIn->OnDisconnection(0, custom.Get()), S_OK);
            EXPECT_EQ(outlook->Sinks(), 0u);
            EXPECT_EQ(outlook->OutsideReferences(), 0u) << "an Outlook of these years would never end";
            EXPECT_TRUE(StaysLoaded()) << "the object itself is still held";
        }
        EXPECT_FALSE(StaysLoaded());
    }
}

TEST_F(Loading, WhatLivesKeepsTheCodeLoaded) {
    const auto outlook = std::make_shared<Outlook>();
    Custom custom;
    const AdapterDll dll;
    EXPECT_EQ(dll.Call("DllCanUnloadNow"), S_OK);
    ComPtr<IDispatch> object = Create();
    EXPECT_EQ(dll.Call("DllCanUnloadNow"), S_FALSE);
    ComPtr<IDTExtensibility2> addIn;
    ASSERT_EQ(object.As(&addIn), S_OK);
    object.Reset();
    addIn->OnConnection(outlook->Give(), 1, nullptr, custom.Get());
    ComPtr<IDTExtensibility2> other;
    ASSERT_EQ(CoCreateInstance(kConnect, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IDTExtensibility2),
                               reinterpret_cast<void**>(other.GetAddressOf())),
              S_OK);
    addIn.Reset();
    other->OnDisconnection(0, custom.Get());
    EXPECT_EQ(outlook->OutsideReferences(), 0u);
    EXPECT_EQ(dll.Call("DllCanUnloadNow"), S_FALSE);
    other.Reset();
    EXPECT_EQ(dll.Call("DllCanUnloadNow"), S_OK);
    // The hook's procedure is gone with the code: the thread's messages still pass.
    MSG message;
    PostThreadMessageW(GetCurrentThreadId(), WM_KEYDOWN, 0, 0);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_KEYDOWN, PM_REMOVE));
}

TEST_F(Loading, TheClassObjectAnswersForItsClassOnly) {
    const AdapterDll dll;
    const auto get = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(dll.Export("DllGetClassObject"));
    ASSERT_NE(get, nullptr);

    const struct {
        CLSID classId;
        IID asked;
        HRESULT answer;
    } cases[] = {{kConnect, IID_IClassFactory, S_OK},
                 {kConnect, IID_IUnknown, S_OK},
                 {kConnect, IID_IDispatch, E_NOINTERFACE},
                 {kApplicationEvents, IID_IClassFactory, CLASS_E_CLASSNOTAVAILABLE}};

    for (const auto& one : cases) {
        ComPtr<IUnknown> object;
        EXPECT_EQ(get(one.classId, one.asked, reinterpret_cast<void**>(object.GetAddressOf())), one.answer);
        EXPECT_EQ(object != nullptr, one.answer == S_OK);
        EXPECT_EQ(dll.Call("DllCanUnloadNow"), object == nullptr ? S_OK : S_FALSE);
    }
    EXPECT_EQ(get(kConnect, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(Loading, WorksFromAnyFolderAndUnregistersWithoutIt) {
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    const std::wstring folder = temporary + std::wstring(L"Beacon f\u00FCr \u65E5\u672C");
    const std::wstring path = folder + L"\\BeaconOLKAdapter.dll";
    CreateDirectoryW(folder.c_str(), nullptr);
    ASSERT_TRUE(CopyFileW(AdapterDll::Path().c_str(), path.c_str(), FALSE));
    ASSERT_EQ(AdapterDll(path).Call("DllRegisterServer"), S_OK);
    ComPtr<IDispatch> object = Create();
    ASSERT_NE(object, nullptr);
    wchar_t loaded[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"BeaconOLKAdapter.dll"), loaded, MAX_PATH);
    EXPECT_EQ(loaded, path);
    Custom custom;
    com::Object(object.Get()).Call(L"OnBeginShutdown", {custom.Variant()});  // by the type library inside
    object.Reset();
    EXPECT_FALSE(StaysLoaded());
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    RemoveDirectoryW(folder.c_str());
    EXPECT_EQ(AdapterDll().Call("DllUnregisterServer"), S_OK) << "the file that was registered is gone";
    HKEY left = nullptr;
    EXPECT_NE(RegOpenKeyW(HKEY_CLASSES_ROOT, L"TypeLib\\{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}", &left), ERROR_SUCCESS);
    EXPECT_NE(RegOpenKeyW(HKEY_CLASSES_ROOT, L"Interface\\{4782F604-7662-4EFB-B25F-DC141F49A92D}", &left),
              ERROR_SUCCESS);
}

TEST_F(Loading, NeedsSystemLibrariesOnly) {
    const std::set<std::string> system = {"ADVAPI32.DLL", "GDI32.DLL",  "KERNEL32.DLL", "MSVCRT.DLL",
                                          "OLE32.DLL",    "OLEACC.DLL", "OLEAUT32.DLL", "USER32.DLL"};
    const AdapterDll dll;
    const BYTE* const base = dll.Base();
    ASSERT_NE(base, nullptr);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    std::set<std::string> found;
    for (const auto* one = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); one->Name != 0; ++one) {
        std::string name = reinterpret_cast<const char*>(base + one->Name);
        CharUpperBuffA(name.data(), static_cast<DWORD>(name.size()));
        EXPECT_TRUE(system.contains(name)) << name << " is not on every machine";
        found.insert(name);
    }
    EXPECT_TRUE(found.contains("OLEAUT32.DLL"));
}

}  // namespace
}  // namespace beacon::test
