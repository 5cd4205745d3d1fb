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

    /// The object at this index (from 0), also by reference; empty if the argument is no object.
    Object ObjectAt(UINT index) const;
    /// Sets a Boolean that is passed by reference, such as "Cancel"; does nothing if the argument is none.
    void SetBool(UINT index, bool value) const;

private:
    VARIANT* At(UINT index) const;

    DISPPARAMS* parameters_;
};

using EventHandler = std::function<void(DISPID, const EventArguments&)>;

/// A subscription to one event interface of one source. Unadvise and the destructor end it, also during its own event.
/// The handler's exceptions are swallowed.
///
/// Keep it, or a WatchedObject, as a member of the listener and let the handler capture `this`, not a reference: it
/// unsubscribes on destruction. A handler whose event can destroy the listener holds a reference while it runs.
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

    /// Ends an earlier subscription first. Returns false if the source is null or does not offer these events; raises
    /// an error if the source refuses.
    bool Advise(IUnknown* source, REFIID events, EventHandler handler);
    void Unadvise() noexcept;

private:
    class Sink;

    ComPtr<Sink> sink_;
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

/// An object and the subscription to its events. Both are kept together because some sources stop their events with the
/// last reference to them.
class WatchedObject {
public:
    /// Replaces both and subscribes to the first of these event interfaces that the object offers. Raises error 13 if
    /// it offers none, and the source's error if it refuses; this is empty then. An empty object leaves this empty.
    void Set(const Object& object, std::initializer_list<IID> events, const EventHandler& handler);
    /// Replaces both by an object without a subscription.
    void Set(const Object& object);
    void Release() noexcept;

    const Object& Get() const { return object_; }

    explicit operator bool() const { return static_cast<bool>(object_); }

private:
    Object object_;
    EventSubscription events_;
};

}  // namespace beacon::com
