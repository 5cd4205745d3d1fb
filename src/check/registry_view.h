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

/// The registry as programs of one bitness see it: 64-bit Windows has some keys twice. Keys are relative to the hive,
/// which is a predefined handle. Raises no errors.
class RegistryView {
public:
    explicit RegistryView(int bits) : bits(bits) {}

    const int bits;

    bool Exists(HKEY hive, const std::wstring& key) const;
    /// nullopt if there is no text value of this name; null is the default value. Expands REG_EXPAND_SZ.
    std::optional<std::wstring> Text(HKEY hive, const std::wstring& key, const wchar_t* name = nullptr) const;
    std::optional<DWORD> Number(HKEY hive, const std::wstring& key, const wchar_t* name) const;
    std::vector<std::wstring> SubKeys(HKEY hive, const std::wstring& key) const;
    /// Name and bytes of each value of any type.
    std::vector<std::pair<std::wstring, std::string>> Values(HKEY hive, const std::wstring& key) const;

    /// The names of a key as a registry editor shows them: below Software of the machine, and below Software\Classes of
    /// the user (if the key exists there) or the machine.
    std::wstring MachineKeyName(const std::wstring& belowSoftware) const;
    std::wstring ClassesKeyName(const std::wstring& belowClasses) const;

private:
    /// What separates the keys of 32-bit programs on a 64-bit system.
    std::wstring Separation() const { return bits == 32 && BitsOfSystem().size() == 2 ? L"Wow6432Node\\" : L""; }
};

}  // namespace beacon::check
