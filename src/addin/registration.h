#pragma once

#include <guiddef.h>

namespace beacon {

/// The add-in's key for Outlook, named after its ProgID, and its type library.
inline constexpr wchar_t kAddInKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins\\BeaconOLKAdapter.Connect";
inline constexpr GUID kAddInLibrary = {0xD39C0121, 0xD8F0, 0x4C97, {0xAC, 0x96, 0x0C, 0x71, 0xB3, 0xD4, 0x70, 0x5F}};

/// Write and remove the add-in's registry entries for all users: class, type library and Outlook's key. Both raise an
/// error; unregistering removes what it can first, empty parent keys of Office included. The ProgID stays while the
/// class is registered for the other bitness.
void RegisterAddIn();
void UnregisterAddIn();

}  // namespace beacon
