#pragma once

namespace beacon::globals {

/// Flags of the whole add-in. Everything runs on Outlook's UI thread, so they need no lock.

/// The user has pressed a key or a mouse button or turned the wheel. Set by the message hook; cleared by the
/// start-analysis tick of the hidden form and by a toolbar click.
inline bool gUserInterrupt = false;

/// The next deferred send is due at once. Set by the update button, cleared by the hidden form.
inline bool gSendNow = false;

/// An engine link is shutting down.
inline bool gShutdownInProgress = false;

/// The major version of Outlook; the oldest supported one until it has been read.
inline long gOutlookVersion = 9;

}  // namespace beacon::globals
