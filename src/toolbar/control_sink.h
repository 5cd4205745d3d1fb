#pragma once

#include "com/event_sink.h"

namespace beacon {

/// A control of the bar together with the subscription to its events. Office ends a control's events when the last
/// reference to it goes, so the two are kept and let go together.
class ControlSink {
public:
    /// Replaces the control. Raises error 13 when it does not offer these events, and is empty then. An empty control
    /// leaves the sink empty.
    void Bind(const com::Object& control, REFIID events, com::EventHandler handler);
    /// A control whose events nobody wants.
    void Bind(const com::Object& control);
    void Release() noexcept;

    const com::Object& Control() const { return control_; }
    explicit operator bool() const { return static_cast<bool>(control_); }

private:
    com::Object control_;
    com::EventSubscription events_;
};

}  // namespace beacon
