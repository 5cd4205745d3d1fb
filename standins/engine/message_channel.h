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

/// What the next incoming PutMessage meets, so that a client can be tried against an engine in trouble.
struct Mischief {
    unsigned hangMilliseconds = 0;  // 0: none
    bool dieInCall = false;
};

/// Numbers of the type libraries among the program's resources.
inline constexpr int kUtilLibrary = 1;
inline constexpr int kControllerLibrary = 2;

/// The engine's end of one link with one client window: what the client's messages arrive at. After Connect it holds
/// the client's sink, the other direction, until Disconnect.
class MessageChannel final : public CalledDual<IMessageDispatch, kUtilLibrary> {
public:
    MessageChannel(Clients& clients, Monitor& monitor, Mischief& mischief, Side side, long handle);

    STDMETHODIMP Connect(BSTR connectionType, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP Disconnect(LONG id, VARIANT* result) override;
    STDMETHODIMP get_id(LONG* value) override;
    STDMETHODIMP PutControl(BSTR text, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP PutMessage(BSTR text, IMessageDispatch* peer, LONG id, VARIANT* result) override;
    STDMETHODIMP Status(BSTR text, IDispatch* object, LONG id, VARIANT* result) override;

    Side WhichSide() const { return side_; }

    long Handle() const { return handle_; }

    bool IsConnected() const { return sink_.IsHeld(); }

    /// Calls into the client's sink. Each announces itself on the monitor, waits for the client and reports a failure;
    /// a sink that does not exist any more is dropped. Nothing happens when not connected.
    void SendControl(std::wstring_view text);
    void SendMessageText(std::wstring_view text);
    void SendDisconnect(long id);
    void SendSecondConnect(IMessageDispatch* other);
    void ReadSinkId();

    /// Forgets the sink: in order when the link was ended by a call, otherwise because the client is gone.
    void LetGo(bool inOrder);

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
    Mischief& mischief_;
    const Side side_;
    const long handle_;
    long id_ = 0;
    SinkReference sink_;
    unsigned connection_ = 0;  // tells one connection from the next
};

}  // namespace beacon::standin
