#pragma once

namespace beacon {

/// The reader's class and type library, for all users of the machine. A reader of another file is left as it is:
/// registering does nothing beside one, unless its file is gone, and unregistering removes only what names this file.
/// The class's name, which programs of both bitnesses share, counts as theirs while they have a class behind it.
/// Both raise an error.
void RegisterReader();
void UnregisterReader();

}  // namespace beacon
