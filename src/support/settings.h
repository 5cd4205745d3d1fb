#pragma once

#include <string>

namespace beacon {

/// Keys of the product, relative to their hive. The current user's and the machine's carry different makers' names: the
/// machine's is the older one, written by the engine's installer.
inline constexpr wchar_t kUserAdapterKey[] = L"Software\\Corvantis\\Beacon\\AppAdapters\\Outlook";
inline constexpr wchar_t kUserAdaptersKey[] = L"Software\\Corvantis\\Beacon\\AppAdapters\\";
inline constexpr wchar_t kMachineKey[] = L"Software\\Tarnwell Systems, Inc\\Beacon";
inline constexpr wchar_t kMachineAdapterKey[] = L"Software\\Tarnwell Systems, Inc\\Beacon\\AppAdapters\\Outlook";
inline constexpr wchar_t kMachineToolbarKey[] = L"Software\\Tarnwell Systems, Inc\\Beacon\\Toolbar";

/// The values of these keys.
namespace setting {
inline constexpr wchar_t kDefaultAutoUpdate[] = L"DefaultAutoUpdate";
inline constexpr wchar_t kEnableToolbar[] = L"EnableToolbar";
inline constexpr wchar_t kHasInstalled[] = L"HasInstalled";
inline constexpr wchar_t kStartAnalysisDelay[] = L"StartAnalysisDelay";
inline constexpr wchar_t kLogging[] = L"Logging";
inline constexpr wchar_t kUseObjectModel[] = L"UseObjectModel";
inline constexpr wchar_t kMaxDocUnits[] = L"MaxDocUnits";
inline constexpr wchar_t kProgramDirectory[] = L"Program Directory";
inline constexpr wchar_t kDisplayName[] = L"DisplayName";
inline constexpr wchar_t kDefaultDisplayName[] = L"Beacon Toolbar";
}  // namespace setting

/// Switches that are read once per process, at the first call of their function: a change takes effect in a new one.
extern const bool& gLogging;
extern const bool& gUseObjectModel;
extern const bool& gLoggingIsOff;  ///< gLogging has been read and is off

void ReadLoggingSetting();
void ReadUseObjectModelSetting();
/// All switches are off and unread again, and nothing else is kept, as in a new process.
void ForgetSettings() noexcept;

/// The following are as fresh as a reading of the registry; what was read is kept until that reports a change.

/// How many characters of a body are read: "MaxDocUnits", a 16-bit number, 3072 unless set. As fresh as the last tick
/// of the system's clock (16 ms).
long GetMaxDocUnits();

/// Milliseconds between the last event and the send: "StartAnalysisDelay", 2000 unless set to a number other than 0.
long GetStartAnalysisDelay();

/// "EnableToolbar" of the current user: "1" shows the toolbar, "0" removes it, anything else does neither.
std::wstring GetEnableToolbar();

/// The default of automatic update: on only for the exact text "True".
bool ReadDefaultAutoUpdate();

}  // namespace beacon
