#pragma once

#include "com/object.h"

namespace beacon {

/// The engine's controller, if it is running; empty when it is not. It is looked up by its class name, or by its class
/// id where the name is not registered, and is never created: the user decides when the engine runs. Waits for the
/// engine's process while the reference is fetched from it. Raises nothing.
com::Object RunningController() noexcept;

}  // namespace beacon
