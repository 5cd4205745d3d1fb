#pragma once

#include "engine/clients.h"
#include "standin_engine.h"

namespace beacon::standin {

/// The object in the running object table. Clients ask it for the controller's dispatcher and for the engine.
com::ComPtr<IDispatch> MakeController(Clients& clients, Monitor& monitor);

}  // namespace beacon::standin
