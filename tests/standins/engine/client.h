#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "beacon_util.h"
#include "com/dual.h"
#include "com/object.h"

namespace beacon::tests {

using com::ComPtr;

/// The client's end of a channel: keeps what it is told.
class Sink final : public com::Dual<IMessageDispatch, 1> {
public:
    explicit Sink(long id) : id_(id) {}

    STDMETHODIMP Connect(BSTR type, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP Disconnect(LONG id, VARIANT* result) override;
    STDMETHODIMP get_id(LONG* value) override;
    STDMETHODIMP PutControl(BSTR text, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP Status(BSTR text, IDispatch* object, LONG id, VARIANT* result) override;

    /// One text a call, such as "control 1234 <EXIT now="1"/>".
    std::vector<std::wstring> calls;
    std::function<void()> onDisconnect;  // what the client does from inside the next call of Disconnect

private:
    HRESULT Keep(const std::wstring& call, VARIANT* result);

    const long id_;
};

/// The controller in the running object table, by its name; empty when there is none.
com::Object FindController();

/// A toolbar configuration of the server that COM finds or starts.
HRESULT MakeToolbar(ComPtr<IToolbarConfig>& config);

/// One client window, connected as the adapter connects.
class Client {
public:
    /// Finds the controller and makes both dispatchers and sinks; throws com::Error.
    explicit Client(long handle);
    /// Disconnects without exit what is still connected.
    ~Client();

    /// Connects both channels and says hello.
    void Connect();
    /// Says exit to both and disconnects the engine, then the controller.
    void SayGoodbye();
    HRESULT Message(const std::wstring& text, long id = 0);
    HRESULT Control(const std::wstring& text);
    long IdOf(IMessageDispatch* dispatcher) const;

    const long handle;
    ComPtr<Sink> controllerSink;
    ComPtr<Sink> engineSink;
    ComPtr<IMessageDispatch> controller;
    ComPtr<IMessageDispatch> engine;

private:
    bool connected_ = false;
};

}  // namespace beacon::tests
