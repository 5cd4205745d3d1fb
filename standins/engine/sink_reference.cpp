#include "engine/sink_reference.h"

#include <objbase.h>

#include <utility>

namespace beacon::standin {
namespace {

bool g_clientsAreHere = false;

com::ComPtr<IGlobalInterfaceTable> Table() {
    com::ComPtr<IGlobalInterfaceTable> table;
    com::Check(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&table)));
    return table;
}

}  // namespace

void SinkReference::ClientsAreHere() { g_clientsAreHere = true; }

void SinkReference::Set(IMessageDispatch* sink) {
    Reset();
    if (!g_clientsAreHere)
        direct_ = sink;
    else
        com::Check(Table()->RegisterInterfaceInGlobal(sink, IID_IUnknown, &cookie_));
}

void SinkReference::Reset() noexcept {
    const com::ComPtr<IMessageDispatch> kept = direct_;
    direct_.Reset();
    const DWORD cookie = std::exchange(cookie_, 0U);
    if (cookie != 0) com::Method([&] { Table()->RevokeInterfaceFromGlobal(cookie); });
}

com::ComPtr<IMessageDispatch> SinkReference::Get() const {
    if (cookie_ == 0) return direct_;
    com::ComPtr<IUnknown> object;
    com::ComPtr<IMessageDispatch> sink;
    com::Method([&] {
        com::Check(Table()->GetInterfaceFromGlobal(cookie_, IID_PPV_ARGS(&object)));
        return object.As(&sink);
    });
    return sink;
}

}  // namespace beacon::standin
