#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "beacon_util.h"
#include "com/object.h"
#include "common/called_dual.h"
#include "engine/monitor.h"
#include "engine/sink_reference.h"

namespace beacon::standin {

class Clients;

/// Faults for the next incoming PutMessage, to test clients against a failing engine.
struct InjectedFaults {
    unsigned hangMilliseconds = 0;  // 0: none
    bool dieInCall = false;
};

/// Numbers of the type libraries among the program's resources.
inline constexpr int kUtilLibrary = 1;
inline constexpr int kControllerLibrary = 2;

/// The engine's end of one channel of one client window. It receives the client's messages. From Connect to Disconnect
/// it references the client's sink, through which it sends.
class MessageChannel final : public CalledDual<IMessageDispatch, kUtilLibrary> {
public:
    MessageChannel(Clients& clients, Monitor& monitor, InjectedFaults& faults, Side side, long handle);

    STDMETHODIMP Connect(BSTR connectionType, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP Disconnect(LONG id, VARIANT* result) override;
    STDMETHODIMP get_id(LONG* value) override;
    STDMETHODIMP PutControl(BSTR text, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP Status(BSTR text, IDispatch* object, LONG id, VARIANT* result) override;

    Side WhichSide() const { return side_; }

    long Handle() const { return handle_; }

    bool IsConnected() const { return sink_.IsSet(); }

    /// Calls the client's sink and waits for the answer; no-ops if not connected. Calls and failures appear on the
    /// monitor. The channel drops a sink that no longer exists.
    void SendControl(std::wstring_view text);
    void SendMessageText(std::wstring_view text);
    void SendDisconnect(long id);
    void SendSecondConnect(IMessageDispatch* other);
    void ReadSinkId();

    /// Releases the sink. `inOrder`: one side has called Disconnect.
    void DropSink(bool inOrder);

private:
    template <class Body>
    HRESULT Serve(const wchar_t* member, VARIANT* result, Body body, const void* caller = RETURN_ADDRESS());
    template <class Call>
    bool ToSink(const std::wstring& what, Call call);
    void CheckId(const wchar_t* member, long id);
    void CheckConnected(const wchar_t* member);
    std::wstring Name() const;

    Clients& clients_;
    Monitor& monitor_;
    InjectedFaults& faults_;
    const Side side_;
    const long handle_;
    long id_ = 0;
    SinkReference sink_;
    unsigned connection_ = 0;  // tells one connection from the next
};

}  // namespace beacon::standin
