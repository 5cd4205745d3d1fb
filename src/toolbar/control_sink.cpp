#include "toolbar/control_sink.h"

namespace beacon {

void ControlSink::Bind(const com::Object& control, REFIID events, const com::EventHandler& handler) {
    watched_.Set(control, {events}, handler);
}

void ControlSink::Bind(const com::Object& control) { watched_.Set(control); }

}  // namespace beacon
