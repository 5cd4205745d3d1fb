#pragma once

#include <string>

namespace beacon {

/// Keys of the product, relative to their hive. The two vendor names are intentional: existing programs expect them.
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

/// "MaxDocUnits": the number of characters of a body that are read, in 16 bits; default 3072.
long GetMaxDocUnits();

/// "StartAnalysisDelay": milliseconds from the last event to the send; default 2000.
long GetStartAnalysisDelay();

/// "EnableToolbar" of the user: "1" shows the toolbar, "0" removes it, other texts do neither.
std::wstring GetEnableToolbar();

/// "DefaultAutoUpdate" of the user: on only for the exact text "True".
bool ReadDefaultAutoUpdate();

}  // namespace beacon
