#pragma once

#include <functional>
#include <utility>

#include "beacon_util.h"
#include "com/dual.h"
#include "com/object.h"

namespace beacon::test {

/// The engine's end of a channel: reports each call and holds the peer while connected.
class FakeDispatcher final : public com::Dual<IMessageDispatch, 2> {  // number in type_libraries.rc
public:
    /// Called before the call has its effect. An exception becomes the error of the call.
    using Hear = std::function<void(const wchar_t* member, BSTR text, IMessageDispatch* sink, long id)>;

    explicit FakeDispatcher(Hear hear = {}) : hear_(std::move(hear)) {}

    com::ComPtr<IMessageDispatch> peer;
    long id = 0;

    STDMETHODIMP Connect(BSTR type, IMessageDispatch* sink, long linkId, VARIANT*) override {
        return Heard(L"Connect", type, sink, linkId, [&] { SetPeer(sink, linkId); });
    }

    STDMETHODIMP Disconnect(long linkId, VARIANT*) override {
        return Heard(L"Disconnect", nullptr, nullptr, linkId, [&] { SetPeer(nullptr, 0); });
    }

    STDMETHODIMP get_id(long* value) override {
        return Heard(L"id", nullptr, nullptr, id, [&] { *value = id; });
    }

    STDMETHODIMP PutControl(BSTR text, IMessageDispatch* sink, long linkId, VARIANT* result) override {
        return Heard(L"PutControl", text, sink, linkId, [&] { *result = com::FromText(L"controlled").Detach(); });
    }

    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch* sink, long linkId, VARIANT* result) override {
        return Heard(L"PutMessage", text, sink, linkId, [&] { *result = com::FromLong(7).Detach(); });
    }

    STDMETHODIMP Status(BSTR, IDispatch*, long, VARIANT*) override { return S_OK; }

private:
    template <class Effect>
    HRESULT Heard(const wchar_t* member, BSTR text, IMessageDispatch* sink, long linkId, Effect&& effect) {
        return com::Method([&] {
            hear_(member, text, sink, linkId);
            effect();
        });
    }

    void SetPeer(IMessageDispatch* sink, long linkId) {
        const com::ComPtr<IMessageDispatch> released = std::exchange(peer, sink);
        id = linkId;
    }

    const Hear hear_;
};

}  // namespace beacon::test
