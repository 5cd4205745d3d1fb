#pragma once

#include "check/server.h"

namespace beacon::check {

/// What a finding says. %1 to %9 stand for the values that Examine adds. docs/install.md lists the ids; they are
/// stable.
struct FindingText {
    const char* id;
    const wchar_t* what;
    const wchar_t* remedy;
};

/// A COM server that the product installs: how texts name it, and the ids of its findings.
struct ServerTexts {
    const wchar_t* name;
    const wchar_t* progId;
    const wchar_t* classId;
    const wchar_t* file;
    const wchar_t* consequence;  // of its absence
    const char* stateIds[5];     // by ServerState, up to DoesNotLoad
    const char* threadingModelId;
};

inline constexpr ServerTexts kAddIn = {
    L"the add-in",
    L"BeaconOLKAdapter.Connect",
    L"{6E547C94-44EC-474B-AC54-1B05A2E339B9}",
    L"BeaconOLKAdapter.dll",
    L"",
    {"addin-not-registered", "addin-file-missing", "addin-not-a-library", "addin-other-bitness", "addin-does-not-load"},
    "addin-threading-model",
};
inline constexpr ServerTexts kReader = {
    L"the MAPI property reader",
    L"Mapiprop.MAPIPropWrapper",
    L"{C3EEC785-E482-475A-BB9A-D368521FD50A}",
    L"BeaconMapiProp.dll",
    L" Without it no mail is sent.",
    {"reader-not-registered", "reader-file-missing", "reader-not-a-library", "reader-other-bitness",
     "reader-does-not-load"},
    "reader-threading-model",
};

/// %1 bitness, %2 file name.
inline constexpr wchar_t kRepair[] =
    L"As administrator, repair \"Beacon Outlook Adapter (%1-bit)\" in Windows' list of programs. If it is not in the "
    L"list, run regsvr32 with the full path of the %1-bit %2.";

/// %1 bitness, %2 name, %3 ProgID, %4 consequence, %5 remedy.
inline constexpr FindingText kNotRegistered = {nullptr, L"For %1-bit programs, %2 (%3) is not registered.%4", L"%5"};
/// %1 bitness, %2 name, %3 file, %4 problem, %5 consequence, %6 remedy.
inline constexpr FindingText kBadFile = {nullptr, L"For %1-bit programs, %2 is registered as \"%3\", which %4.%5",
                                         L"%6"};
/// %1 bitness, %2 name, %3 model, %4 remedy.
inline constexpr FindingText kThreadingModel = {
    nullptr,
    L"For %1-bit programs, the threading model of %2 is \"%3\" instead of \"Apartment\": Outlook may call it through "
    L"another thread.",
    L"%4"};

inline constexpr FindingText kOutlookNotFound = {
    "outlook-not-found", L"No Outlook was found on this machine. Its bitness was not checked.",
    L"Install Outlook. If it is installed, make sure that the adapter has the same bitness."};
inline constexpr FindingText kOtherProgram = {"other-program",
                                              L"This is the %1-bit beacon-check, but Outlook or the add-in is %2-bit: "
                                              L"no file was loaded, and %2-bit programs may "
                                              L"have other settings of the machine.",
                                              L"Run the %2-bit beacon-check.exe."};
inline constexpr FindingText kElevated = {
    "run-as-user",
    L"beacon-check runs as administrator. It did not load the servers that are registered for this user only.",
    L"Run it without administrator rights, as the user who runs Outlook."};
inline constexpr FindingText kOutlookKeyMissing = {
    "outlook-key-missing", L"%1-bit Outlook does not know the add-in: there is no value LoadBehavior below %2.", L"%3"};
inline constexpr FindingText kLoadBehavior = {
    "load-behavior",
    L"%1-bit Outlook does not load the add-in each time it starts: LoadBehavior is %2 below %3. Outlook writes 2 when "
    L"the add-in failed to load or was switched off.",
    L"Fix the other problems first. Then %4 below %3."};
inline constexpr FindingText kAddInTypeLibrary = {
    "addin-type-library",
    L"For %1-bit programs, the type library of the add-in is not registered, or its file is missing.", L"%2"};
inline constexpr FindingText kEngineTypeLibrary = {
    "engine-type-library",
    L"For %1-bit programs, the type library of the engine (BeaconUtilLib) is not registered, or its file is missing: "
    L"engine and add-in cannot call each other.",
    L"Install the engine, or repair its installation. The engine registers this library."};
inline constexpr FindingText kDisabledItem = {
    "disabled-item",
    L"Outlook %1 does not load the add-in, because it is on Outlook's list %2. Outlook adds an add-in to this list "
    L"when "
    L"Outlook crashed or started slowly with it.",
    L"Remove it from Outlook's list of disabled items (Help, About, Disabled Items; in later versions File, Options, "
    L"Add-ins, Manage), or delete the value \"%3\" below %4."};

inline constexpr FindingText kControllerAbsent = {
    "controller-absent",
    L"The engine's controller (BeaconController.Application) is not in the running object table: no engine runs, or "
    L"none that is visible to this user.",
    L"Start the engine as the user who runs Outlook. Run neither of them as administrator."};
inline constexpr FindingText kControllerHangs = {
    "controller-hangs", L"The engine's controller (BeaconController.Application) did not answer within %1 ms.",
    L"Restart the engine. While a call of the add-in hangs in it, Outlook is blocked."};
inline constexpr FindingText kControllerFails = {
    "controller-fails",
    L"The engine's controller (BeaconController.Application) failed, or does not have the members GetMessageInterface "
    L"and GetEngineInterface.",
    L"Restart the engine. If that does not help, repair its installation."};

inline constexpr FindingText kSettingNotUsed = {
    "setting-not-used", L"The setting %1 is \"%2\" in the registry, but the add-in uses \"%3\".",
    L"Correct it as described in docs\\settings.md: type, range and spelling matter (\"True\" with a capital T)."};
inline constexpr FindingText kTooFewCharacters = {
    "too-few-characters", L"MaxDocUnits is %1: the add-in reads no more of a body, too little to send any mail.",
    L"Delete MaxDocUnits, or set it as described in docs\\settings.md."};
inline constexpr FindingText kNothingSends = {
    "nothing-sends",
    L"This user has neither automatic update nor the command bar: nothing is sent unless an engine asks for it.",
    L"Set DefaultAutoUpdate to \"True\", EnableToolbar to \"1\", or both (docs\\settings.md)."};

inline constexpr FindingText kLogFolderUnknown = {"log-folder-missing",
                                                  L"Logging is on, but the environment variable AppData is not set.",
                                                  L"Set AppData for the user who runs Outlook."};
inline constexpr FindingText kLogFolderMissing = {
    "log-folder-missing", L"Logging is on, but nothing is written: the add-in does not create the folder \"%1\".",
    L"Run beacon-check --make-log-folder."};
inline constexpr FindingText kLogFolderBlocked = {
    "log-folder-missing", L"Logging is on, but nothing is written: \"%1\" is a file, not a folder.",
    L"Delete the file \"%1\", then run beacon-check --make-log-folder."};
inline constexpr FindingText kLogReadOnly = {"log-read-only", L"Logging is on, but the add-in cannot write \"%1\".",
                                             L"Delete it, or make it writable for the user who runs Outlook."};
inline constexpr FindingText kExceptionsLogged = {
    "exceptions-logged",
    L"The logs of the last Outlook session contain %1 lines \"Exception in ...\". The last ones are listed with the "
    L"logs.",
    L"Report the problem and attach both logs. They contain subjects and texts of mails."};

}  // namespace beacon::check
