#pragma once

namespace beacon::standin {

// Entries are written for all users. Those of an installed engine stay as they are. Failures are thrown as com::Error.

/// Registers the type library that marshalling needs, and the name under which clients find the controller.
void RegisterController();
/// Lets COM start this program for BeaconUtil.ToolbarConfig.
void RegisterToolbar();
/// Removes the entries of both functions.
void UnregisterAll();

}  // namespace beacon::standin
