#pragma once

namespace beacon {

/// The reader's class and type library, for all users of the machine. A reader of another file is left as it is:
/// registering does nothing beside one, unless its file is gone, and unregistering removes only what names this file.
/// Both raise an error.
void RegisterReader();
void UnregisterReader();

}  // namespace beacon
