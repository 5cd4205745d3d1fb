#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace beacon::check {

inline constexpr int kOwnBits = 8 * sizeof(void*);

/// The bitnesses of programs that this system runs, this program's own first.
std::vector<int> BitsOfSystem();

/// The registry as programs of one bitness see it: a 64-bit system has parts of it twice. Keys are relative to the
/// hive, one of the predefined handles. Nothing here raises an error.
class RegistryView {
public:
    explicit RegistryView(int bits) : bits(bits) {}

    const int bits;

    bool Exists(HKEY hive, const std::wstring& key) const;
    /// nullopt when there is no such text; variables in it ("%ProgramFiles%") are replaced by their values. A null name
    /// is the default value.
    std::optional<std::wstring> Text(HKEY hive, const std::wstring& key, const wchar_t* name = nullptr) const;
    std::optional<DWORD> Number(HKEY hive, const std::wstring& key, const wchar_t* name) const;
    std::vector<std::wstring> SubKeys(HKEY hive, const std::wstring& key) const;
    /// Name and bytes of each value, of whatever type.
    std::vector<std::pair<std::wstring, std::string>> Values(HKEY hive, const std::wstring& key) const;
};

}  // namespace beacon::check
