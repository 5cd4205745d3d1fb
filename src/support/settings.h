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

/// Switches of the machine, on for the number 1 only. Each is read at the first call of its function in a process.
inline bool gLogging = false;
inline bool gLoggingRead = false;
inline bool gUseObjectModel = false;
inline bool gUseObjectModelRead = false;

void ReadLoggingSetting();
void ReadUseObjectModelSetting();

/// The following settings are read from the registry at each call.

/// How many characters of a body are read: "MaxDocUnits", a 16-bit number, 3072 unless set.
long GetMaxDocUnits();

/// Milliseconds between the last event and the send: "StartAnalysisDelay", 2000 unless set to a number other than 0.
long GetStartAnalysisDelay();

/// "EnableToolbar" of the current user: "1" shows the toolbar, "0" removes it, anything else does neither.
std::wstring GetEnableToolbar();

/// The default of automatic update: on only for the exact text "True".
bool ReadDefaultAutoUpdate();

}  // namespace beacon
