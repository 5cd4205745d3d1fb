#include "support/registry.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "com/text.h"
#include "support/numbers.h"
#include "support/string_values.h"

namespace beacon {
namespace {

using com::FromAnsi;
using com::ToAnsi;

constexpr DWORD kLongestYield = 1000;  // ms

std::wstring lastError;

/// Opens or creates a key by a function of the system, whose name the error text has.
long OpenBy(decltype(&RegOpenKeyA) function, const wchar_t* name, HKEY hive, const std::wstring& subKey,
            com::UniqueKey& key) {
    HKEY opened = nullptr;
    const long code = function(hive, ToAnsi(subKey).c_str(), &opened);
    key.reset(opened);
    if (code == ERROR_SUCCESS) return code;
    // A predefined handle is a sign-extended 32-bit number.
    const auto number = static_cast<std::uint32_t>(reinterpret_cast<ULONG_PTR>(hive));
    lastError = name + (L"(" + HexText(number)) + L"," + subKey + L") failed: " + DecimalText(code);
    return code;
}

std::wstring WithoutLeadingBackslash(const std::wstring& key) { return key.starts_with(L'\\') ? key.substr(1) : key; }

bool IsString(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

/// The bytes of a string value of this size; blanks where the value has become shorter.
std::optional<std::string> StringBytes(HKEY key, const std::string& name, DWORD size) {
    std::string buffer(size, ' ');
    if (RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(buffer.data()), &size) !=
        ERROR_SUCCESS)
        return std::nullopt;
    return buffer;
}

/// nullopt and a text in lastError if the value is no string.
std::optional<std::wstring> ReadString(HKEY hive, const std::wstring& givenKey, const std::wstring& name) {
    com::UniqueKey key;
    OpenRegKey(hive, WithoutLeadingBackslash(givenKey), key);
    const std::string ansiName = ToAnsi(name);
    DWORD type = REG_NONE;
    DWORD size = 0;
    const bool known = key != nullptr &&
                       RegQueryValueExA(key.get(), ansiName.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS;
    if (!known || !IsString(type)) {
        lastError = L"modGetString - Value Type is not REGSZ";
        return std::nullopt;
    }
    const auto bytes = StringBytes(key.get(), ansiName, size);
    if (!bytes) {
        lastError = L"RegQueryValueEx() failed";
        return std::nullopt;
    }
    if (type != REG_MULTI_SZ) return FromAnsi(StripNulls(*bytes));
    std::wstring result = FromAnsi(SeveralStrings(*bytes));
    std::replace(result.begin(), result.end(), L'\0', L'\r');
    return result;
}

/// nullopt and a text in lastError if the value cannot be read; 0 for another type.
std::optional<long> ReadDword(HKEY hive, const std::wstring& subKey, const std::wstring& name) {
    com::UniqueKey key;
    if (OpenRegKey(hive, subKey, key) != ERROR_SUCCESS) return std::nullopt;
    DWORD type = REG_NONE;
    LONG data = 0;
    DWORD size = sizeof data;
    const long code =
        RegQueryValueExA(key.get(), ToAnsi(name).c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&data), &size);
    if (code == ERROR_SUCCESS) return type == REG_DWORD ? data : 0;
    lastError = L"modGetDword: RegQueryValueEx(" + subKey + L"\\" + name + L") failed " + DecimalText(code);
    return std::nullopt;
}

}  // namespace

const std::wstring& gRegLastError = lastError;

DWORD HasPendingInput() { return GetQueueStatus(QS_KEY | QS_MOUSEBUTTON | QS_PAINT | QS_HOTKEY); }

void DoEventsIfPending() {
    if (HasPendingInput() == 0) return;
    // A window that does not validate its paint region and fast timers produce messages without end.
    const DWORD start = GetTickCount();
    MSG message;
    while (GetTickCount() - start < kLongestYield && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));  // for the host's own loop
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

long OpenRegKey(HKEY hive, const std::wstring& subKey, com::UniqueKey& key) {
    return OpenBy(&RegOpenKeyA, L"RegOpenKey", hive, subKey, key);
}

long CreateRegKey(HKEY hive, const std::wstring& subKey, com::UniqueKey& key) {
    return OpenBy(&RegCreateKeyA, L"RegCreateKey", hive, subKey, key);
}

std::wstring modGetString(HKEY hive, const std::wstring& key, const std::wstring& name) {
    return ReadString(hive, key, name).value_or(L"");
}

long modGetDword(HKEY hive, const std::wstring& key, const std::wstring& name) {
    return ReadDword(hive, key, name).value_or(0);
}

bool GetRegValue(HKEY hive, const std::wstring& key, const std::wstring& name, std::wstring& value) {
    lastError.clear();
    value.clear();
    if (const auto text = ReadString(hive, key, name)) {
        value = *text;
        return true;
    }
    lastError.clear();
    const auto number = ReadDword(hive, WithoutLeadingBackslash(key), name);
    if (number) value = DecimalText(*number);
    return number.has_value();
}

void SetRegString(HKEY hive, const std::wstring& subKey, const std::wstring& name, const std::wstring& value) {
    if (com::UniqueKey key; CreateRegKey(hive, subKey, key) == ERROR_SUCCESS) {
        const std::string bytes = ToAnsi(value);
        RegSetValueExA(key.get(), ToAnsi(name).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.c_str()),
                       static_cast<DWORD>(bytes.size() + 1));
    }
    DoEventsIfPending();
}

void SetRegDword(HKEY hive, const std::wstring& subKey, const std::wstring& name, long value) {
    com::UniqueKey key;
    if (CreateRegKey(hive, subKey, key) != ERROR_SUCCESS) return;
    const LONG data = value;
    RegSetValueExA(key.get(), ToAnsi(name).c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data), sizeof data);
}

}  // namespace beacon
