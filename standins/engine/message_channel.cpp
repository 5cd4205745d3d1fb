#include "engine/message_channel.h"

#include "com/error.h"
#include "com/out_values.h"
#include "common/journal.h"
#include "engine/clients.h"

namespace beacon::standin {
namespace {

bool IsGone(HRESULT result) { return com::ServerHasDied(result) || result == HRESULT_FROM_WIN32(RPC_S_UNKNOWN_IF); }

}  // namespace

// The client may let go of this object from inside what follows from its call.
template <class Body>
HRESULT MessageChannel::Serve(const wchar_t* member, VARIANT* result, Body body, const void* caller) {
    if (result == nullptr) return E_POINTER;
    VariantInit(result);
    return CountedMethod(member, body, caller);
}

MessageChannel::MessageChannel(Clients& clients, Monitor& monitor, InjectedFaults& faults, Side side, long handle)
    : CalledDual(ChannelName(side)),
      clients_(clients),
      monitor_(monitor),
      faults_(faults),
      side_(side),
      handle_(handle) {}

STDMETHODIMP MessageChannel::Connect(BSTR connectionType, IMessageDispatch* peer, LONG id, VARIANT* result) {
    return Serve(L"Connect", result, [&] {
        const std::wstring expected = side_ == Side::Controller ? L"ControllerToApp" : L"AppToEngine";
        const std::wstring given = com::ToText(connectionType);
        CheckId(L"Connect", id);
        if (given != expected)
            monitor_.Fault(handle_, L"Connect: connection type \"" + given + L"\" instead of \"" + expected + L"\"");
        if (peer == nullptr) {
            monitor_.Fault(handle_, L"Connect without a sink");
            return;
        }
        if (sink_.IsSet()) {
            // A client that met an error drops its sinks and starts anew, without a word on the old link.
            monitor_.Note(handle_, L"Connect while connected: the new sink replaces the old one");
            monitor_.Disconnected(side_, handle_, false);
        }
        sink_.Set(peer);
        ++connection_;
        id_ = id;
        monitor_.Connected(side_, handle_);
        clients_.OnConnected(*this);
    });
}

STDMETHODIMP MessageChannel::Disconnect(LONG id, VARIANT* result) {
    return Serve(L"Disconnect", result, [&] {
        CheckConnected(L"Disconnect");
        CheckId(L"Disconnect", id);
        DropSink(true);
    });
}

STDMETHODIMP MessageChannel::get_id(LONG* value) {
    if (value == nullptr) return E_POINTER;
    return Counted(L"id", [&] { return com::Give(value, id_); });
}

STDMETHODIMP MessageChannel::PutControl(BSTR text, IMessageDispatch*, LONG id, VARIANT* result) {
    return Serve(L"PutControl", result, [&] {
        monitor_.Control(handle_, com::ToText(text));
        CheckConnected(L"PutControl");
        CheckId(L"PutControl", id);
        if (side_ == Side::Engine) monitor_.Fault(handle_, L"PutControl to the engine: controls go to the controller");
    });
}

STDMETHODIMP MessageChannel::PutMessage(BSTR text, IMessageDispatch*, LONG id, VARIANT* result) {
    return Serve(L"PutMessage", result, [&] {
        monitor_.Message(handle_, com::ToText(text));
        CheckConnected(L"PutMessage");
        CheckId(L"PutMessage", id);
        if (side_ == Side::Controller)
            monitor_.Fault(handle_, L"PutMessage to the controller: messages go to the engine");
        if (faults_.dieInCall) {
            monitor_.Event(L"dies in this call");
            TerminateProcess(GetCurrentProcess(), 1);
        }
        if (const unsigned time = std::exchange(faults_.hangMilliseconds, 0U); time > 0) {
            monitor_.Event(L"hangs in this call for " + std::to_wstring(time) + L" ms");
            Sleep(time);
            monitor_.Event(L"goes on");
        }
    });
}

STDMETHODIMP MessageChannel::Status(BSTR text, IDispatch*, LONG id, VARIANT* result) {
    return Serve(L"Status", result, [&] {
        monitor_.Event(L"status " + Name() + L" " + com::ToText(text));
        CheckId(L"Status", id);
    });
}

void MessageChannel::SendControl(std::wstring_view text) {
    const _bstr_t argument(com::NewBstr(text), false);
    ToSink(L"control " + Name() + L" " + std::wstring(text),
           [&](IMessageDispatch& sink, VARIANT* ignored) { return sink.PutControl(argument, this, id_, ignored); });
}

void MessageChannel::SendMessageText(std::wstring_view text) {
    const _bstr_t argument(com::NewBstr(text), false);
    ToSink(L"message " + Name() + L" " + std::wstring(text),
           [&](IMessageDispatch& sink, VARIANT* ignored) { return sink.PutMessage(argument, this, id_, ignored); });
}

void MessageChannel::SendDisconnect(long id) {
    const com::ComPtr<MessageChannel> alive(this);
    const unsigned connection = connection_;
    const bool called = ToSink(L"disconnect " + Name() + L" " + std::to_wstring(id),
                               [&](IMessageDispatch& peer, VARIANT* ignored) { return peer.Disconnect(id, ignored); });
    // The client may have said good-bye from inside the call, or even connected again.
    if (called && connection == connection_) DropSink(true);
}

void MessageChannel::SendSecondConnect(IMessageDispatch* other) {
    const _bstr_t type(ChannelName(side_));
    ToSink(L"second_connect " + Name(),
           [&](IMessageDispatch& sink, VARIANT* ignored) { return sink.Connect(type, other, id_ + 1, ignored); });
}

void MessageChannel::ReadSinkId() {
    LONG id = 0;
    if (ToSink(L"read_id " + Name(), [&](IMessageDispatch& sink, VARIANT*) { return sink.get_id(&id); }))
        monitor_.Event(L"sink_id " + Name() + L" " + std::to_wstring(id));
}

void MessageChannel::DropSink(bool inOrder) {
    const com::ComPtr<MessageChannel> alive(this);
    if (!sink_.IsSet()) return;
    sink_.Reset();
    ++connection_;
    id_ = 0;
    monitor_.Disconnected(side_, handle_, inOrder);
    clients_.OnDisconnected(*this);
}

template <class Call>
bool MessageChannel::ToSink(const std::wstring& what, Call call) {
    const com::ComPtr<MessageChannel> alive(this);
    if (!sink_.IsSet()) return false;
    const unsigned connection = connection_;
    const com::ComPtr<IMessageDispatch> sink = sink_.Get();  // the client may disconnect from inside the call
    monitor_.Event(L"sent " + what);
    _variant_t ignored;
    const HRESULT result = sink == nullptr ? CO_E_OBJNOTCONNECTED : call(*sink.Get(), &ignored);
    if (SUCCEEDED(result)) return true;
    monitor_.Event(L"failed " + ResultText(result) + L" " + what);
    if (IsGone(result) && connection == connection_) DropSink(false);
    return false;
}

void MessageChannel::CheckId(const wchar_t* member, long id) {
    if (id == handle_) return;
    monitor_.Fault(handle_, std::wstring(member) + L": id " + std::to_wstring(id) + L" is not the handle " +
                                std::to_wstring(handle_) + L" that the dispatcher was asked for with");
}

void MessageChannel::CheckConnected(const wchar_t* member) {
    if (!sink_.IsSet()) monitor_.Fault(handle_, std::wstring(member) + L" on a dispatcher that is not connected");
}

std::wstring MessageChannel::Name() const { return std::wstring(ChannelName(side_)) + L" " + std::to_wstring(handle_); }

}  // namespace beacon::standin
