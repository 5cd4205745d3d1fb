#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

#include "com/object.h"

namespace beacon::com {

/// The arguments of one event, in natural order, checked before use.
class EventArguments {
public:
    explicit EventArguments(DISPPARAMS* parameters) : parameters_(parameters) {}

    UINT Count() const { return parameters_ == nullptr ? 0 : parameters_->cArgs; }

    /// The object at this place (0-based), following VT_BYREF; empty when there is none of that type.
    Object ObjectAt(UINT index) const;
    /// Sets a by-reference Boolean ("Cancel", "CancelDefault"); does nothing when the argument is not one.
    void SetBool(UINT index, bool value) const;

private:
    VARIANT* At(UINT index) const;

    DISPPARAMS* parameters_;
};

using EventHandler = std::function<void(DISPID, const EventArguments&)>;

/// One subscription to one event interface of one source. Ends with Unadvise or destruction, also from inside its own
/// event. Exceptions of the handler are swallowed: the source never sees one.
///
/// What listens keeps the subscription as a member, most often inside a WatchedObject, and captures itself without
/// owning: the subscription ends with it, so nothing refers in a circle. An event can end the listener, which therefore
/// holds itself for as long as the event lasts.
///
///     void Listener::Watch(const Object& explorer) {
///         explorer_.Set(explorer, {kExplorerEvents10, kExplorerEvents}, [this](DISPID member, const EventArguments&) {
///             const ComPtr<Listener> alive(this);
///             if (member == kClose) Destroy();
///         });
///     }
class EventSubscription {
public:
    EventSubscription();
    EventSubscription(EventSubscription&&) noexcept;
    EventSubscription& operator=(EventSubscription&&) noexcept;
    ~EventSubscription();

    /// Ends an earlier subscription first. False when the source is null or does not offer these events; raises what it
    /// answers when it refuses.
    bool Advise(IUnknown* source, REFIID events, EventHandler handler);
    void Unadvise() noexcept;

    bool IsAdvised() const { return sink_ != nullptr; }

private:
    class Sink;

    ComPtr<Sink> sink_;
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

/// An object together with the subscription to its events, kept and let go together: some sources end their events when
/// the last reference to them goes.
class WatchedObject {
public:
    /// Replaces both, and subscribes to the first of these event interfaces that the object offers. Raises error 13
    /// when it offers none, and what it answers when it refuses; is empty then. An empty object leaves it empty.
    void Set(const Object& object, std::initializer_list<IID> events, const EventHandler& handler);
    /// Replaces both by an object whose events nobody wants.
    void Set(const Object& object);
    void Release() noexcept;

    const Object& Get() const { return object_; }

    explicit operator bool() const { return static_cast<bool>(object_); }

private:
    Object object_;
    EventSubscription events_;
};

}  // namespace beacon::com
