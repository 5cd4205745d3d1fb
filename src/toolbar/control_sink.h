#pragma once

#include "com/event_sink.h"

namespace beacon {

/// A control of the bar together with the subscription to its events. Office ends a control's events when the last
/// reference to it goes, so the two are kept and let go together.
class ControlSink {
public:
    /// Replaces the control. Raises error 13 when it does not offer these events, and is empty then. An empty control
    /// leaves the sink empty.
    void Bind(const com::Object& control, REFIID events, const com::EventHandler& handler);
    /// A control whose events nobody wants.
    void Bind(const com::Object& control);

    void Release() noexcept { watched_.Release(); }

    const com::Object& Control() const { return watched_.Get(); }

    explicit operator bool() const { return static_cast<bool>(watched_); }

private:
    com::WatchedObject watched_;
};

}  // namespace beacon
