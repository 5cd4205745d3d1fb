#include "engine/controller.h"

namespace beacon::standin {
namespace {

// A wrong argument is reported, but still gets a dispatcher, so that the client can be observed further.
HRESULT GetDispatcher(Clients& clients, Monitor& monitor, Side side, BSTR channel, long id, IDispatch** dispatcher) {
    if (dispatcher == nullptr) return E_POINTER;
    *dispatcher = nullptr;
    return com::Method([&] {
        const std::wstring name = com::ToText(channel);
        if (name != ChannelName(side))
            monitor.Fault(id,
                          L"GetMessageInterface: channel \"" + name + L"\" instead of \"" + ChannelName(side) + L"\"");
        if (id < 1) monitor.Fault(id, L"GetMessageInterface: bad handle " + std::to_wstring(id));
        *dispatcher = clients.Channel(side, id).Detach();
    });
}

class Engine final : public CalledDual<IStandinEngine, kControllerLibrary> {
public:
    Engine(Clients& clients, Monitor& monitor) : CalledDual(L"Engine"), clients_(clients), monitor_(monitor) {}

    STDMETHODIMP GetMessageInterface(BSTR channel, LONG id, IDispatch** dispatcher) override {
        return GetDispatcher(clients_, monitor_, Side::Engine, channel, id, dispatcher);
    }

private:
    Clients& clients_;
    Monitor& monitor_;
};

class Controller final : public CalledDual<IStandinController, kControllerLibrary> {
public:
    Controller(Clients& clients, Monitor& monitor)
        : CalledDual(L"Controller"),
          clients_(clients),
          monitor_(monitor),
          engine_(com::MakeObject<Engine>(clients, monitor)) {}

    STDMETHODIMP GetMessageInterface(BSTR channel, LONG id, IDispatch** dispatcher) override {
        return GetDispatcher(clients_, monitor_, Side::Controller, channel, id, dispatcher);
    }

    STDMETHODIMP GetEngineInterface(BSTR channel, LONG id, IDispatch** engine) override {
        if (engine == nullptr) return E_POINTER;
        *engine = nullptr;
        return com::Method([&] {
            const std::wstring name = com::ToText(channel);
            if (name != ChannelName(Side::Engine))
                monitor_.Fault(id, L"GetEngineInterface: channel \"" + name + L"\" instead of \"AppToEngine\"");
            *engine = com::ComPtr<IDispatch>(engine_.Get()).Detach();
        });
    }

private:
    Clients& clients_;
    Monitor& monitor_;
    com::ComPtr<Engine> engine_;
};

}  // namespace

com::ComPtr<IDispatch> MakeController(Clients& clients, Monitor& monitor) {
    return com::ComPtr<IDispatch>(com::MakeObject<Controller>(clients, monitor).Get());
}

}  // namespace beacon::standin
