#include <windows.h>

#include <gtest/gtest.h>
#include <oleauto.h>
#include <wrl/client.h>

#include <map>
#include <string>
#include <vector>

#include "adapter_dll.h"

namespace beacon::test {
namespace {

using Microsoft::WRL::ComPtr;

constexpr wchar_t kOffice[] = L"Software\\Microsoft\\Office";
constexpr wchar_t kAddIns[] = L"Software\\Microsoft\\Office\\Outlook\\Addins";
constexpr wchar_t kAddIn[] = L"Software\\Microsoft\\Office\\Outlook\\Addins\\BeaconOLKAdapter.Connect";
constexpr wchar_t kClass[] = L"Software\\Classes\\CLSID\\{6E547C94-44EC-474B-AC54-1B05A2E339B9}";
constexpr wchar_t kProgId[] = L"Software\\Classes\\BeaconOLKAdapter.Connect";
constexpr wchar_t kLibrary[] = L"Software\\Classes\\TypeLib\\{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}\\1.0";
constexpr GUID kLibraryId = {0xD39C0121, 0xD8F0, 0x4C97, {0xAC, 0x96, 0x0C, 0x71, 0xB3, 0xD4, 0x70, 0x5F}};

/// Keys end with "\"; values carry their type and bytes.
using Dump = std::map<std::wstring, std::wstring>;

void DumpKey(HKEY parent, const std::wstring& path, Dump& dump) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    dump[path + L"\\"] = L"key";
    wchar_t name[1024];
    for (DWORD i = 0;; ++i) {
        DWORD length = static_cast<DWORD>(std::size(name));
        DWORD size = 0;
        DWORD type = REG_NONE;
        if (RegEnumValueW(key, i, name, &length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) break;
        std::wstring data(size / 2 + 1, L'\0');
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &size);
        dump[path + L"\\" + name] = std::to_wstring(type) + L":" + data;
    }
    std::vector<std::wstring> children;
    for (DWORD i = 0;; ++i) {
        DWORD length = static_cast<DWORD>(std::size(name));
        if (RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        children.emplace_back(name);
    }
    RegCloseKey(key);
    for (const std::wstring& child : children) DumpKey(parent, path + L"\\" + child, dump);
}

/// A key under HKEY_LOCAL_MACHINE with everything below it; "Software" includes the 32-bit programs' part.
Dump DumpOf(const wchar_t* key) {
    Dump dump;
    DumpKey(HKEY_LOCAL_MACHINE, key, dump);
    return dump;
}

/// What differs, by name.
std::vector<std::wstring> Differences(const Dump& before, const Dump& after) {
    std::vector<std::wstring> result;
    for (const auto& [name, value] : before) {
        const auto found = after.find(name);
        if (found == after.end()) result.push_back(L"- " + name);
        if (found != after.end() && found->second != value) result.push_back(L"! " + name);
    }
    for (const auto& [name, value] : after)
        if (!before.contains(name)) result.push_back(L"+ " + name);
    return result;
}

std::wstring Text(const wchar_t* key, const wchar_t* name) {
    wchar_t text[MAX_PATH] = L"";
    DWORD size = sizeof text;
    const LSTATUS code = RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, text, &size);
    return code == ERROR_SUCCESS ? text : L"(error " + std::to_wstring(code) + L")";
}

class Registration : public testing::Test {
protected:
    void SetUp() override {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        dll_.Call("DllUnregisterServer");
    }

    void TearDown() override {
        EXPECT_EQ(dll_.Call("DllUnregisterServer"), S_OK);
        CoUninitialize();
    }

    AdapterDll dll_;
};

TEST_F(Registration, WritesItsRows) {
    ASSERT_EQ(dll_.Call("DllRegisterServer"), S_OK);
    const std::wstring path = AdapterDll::Path();

    const struct {
        std::wstring key;
        const wchar_t* name;
        std::wstring text;
    } rows[] = {
        {kAddIn, L"FriendlyName", L"Beacon Outlook Adapter"},
        {kAddIn, L"Description", L"Connects Outlook with Beacon"},
        {std::wstring(kProgId) + L"\\CLSID", nullptr, L"{6E547C94-44EC-474B-AC54-1B05A2E339B9}"},
        {std::wstring(kClass) + L"\\InprocServer32", nullptr, path},
        {std::wstring(kClass) + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {std::wstring(kClass) + L"\\ProgID", nullptr, L"BeaconOLKAdapter.Connect"},
        {std::wstring(kClass) + L"\\TypeLib", nullptr, L"{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}"},
        {std::wstring(kLibrary) + (sizeof(void*) == 8 ? L"\\0\\win64" : L"\\0\\win32"), nullptr, path},
    };

    for (const auto& row : rows) EXPECT_EQ(Text(row.key.c_str(), row.name), row.text);
    DWORD behaviour = 0;
    DWORD size = sizeof behaviour;
    EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, kAddIn, L"LoadBehavior", RRF_RT_REG_DWORD, nullptr, &behaviour, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(behaviour, 3u) << "loaded and connected when Outlook starts";
}

TEST_F(Registration, ItsTypeLibraryDescribesItsInterfaces) {
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(kLibraryId, 1, 0, LOCALE_NEUTRAL, &library), TYPE_E_LIBNOTREGISTERED);
    ASSERT_EQ(dll_.Call("DllRegisterServer"), S_OK);
    ASSERT_EQ(LoadRegTypeLib(kLibraryId, 1, 0, LOCALE_NEUTRAL, &library), S_OK);
    const IID interfaces[] = {
        {0x4782F604, 0x7662, 0x4EFB, {0xB2, 0x5F, 0xDC, 0x14, 0x1F, 0x49, 0xA9, 0x2D}},
        {0x069CF5D1, 0x8B17, 0x4CAE, {0x90, 0x0A, 0xAE, 0xD2, 0x8E, 0xB4, 0xAE, 0x3E}},
        {0x7A70A5A9, 0xB3E8, 0x4C18, {0x93, 0xE7, 0x75, 0x5D, 0x7D, 0x2A, 0xD8, 0x48}},
    };
    for (const IID& id : interfaces) {
        ComPtr<ITypeInfo> info;
        ASSERT_EQ(library->GetTypeInfoOfGuid(id, &info), S_OK);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
        EXPECT_TRUE(attributes->wTypeFlags & TYPEFLAG_FDUAL);
        info->ReleaseTypeAttr(attributes);
    }
}

TEST_F(Registration, UnregisteringLeavesNothing) {
    const Dump before = DumpOf(L"Software");
    ASSERT_GT(before.size(), 1000u);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(dll_.Call("DllRegisterServer"), S_OK) << "as a repair does";
    EXPECT_FALSE(DumpOf(kLibrary).empty());
    for (int i = 0; i < 2; ++i) EXPECT_EQ(dll_.Call("DllUnregisterServer"), S_OK) << "also when there is nothing left";
    EXPECT_EQ(Differences(before, DumpOf(L"Software")), std::vector<std::wstring>());
}

TEST_F(Registration, LeavesOtherAddInsAlone) {
    const std::wstring other = std::wstring(kAddIns) + L"\\Other.AddIn";
    const DWORD behaviour = 2;
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, other.c_str(), L"LoadBehavior", REG_DWORD, &behaviour, sizeof behaviour);
    const Dump before = DumpOf(kOffice);
    EXPECT_EQ(before.size(), 5u);
    EXPECT_EQ(dll_.Call("DllRegisterServer"), S_OK);
    EXPECT_NE(DumpOf(kOffice), before);
    EXPECT_EQ(dll_.Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(Differences(before, DumpOf(kOffice)), std::vector<std::wstring>());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kOffice);
}

}  // namespace
}  // namespace beacon::test
