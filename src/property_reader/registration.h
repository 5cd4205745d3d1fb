#pragma once

namespace beacon {

/// Registers the reader's class and type library for all users. Raises ERROR_ALREADY_EXISTS if another program's reader
/// has the class or its name: one whose file is there and has this bitness, or that serves the other bitness only.
void RegisterReader();

/// Removes what names this file. Raises an error.
void UnregisterReader();

}  // namespace beacon
