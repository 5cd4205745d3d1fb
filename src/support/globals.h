#pragma once

namespace beacon::globals {

/// The few flags that the whole add-in shares. Everything runs on Outlook's user-interface thread, so they are plain.

/// The user pressed a key or a mouse button, or turned the wheel, since the flag was last cleared. Raised by the
/// message hook, cleared by the hidden form's start-analysis tick and by a toolbar click.
inline bool gUserInterrupt = false;

/// The next deferred send is to go out at once. Raised by the update button, taken by the hidden form.
inline bool gSendNow = false;

/// Some engine link is between the start and the end of its shutdown.
inline bool gShutdownInProgress = false;

/// The major version of the running Outlook. The oldest supported one stands until it has been read.
inline long gOutlookVersion = 9;

}  // namespace beacon::globals
