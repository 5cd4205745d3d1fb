#include "toolbar/control_sink.h"

namespace beacon {

void ControlSink::Bind(const com::Object& control, REFIID events, const com::EventHandler& handler) {
    Release();
    if (!control || watched_.Set(control, {events}, handler)) return;
    Release();
    com::Raise(com::kTypeMismatch);
}

void ControlSink::Bind(const com::Object& control) { watched_.Set(control, {}, {}); }

}  // namespace beacon
