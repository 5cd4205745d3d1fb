#include "check/settings_in_force.h"

#include "support/numbers.h"
#include "support/registry.h"
#include "support/settings.h"

namespace beacon::check {
namespace {

/// `value` is what the add-in makes of the registered text; null if it uses the text as it is.
SettingInForce Find(HKEY hive, const wchar_t* key, const wchar_t* name, const std::wstring* value,
                    const wchar_t* fallback = L"") {
    const std::wstring inForce = value != nullptr ? *value : fallback;
    std::wstring registered;
    if (!GetRegValue(hive, key, name, registered)) return {name, inForce, Origin::Default, {}};
    const Origin origin = hive == HKEY_CURRENT_USER ? Origin::User : Origin::Machine;
    return {name, value != nullptr ? inForce : registered, origin, registered};
}

SettingInForce OfUser(const wchar_t* name, const std::wstring& value) {
    return Find(HKEY_CURRENT_USER, kUserAdapterKey, name, &value);
}

SettingInForce OfMachine(const wchar_t* name, long value) {
    const std::wstring text = DecimalText(value);
    return Find(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name, &text);
}

/// Any text but these two neither shows nor removes the bar.
std::wstring EnableToolbarInForce() {
    const std::wstring text = GetEnableToolbar();
    return text == L"0" || text == L"1" ? text : L"";
}

}  // namespace

std::vector<SettingInForce> SettingsInForce() {
    ReadLoggingSetting();
    ReadUseObjectModelSetting();
    return {OfUser(setting::kDefaultAutoUpdate, ReadDefaultAutoUpdate() ? L"True" : L"False"),
            OfUser(setting::kEnableToolbar, EnableToolbarInForce()),
            OfUser(setting::kHasInstalled,
                   DecimalText(modGetDword(HKEY_CURRENT_USER, kUserAdapterKey, setting::kHasInstalled))),
            OfMachine(setting::kStartAnalysisDelay, GetStartAnalysisDelay()),
            OfMachine(setting::kLogging, gLogging ? 1 : 0),
            OfMachine(setting::kUseObjectModel, gUseObjectModel ? 1 : 0),
            OfMachine(setting::kMaxDocUnits, GetMaxDocUnits()),
            Find(HKEY_LOCAL_MACHINE, kMachineKey, setting::kProgramDirectory, nullptr),
            Find(HKEY_LOCAL_MACHINE, kMachineToolbarKey, setting::kDisplayName, nullptr, setting::kDefaultDisplayName)};
}

bool IsMisread(const SettingInForce& setting) {
    if (!setting.registered || setting.registered->empty() || *setting.registered == setting.value) return false;
    const std::wstring& text = *setting.registered;
    if (setting.name == std::wstring(setting::kDefaultAutoUpdate))
        return text != L"0" && lstrcmpiW(text.c_str(), L"False") != 0;
    const auto number = ParseLong(text);
    return !number || DecimalText(*number) != setting.value;
}

}  // namespace beacon::check
