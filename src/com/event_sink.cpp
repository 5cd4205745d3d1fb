#include "com/event_sink.h"

#include <ocidl.h>

#include <algorithm>
#include <utility>

#include "com/counted.h"
#include "com/out_values.h"

namespace beacon::com {

VARIANT* EventArguments::At(UINT index) const {
    if (index >= Count()) return nullptr;
    VARIANT* value = &parameters_->rgvarg[Count() - 1 - index];
    if (value->vt == (VT_VARIANT | VT_BYREF)) value = value->pvarVal;
    return value;
}

Object EventArguments::ObjectAt(UINT index) const {
    const VARIANT* value = At(index);
    if (value == nullptr) return {};
    if (value->vt == VT_DISPATCH) return Object(value->pdispVal);
    if (value->vt == (VT_DISPATCH | VT_BYREF) && value->ppdispVal != nullptr) return Object(*value->ppdispVal);
    return {};
}

void EventArguments::SetBool(UINT index, bool value) const {
    VARIANT* target = At(index);
    if (target == nullptr) return;
    const VARIANT_BOOL boolean = value ? VARIANT_TRUE : VARIANT_FALSE;
    if (target->vt == (VT_BOOL | VT_BYREF) && target->pboolVal != nullptr) *target->pboolVal = boolean;
    // A Boolean in a variant by reference belongs to the source, too.
    if (target->vt == VT_BOOL && target != &parameters_->rgvarg[Count() - 1 - index]) target->boolVal = boolean;
}

/// The object that the source calls. If the source keeps a reference, it outlives the subscription and does nothing.
class EventSubscription::Sink final : public Counted<IDispatch> {
public:
    Sink(REFIID events, EventHandler handler)
        : events_(events), handler_(std::make_shared<EventHandler>(std::move(handler))) {}

    void Silence() { handler_.reset(); }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return Give(count, 0); }

    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        if (info != nullptr) *info = nullptr;
        return E_NOTIMPL;
    }

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }

    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        const ComPtr<Sink> alive(this);
        const std::shared_ptr<EventHandler> handler = handler_;  // the event can end its own subscription
        if (handler == nullptr) return S_OK;
        try {
            (*handler)(member, EventArguments(parameters));
        } catch (...) {
            // Handlers catch their own errors. The source must not see others.
        }
        return S_OK;
    }

protected:
    void* FindInterface(REFIID id) noexcept override {
        return id == events_ ? static_cast<IDispatch*>(this) : Counted<IDispatch>::FindInterface(id);
    }

private:
    const IID events_;
    std::shared_ptr<EventHandler> handler_;
};

EventSubscription::EventSubscription() = default;
EventSubscription::EventSubscription(EventSubscription&&) noexcept = default;

EventSubscription& EventSubscription::operator=(EventSubscription&& other) noexcept {
    if (this != &other) {
        Unadvise();
        // MinGW's ComPtr copies on move assignment: `other` would end the subscription.
        sink_.Swap(other.sink_);
        point_.Swap(other.point_);
        cookie_ = std::exchange(other.cookie_, 0);
    }
    return *this;
}

EventSubscription::~EventSubscription() { Unadvise(); }

bool EventSubscription::Advise(IUnknown* source, REFIID events, EventHandler handler) {
    Unadvise();
    if (source == nullptr) return false;
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    if (FAILED(source->QueryInterface(IID_PPV_ARGS(&container)))) return false;
    if (FAILED(container->FindConnectionPoint(events, &point))) return false;
    const auto sink = MakeObject<Sink>(events, std::move(handler));
    DWORD cookie = 0;
    const HRESULT result = point->Advise(sink.Get(), &cookie);
    if (FAILED(result)) sink->Silence();  // the source may have kept it
    Check(result, point.Get());
    Unadvise();  // a re-entrant call may have subscribed
    sink_ = sink;
    point_ = point;
    cookie_ = cookie;
    return true;
}

void EventSubscription::Unadvise() noexcept {
    if (sink_ == nullptr) return;
    const ComPtr<Sink> sink = std::move(sink_);
    const ComPtr<IConnectionPoint> point = std::move(point_);
    sink->Silence();
    point->Unadvise(std::exchange(cookie_, 0));
}

void WatchedObject::Set(const Object& object, std::initializer_list<IID> events, const EventHandler& handler) {
    Release();
    if (!object) return;
    if (std::none_of(events.begin(), events.end(),
                     [&](const IID& id) { return events_.Advise(object.Get(), id, handler); }))
        Raise(kTypeMismatch);
    object_ = object;
}

void WatchedObject::Set(const Object& object) {
    Release();
    object_ = object;
}

void WatchedObject::Release() noexcept {
    events_.Unadvise();
    object_.Reset();
}

}  // namespace beacon::com
