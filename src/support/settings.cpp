#include "support/settings.h"

#include <optional>

#include "support/numbers.h"
#include "support/registry.h"

namespace beacon {
namespace {

bool SwitchIsOn(const wchar_t* name) { return modGetDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name) == 1; }

std::optional<std::wstring> MachineSetting(const wchar_t* name) {
    std::wstring value;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name, value)) return std::nullopt;
    return value;
}

}  // namespace

void ReadLoggingSetting() {
    if (gLoggingRead) return;
    gLogging = SwitchIsOn(L"Logging");
    gLoggingRead = true;
}

void ReadUseObjectModelSetting() {
    if (gUseObjectModelRead) return;
    gUseObjectModel = SwitchIsOn(L"UseObjectModel");
    gUseObjectModelRead = true;
}

long GetMaxDocUnits() { return MaxDocUnitsFromText(MachineSetting(L"MaxDocUnits")); }

long GetStartAnalysisDelay() { return StartAnalysisDelayFromText(MachineSetting(L"StartAnalysisDelay")); }

std::wstring GetEnableToolbar() {
    std::wstring value;
    GetRegValue(HKEY_CURRENT_USER, kUserAdapterKey, L"EnableToolbar", value);
    return value;
}

bool ReadDefaultAutoUpdate() {
    std::wstring value;
    return GetRegValue(HKEY_CURRENT_USER, kUserAdapterKey, L"DefaultAutoUpdate", value) && value == L"True";
}

}  // namespace beacon
