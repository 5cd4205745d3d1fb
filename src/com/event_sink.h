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
class EventSubscription {
public:
    EventSubscription();
    EventSubscription(EventSubscription&&) noexcept;
    EventSubscription& operator=(EventSubscription&&) noexcept;
    ~EventSubscription();

    /// Ends an earlier subscription first. False when the source has no connection point of that id or refuses.
    bool Advise(IUnknown* source, REFIID events, EventHandler handler);
    void Unadvise() noexcept;

    bool IsAdvised() const { return sink_ != nullptr; }

private:
    class Sink;

    ComPtr<Sink> sink_;
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

/// An object together with the subscription to its events, kept and let go together.
class WatchedObject {
public:
    /// Replaces both. Subscribes to the first of these event interfaces that the object offers; false when it offers
    /// none or is empty: it is kept all the same.
    bool Set(const Object& object, std::initializer_list<IID> events, const EventHandler& handler);
    void Release() noexcept;

    const Object& Get() const { return object_; }

    explicit operator bool() const { return static_cast<bool>(object_); }

private:
    Object object_;
    EventSubscription events_;
};

}  // namespace beacon::com
