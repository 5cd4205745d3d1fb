#pragma once

namespace beacon {

/// The message hook on Outlook's user-interface thread: raises gUserInterrupt when a key or mouse button is pressed or
/// the wheel turns. Does not change or swallow messages. One per process; keeps the DLL loaded while installed.

/// Installs the hook on the calling thread, unless it is installed.
void SetUpWindowsHook();
/// Removes the hook, if it is installed.
void RemoveWindowsHook();

}  // namespace beacon
