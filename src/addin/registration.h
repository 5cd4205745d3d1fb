#pragma once

namespace beacon {

/// The add-in's entries in the registry: its class, its type library and its key with Outlook, for all users of the
/// machine. Both raise an error; unregistering removes what it can first. It leaves nothing, not even empty parent keys
/// of Office that registering had to make.
void RegisterAddIn();
void UnregisterAddIn();

}  // namespace beacon
