#pragma once

namespace beacon {

/// The add-in's key for Outlook, named after its ProgID.
inline constexpr wchar_t kAddInKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins\\BeaconOLKAdapter.Connect";

/// Write and remove the add-in's registry entries for all users: class, type library and Outlook's key. Both raise an
/// error; unregistering removes what it can first, empty parent keys of Office included. The ProgID stays while the
/// class is registered for the other bitness.
void RegisterAddIn();
void UnregisterAddIn();

}  // namespace beacon
