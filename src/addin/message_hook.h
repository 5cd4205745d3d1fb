#pragma once

namespace beacon {

/// The message hook on Outlook's user-interface thread: raises gUserInterrupt for every key and mouse button that goes
/// down and every turn of the wheel. It neither changes nor swallows a message. One per process; while it is installed
/// the code must stay loaded.

/// Installs it on the calling thread; does nothing while it is installed.
void SetUpWindowsHook();
/// Removes it; does nothing when it is not installed.
void RemoveWindowsHook();

}  // namespace beacon
