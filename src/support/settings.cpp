#include "support/settings.h"

#include <optional>

#include "support/numbers.h"
#include "support/registry.h"

namespace beacon {
namespace {

std::optional<std::wstring> MachineSetting(const wchar_t* name) {
    std::wstring value;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name, value)) return std::nullopt;
    return value;
}

/// "" if there is none.
std::wstring UserSetting(const wchar_t* name) {
    std::wstring value;
    GetRegValue(HKEY_CURRENT_USER, kUserAdapterKey, name, value);
    return value;
}

void ReadSwitch(const wchar_t* name, bool& on, bool& isRead) {
    if (!isRead) on = modGetDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name) == 1;
    isRead = true;
}

}  // namespace

void ReadLoggingSetting() { ReadSwitch(setting::kLogging, gLogging, gLoggingRead); }

void ReadUseObjectModelSetting() { ReadSwitch(setting::kUseObjectModel, gUseObjectModel, gUseObjectModelRead); }

long GetMaxDocUnits() { return MaxDocUnitsFromText(MachineSetting(setting::kMaxDocUnits)); }

long GetStartAnalysisDelay() { return StartAnalysisDelayFromText(MachineSetting(setting::kStartAnalysisDelay)); }

std::wstring GetEnableToolbar() { return UserSetting(setting::kEnableToolbar); }

bool ReadDefaultAutoUpdate() { return UserSetting(setting::kDefaultAutoUpdate) == L"True"; }

}  // namespace beacon
