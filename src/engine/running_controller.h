#pragma once

#include "com/object.h"

namespace beacon {

/// The engine's controller; empty when it is not running. Looks up the class name in the running object table, or the
/// class id where the name is not registered. Never starts the engine. Waits for the engine's process without a limit.
com::Object RunningController() noexcept;

}  // namespace beacon
