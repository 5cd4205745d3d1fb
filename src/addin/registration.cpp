#include "addin/registration.h"

#include <windows.h>

#include <string>

#include "com/dual.h"
#include "com/module.h"
#include "com/text.h"

namespace beacon {
namespace {

constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\{6E547C94-44EC-474B-AC54-1B05A2E339B9}";
constexpr wchar_t kProgIdKey[] = L"Software\\Classes\\BeaconOLKAdapter.Connect";
constexpr wchar_t kLibraryKey32[] =
    L"Software\\Classes\\TypeLib\\{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}\\1.0\\0\\win32";
constexpr wchar_t kLibraryKey64[] =
    L"Software\\Classes\\TypeLib\\{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}\\1.0\\0\\win64";

/// One value under HKEY_LOCAL_MACHINE; a null text stands for the path of the DLL, a null name for the default value.
struct Row {
    const wchar_t* key;
    const wchar_t* subKey;
    const wchar_t* name;
    const wchar_t* text;
};

constexpr Row kRows[] = {
    {kProgIdKey, L"", nullptr, L"Beacon Outlook Adapter"},
    {kProgIdKey, L"\\CLSID", nullptr, L"{6E547C94-44EC-474B-AC54-1B05A2E339B9}"},
    {kClassKey, L"", nullptr, L"Beacon Outlook Adapter"},
    {kClassKey, L"\\InprocServer32", nullptr, nullptr},
    {kClassKey, L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
    {kClassKey, L"\\ProgID", nullptr, L"BeaconOLKAdapter.Connect"},
    {kClassKey, L"\\TypeLib", nullptr, L"{D39C0121-D8F0-4C97-AC96-0C71B3D4705F}"},
    {kClassKey, L"\\Version", nullptr, L"1.0"},
    {kAddInKey, L"", L"FriendlyName", L"Beacon Outlook Adapter"},
    {kAddInKey, L"", L"Description", L"Connects Outlook with Beacon"},
};
constexpr DWORD kLoadAtStartup = 3;

std::wstring ModulePath() {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(com::ModuleInstance(), path, MAX_PATH);
    if (length == 0 || length == MAX_PATH) com::Check(HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER));
    return std::wstring(path, length);
}

// Windows 2000 has neither RegSetKeyValueW nor RegDeleteTreeW.
void Set(const std::wstring& key, const wchar_t* name, DWORD type, const void* data, size_t size) {
    HKEY handle = nullptr;
    LSTATUS code =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &handle, nullptr);
    if (code == ERROR_SUCCESS) {
        code = RegSetValueExW(handle, name, 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
        RegCloseKey(handle);
    }
    com::Check(HRESULT_FROM_WIN32(static_cast<DWORD>(code)));
}

LSTATUS DeleteTree(HKEY parent, const wchar_t* key) {
    HKEY handle = nullptr;
    LSTATUS code = RegOpenKeyExW(parent, key, 0, KEY_ENUMERATE_SUB_KEYS, &handle);
    if (code != ERROR_SUCCESS) return code;
    wchar_t name[256];
    while (code == ERROR_SUCCESS && RegEnumKeyW(handle, 0, name, 256) == ERROR_SUCCESS) code = DeleteTree(handle, name);
    RegCloseKey(handle);
    return code == ERROR_SUCCESS ? RegDeleteKeyW(parent, key) : code;
}

void Delete(const wchar_t* key, LSTATUS& failure) {
    const LSTATUS code = DeleteTree(HKEY_LOCAL_MACHINE, key);
    if (code != ERROR_SUCCESS && code != ERROR_FILE_NOT_FOUND) failure = code;
}

bool Exists(const wchar_t* key) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, KEY_QUERY_VALUE, &handle) != ERROR_SUCCESS) return false;
    RegCloseKey(handle);
    return true;
}

bool IsEmpty(const wchar_t* key) {
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, KEY_QUERY_VALUE, &handle) != ERROR_SUCCESS) return false;
    DWORD keys = 1;
    DWORD values = 1;
    RegQueryInfoKeyW(handle, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr, nullptr,
                     nullptr);
    RegCloseKey(handle);
    return keys == 0 && values == 0;
}

void RegisterLibrary(const std::wstring& path) {
    com::ComPtr<ITypeLib> library;
    com::Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library));
    com::Check(RegisterTypeLib(library.Get(), const_cast<LPOLESTR>(path.c_str()), nullptr));
}

}  // namespace

void RegisterAddIn() {
    const std::wstring path = ModulePath();
    for (const Row& row : kRows) {
        const std::wstring text = row.text == nullptr ? path : row.text;
        Set(std::wstring(row.key) + row.subKey, row.name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }
    Set(kAddInKey, L"LoadBehavior", REG_DWORD, &kLoadAtStartup, sizeof kLoadAtStartup);
    RegisterLibrary(path);
}

void UnregisterAddIn() {
    LSTATUS failure = ERROR_SUCCESS;
    for (const wchar_t* key : {kAddInKey, kProgIdKey, kClassKey}) Delete(key, failure);
    for (const wchar_t* parent : {L"Software\\Microsoft\\Office\\Outlook\\Addins",
                                  L"Software\\Microsoft\\Office\\Outlook", L"Software\\Microsoft\\Office"}) {
        // An empty key only, and not with what another installer may put into it in the meantime.
        if (!IsEmpty(parent) || RegDeleteKeyW(HKEY_LOCAL_MACHINE, parent) != ERROR_SUCCESS) break;
    }
    // Systems differ in what they call a library that is not registered, so it is looked up first.
    const bool is64Bits = sizeof(void*) == 8;
    if (Exists(is64Bits ? kLibraryKey64 : kLibraryKey32)) {
        // The system reads the registered file to know what to remove, and that copy of the DLL may be gone.
        RegisterLibrary(ModulePath());
        com::Check(UnRegisterTypeLib(kAddInLibrary, 1, 0, LOCALE_NEUTRAL, is64Bits ? SYS_WIN64 : SYS_WIN32));
    }
    com::Check(HRESULT_FROM_WIN32(static_cast<DWORD>(failure)));
}

}  // namespace beacon
