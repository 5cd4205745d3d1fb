#include "support/settings.h"

#include <optional>

#include "support/numbers.h"
#include "support/registry.h"
#include "support/registry_watch.h"

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
bool loggingIsOff = false;

RegistryWatch& MachineAdapterWatch() {
    static RegistryWatch watch(HKEY_LOCAL_MACHINE, kMachineAdapterKey);
    return watch;
}

RegistryWatch& UserAdapterWatch() {
    static RegistryWatch watch(HKEY_CURRENT_USER, kUserAdapterKey);
    return watch;
}

/// What was read of a key stays until the registry reports a change.
template <class Value>
class Kept {
public:
    template <class Read>
    const Value& Get(RegistryWatch& watch, Read&& read) {
        const unsigned version = watch.Version();
        if (version != version_) value_ = read();
        version_ = version;
        return value_;
    }

    /// What the last Get gave.
    const Value& Last() const { return value_; }

private:
    Value value_{};
    unsigned version_ = 0;  // a watch begins with 1
};

std::optional<DWORD> maxDocUnitsTick;  // of the clock, in which the registry was asked

std::optional<std::wstring> MachineSetting(const wchar_t* name) {
    std::wstring value;
    if (!GetRegValue(HKEY_LOCAL_MACHINE, kMachineAdapterKey, name, value)) return std::nullopt;
    return value;
}

/// "" when there is none.
std::wstring UserSetting(const wchar_t* name) {
    std::wstring value;
    GetRegValue(HKEY_CURRENT_USER, kUserAdapterKey, name, value);
    return value;
}

}  // namespace

const bool& gLogging = logging.on;
const bool& gLoggingIsOff = loggingIsOff;
const bool& gUseObjectModel = useObjectModel.on;

void ReadLoggingSetting() {
    logging.Read(setting::kLogging);
    loggingIsOff = !logging.on;
}

void ReadUseObjectModelSetting() { useObjectModel.Read(setting::kUseObjectModel); }

void ForgetSettings() noexcept {
    logging = useObjectModel = {};
    loggingIsOff = false;
    maxDocUnitsTick.reset();
}

// A mail asks up to three times, and asking the registry for changes is a call to the system.
long GetMaxDocUnits() {
    static Kept<long> units;
    const DWORD now = GetTickCount();
    if (maxDocUnitsTick != now)
        units.Get(MachineAdapterWatch(), [] { return MaxDocUnitsFromText(MachineSetting(setting::kMaxDocUnits)); });
    maxDocUnitsTick = now;
    return units.Last();
}

long GetStartAnalysisDelay() {
    static Kept<long> delay;
    return delay.Get(MachineAdapterWatch(),
                     [] { return StartAnalysisDelayFromText(MachineSetting(setting::kStartAnalysisDelay)); });
}

std::wstring GetEnableToolbar() {
    static Kept<std::wstring> enable;
    return enable.Get(UserAdapterWatch(), [] { return UserSetting(setting::kEnableToolbar); });
}

bool ReadDefaultAutoUpdate() {
    static Kept<bool> on;
    return on.Get(UserAdapterWatch(), [] { return UserSetting(setting::kDefaultAutoUpdate) == L"True"; });
}

}  // namespace beacon
