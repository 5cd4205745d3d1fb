#pragma once

#include "engine/clients.h"
#include "standin_engine.h"

namespace beacon::standin {

/// The object for the running object table. It gives clients the controller's dispatcher and the engine.
com::ComPtr<IDispatch> MakeController(Clients& clients, Monitor& monitor);

}  // namespace beacon::standin
