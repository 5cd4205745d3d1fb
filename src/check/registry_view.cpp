#include "check/registry_view.h"

#include "com/server_registration.h"

namespace beacon::check {
namespace {

REGSAM ViewOf(int bits) { return com::OtherView() == 0 ? 0U : bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY; }

}  // namespace

std::vector<int> BitsOfSystem() {
    if (com::OtherView() == 0) return {kOwnBits};
    return {kOwnBits, 96 - kOwnBits};
}

bool RegistryView::Exists(HKEY hive, const std::wstring& key) const {
    return com::OpenForReading(hive, key, ViewOf(bits)) != nullptr;
}

std::optional<std::wstring> RegistryView::Text(HKEY hive, const std::wstring& key, const wchar_t* name) const {
    return com::ReadText(hive, key, name, ViewOf(bits));
}

std::optional<DWORD> RegistryView::Number(HKEY hive, const std::wstring& key, const wchar_t* name) const {
    const com::UniqueKey opened = com::OpenForReading(hive, key, ViewOf(bits));
    DWORD type = REG_NONE;
    DWORD number = 0;
    DWORD size = sizeof number;
    if (!opened || RegQueryValueExW(opened.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size) != 0 ||
        type != REG_DWORD || size != sizeof number)
        return std::nullopt;
    return number;
}

std::vector<std::wstring> RegistryView::SubKeys(HKEY hive, const std::wstring& key) const {
    std::vector<std::wstring> names;
    const com::UniqueKey opened = com::OpenForReading(hive, key, ViewOf(bits));
    wchar_t name[256];
    while (opened && RegEnumKeyW(opened.get(), static_cast<DWORD>(names.size()), name, 256) == ERROR_SUCCESS)
        names.emplace_back(name);
    return names;
}

std::vector<std::pair<std::wstring, std::string>> RegistryView::Values(HKEY hive, const std::wstring& key) const {
    std::vector<std::pair<std::wstring, std::string>> values;
    const com::UniqueKey opened = com::OpenForReading(hive, key, ViewOf(bits));
    std::wstring name(16384, L'\0');  // the longest name of a value
    for (DWORD i = 0; opened; ++i) {
        std::string bytes;
        DWORD size = 0;
        const auto get = [&](char* data) {
            auto length = static_cast<DWORD>(name.size());
            return RegEnumValueW(opened.get(), i, name.data(), &length, nullptr, nullptr, reinterpret_cast<BYTE*>(data),
                                 &size) == ERROR_SUCCESS;
        };
        if (!get(nullptr)) break;
        bytes.resize(size);
        if (!get(bytes.data())) bytes.clear();
        values.emplace_back(name.c_str(), bytes);
    }
    return values;
}

std::wstring RegistryView::MachineKeyName(const std::wstring& belowSoftware) const {
    return L"HKEY_LOCAL_MACHINE\\Software\\" + Separation() + belowSoftware;
}

std::wstring RegistryView::ClassesKeyName(const std::wstring& belowClasses) const {
    const std::wstring classes = L"Software\\Classes\\";
    const wchar_t* hive =
        Exists(HKEY_CURRENT_USER, classes + belowClasses) ? L"HKEY_CURRENT_USER\\" : L"HKEY_LOCAL_MACHINE\\";
    // Both views share the ProgIDs.
    return hive + classes + (belowClasses.starts_with(L"CLSID\\") ? Separation() : L"") + belowClasses;
}

}  // namespace beacon::check
