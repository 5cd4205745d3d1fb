#pragma once

#include <windows.h>

#include <set>
#include <string>

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

/// A string or DWORD below HKEY_LOCAL_MACHINE\Software, as text.
inline std::wstring Value(const std::wstring& key, const wchar_t* name) {
    BYTE data[2 * MAX_PATH] = {};
    DWORD size = sizeof data;
    DWORD type = REG_NONE;
    const LSTATUS code = RegGetValueW(HKEY_LOCAL_MACHINE, (L"Software\\" + key).c_str(), name,
                                      RRF_RT_REG_SZ | RRF_RT_REG_DWORD, &type, data, &size);
    if (code != ERROR_SUCCESS) return L"(error " + std::to_wstring(code) + L")";
    return type == REG_SZ ? reinterpret_cast<wchar_t*>(data) : std::to_wstring(*reinterpret_cast<DWORD*>(data));
}

}  // namespace beacon::test
