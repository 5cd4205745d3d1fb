#include "toolbar/control_sink.h"

#include <utility>

namespace beacon {

void ControlSink::Bind(const com::Object& control, REFIID events, com::EventHandler handler) {
    Release();
    if (!control) return;
    com::EventSubscription subscription;
    if (!subscription.Advise(control.Get(), events, std::move(handler))) com::Raise(com::kTypeMismatch);
    control_ = control;
    events_ = std::move(subscription);
}

void ControlSink::Bind(const com::Object& control) {
    Release();
    control_ = control;
}

void ControlSink::Release() noexcept {
    events_.Unadvise();
    control_.Reset();
}

}  // namespace beacon
