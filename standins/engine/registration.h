#pragma once

#include <windows.h>

namespace beacon::standin {

/// Registers the type library that the marshaller needs, and the names by which the controller is found. Entries go to
/// the machine, or to the user where the machine's are closed. Entries of another program are left as they are.
HRESULT RegisterController();
/// Makes COM start this program for BeaconUtil.ToolbarConfig, and find it when it runs.
HRESULT RegisterToolbar();
/// Removes what the above have made, and nothing that another program made.
HRESULT UnregisterAll();

}  // namespace beacon::standin
