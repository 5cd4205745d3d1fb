#include "common/connection_point.h"

#include <algorithm>
#include <utility>

#include "com/out_values.h"
#include "common/call_points.h"

namespace beacon::standin {

void AutomationObject::Point::Fire(DISPID member, std::vector<VARIANT>& reversed) {
    const std::vector<Connection> snapshot = sinks_;
    for (const Connection& connection : snapshot) {
        if (!IsAdvised(connection.cookie)) continue;
        DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        _variant_t ignored;
        EXCEPINFO info{};
        UINT wrongArgument = 0;
        connection.sink->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &ignored, &info,
                                &wrongArgument);
        SysFreeString(info.bstrSource);
        SysFreeString(info.bstrDescription);
        SysFreeString(info.bstrHelpFile);
    }
}

void AutomationObject::Point::DropSinks() {
    const std::vector<Connection> dropped =
        std::exchange(sinks_, {});  // releasing a sink may call back into this point
}

bool AutomationObject::Point::IsAdvised(DWORD cookie) const {
    return std::any_of(sinks_.begin(), sinks_.end(),
                       [&](const Connection& connection) { return connection.cookie == cookie; });
}

HRESULT AutomationObject::Point::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    if (id != IID_IUnknown && id != IID_IConnectionPoint) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

ULONG AutomationObject::Point::AddRef() {
    owner_.AddOutsideReference();
    return ++count_;
}

ULONG AutomationObject::Point::Release() {
    if (count_ == 0) return 0;
    const ULONG left = --count_;
    owner_.RemoveOutsideReference();  // may destroy the owner and this
    return left;
}

HRESULT AutomationObject::Point::GetConnectionInterface(IID* id) { return com::Give(id, events_); }

HRESULT AutomationObject::Point::GetConnectionPointContainer(IConnectionPointContainer** container) {
    return com::GiveObject(container, &owner_);
}

HRESULT AutomationObject::Point::Advise(IUnknown* sink, DWORD* cookie) {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    const CallPoint call([&] { return owner_.Description() + L".Advise " + name_; });
    const HRESULT answer = call.Answer([&] {
        // A late-bound sink may support the event interface only. As a dispinterface it is an IDispatch as well.
        com::ComPtr<IDispatch> target;
        if (FAILED(sink->QueryInterface(events_, reinterpret_cast<void**>(target.GetAddressOf()))) &&
            FAILED(sink->QueryInterface(IID_PPV_ARGS(&target))))
            return CONNECT_E_CANNOTCONNECT;
        sinks_.push_back({++lastCookie_, std::move(target)});
        return S_OK;
    });
    if (SUCCEEDED(answer)) *cookie = lastCookie_;
    return answer;
}

HRESULT AutomationObject::Point::Unadvise(DWORD cookie) {
    const CallPoint call([&] { return owner_.Description() + L".Unadvise " + name_; });
    return call.Answer([&] {
        const auto found = std::find_if(sinks_.begin(), sinks_.end(),
                                        [&](const Connection& connection) { return connection.cookie == cookie; });
        if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
        const Connection kept = std::move(*found);  // releasing the sink may call back into this point
        sinks_.erase(found);
        return S_OK;
    });
}

HRESULT AutomationObject::Point::EnumConnections(IEnumConnections** connections) {
    if (connections != nullptr) *connections = nullptr;
    return E_NOTIMPL;
}

}  // namespace beacon::standin
