#pragma once

#include <windows.h>

#include <set>
#include <string>

#include "com/server_registration.h"

namespace beacon::test {

using Dump = std::set<std::wstring>;

/// The tree of a key under HKEY_LOCAL_MACHINE, one line for each key and value. "Software" includes WOW6432Node.
inline Dump DumpOf(const std::wstring& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return {};
    Dump dump = {path};
    wchar_t name[1024];
    DWORD length = 1024;
    DWORD size = 0;
    DWORD type = REG_NONE;
    for (DWORD i = 0; RegEnumValueW(key, i, name, &length, nullptr, &type, nullptr, &size) == ERROR_SUCCESS; ++i) {
        std::wstring data(size / 2 + 1, L'\0');
        RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &size);
        dump.insert(path + L"\\" + name + L" = " + std::to_wstring(type) + L":" + data);
        length = 1024;
    }
    for (DWORD i = 0; RegEnumKeyW(key, i, name, 1024) == ERROR_SUCCESS; ++i) dump.merge(DumpOf(path + L"\\" + name));
    RegCloseKey(key);
    return dump;
}

/// A string below HKEY_LOCAL_MACHINE\Software.
inline std::wstring Value(const std::wstring& key, const wchar_t* name) {
    return com::ReadText(HKEY_LOCAL_MACHINE, L"Software\\" + key, name).value_or(L"");
}

}  // namespace beacon::test
