#pragma once

#include <guiddef.h>

namespace beacon {

/// Its key with Outlook, below the hive; the key's own name is its ProgID. The type library that it registers.
inline constexpr wchar_t kAddInKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins\\BeaconOLKAdapter.Connect";
inline constexpr GUID kAddInLibrary = {0xD39C0121, 0xD8F0, 0x4C97, {0xAC, 0x96, 0x0C, 0x71, 0xB3, 0xD4, 0x70, 0x5F}};

/// The add-in's entries in the registry: its class, its type library and its key with Outlook, for all users of the
/// machine. Both raise an error; unregistering removes what it can first. It leaves nothing, not even empty parent keys
/// of Office that registering had to make, but for the class's name while programs of the other bitness have the class.
void RegisterAddIn();
void UnregisterAddIn();

}  // namespace beacon
