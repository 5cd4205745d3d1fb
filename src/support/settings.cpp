#include "support/settings.h"

#include <optional>

#include "support/numbers.h"
#include "support/registry.h"

namespace beacon {
namespace {

/// A switch of the machine; on for the number 1 only.
struct Switch {
    void Read(const wchar_t* name) {
        if (isRead) return;
        on = modGetDword(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name) == 1;
        isRead = true;
    }

    bool on = false;
    bool isRead = false;
};

Switch logging;
Switch useObjectModel;

std::optional<std::wstring> MachineSetting(const wchar_t* name) {
    std::wstring value;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name, value)) return std::nullopt;
    return value;
}

}  // namespace

const bool& gLogging = logging.on;
const bool& gUseObjectModel = useObjectModel.on;

void ReadLoggingSetting() { logging.Read(L"Logging"); }

void ReadUseObjectModelSetting() { useObjectModel.Read(L"UseObjectModel"); }

void ForgetSwitches() noexcept { logging = useObjectModel = {}; }

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
