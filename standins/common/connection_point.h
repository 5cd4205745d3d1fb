#pragma once

#include <vector>

#include "common/automation_object.h"

namespace beacon::standin {

/// One event interface of an object. References to it count as references to the object.
class AutomationObject::Point final : public IConnectionPoint {
public:
    Point(AutomationObject& owner, REFIID events, std::wstring name)
        : owner_(owner), events_(events), name_(std::move(name)) {}

    virtual ~Point() = default;

    const IID& Events() const { return events_; }

    size_t Sinks() const { return sinks_.size(); }

    /// Arguments as DISPPARAMS wants them: in reversed order.
    void Fire(DISPID member, std::vector<VARIANT>& reversed);
    void DropSinks();

    STDMETHODIMP QueryInterface(REFIID id, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetConnectionInterface(IID* id) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

private:
    struct Connection {
        DWORD cookie;
        com::ComPtr<IDispatch> sink;
    };

    bool IsAdvised(DWORD cookie) const;

    AutomationObject& owner_;
    const IID events_;
    const std::wstring name_;
    ULONG count_ = 0;
    DWORD lastCookie_ = 0;
    std::vector<Connection> sinks_;
};

}  // namespace beacon::standin
