#pragma once

#include <beacon_util.h>

#include <memory>
#include <utility>

#include "com/dual.h"
#include "support/type_libraries.h"

namespace beacon {

class Application;

/// Address of a link, null once it has ended. Shared with its sinks, since a peer may keep a sink longer than the link
/// lives.
using LinkAddress = std::shared_ptr<Application*>;

/// This side's end of a channel to the engine or its controller. The first Connect stores the peer, to which outgoing
/// messages go. Does not own its link.
class MessageSink : public com::Dual<IMessageDispatch, kEngineLibrary> {
public:
    /// The object as the peer sees it.
    IMessageDispatch* MDispatch() { return this; }

    /// The peer; null while not connected.
    com::ComPtr<IMessageDispatch> ReturnMessageDispatch;

    /// The link of this sink; null once it has ended.
    Application* gApplication() const { return link_ == nullptr ? nullptr : *link_; }

    void SetApplication(LinkAddress link) { link_ = std::move(link); }

    STDMETHODIMP get_id(long* value) override;
    STDMETHODIMP Status(BSTR status, IDispatch* object, long id, VARIANT* result) override;

protected:
    void KeepPeer(IMessageDispatch* peer, long id);
    /// Raises error 91 when the link has ended.
    Application& Link() const;

    /// Whether this is the thread that made the sink. Wine releases an object that was disconnected inside a call on
    /// another one, where nothing may be done. The reconnect check then finds the link broken.
    bool IsOnItsThread() const { return GetCurrentThreadId() == thread_; }

    long id_ = 0;

private:
    const DWORD thread_ = GetCurrentThreadId();
    LinkAddress link_;
};

/// Receives the controller's control verbs and button clicks.
class ControllerInterface final : public MessageSink {
public:
    ControllerInterface();

    STDMETHODIMP Connect(BSTR connectionType, IMessageDispatch* peer, long id, VARIANT* result) override;
    STDMETHODIMP Disconnect(long id, VARIANT* result) override;
    STDMETHODIMP PutControl(BSTR message, IMessageDispatch* sender, long id, VARIANT* result) override;
    STDMETHODIMP PutMessage(BSTR message, IMessageDispatch* sender, long id, VARIANT* result) override;

protected:
    void Final() noexcept override;
};

/// Keeps the connection with the engine, whose messages it ignores.
class EngineInterface final : public MessageSink {
public:
    EngineInterface();

    STDMETHODIMP Connect(BSTR connectionType, IMessageDispatch* peer, long id, VARIANT* result) override;
    STDMETHODIMP Disconnect(long id, VARIANT* result) override;
    STDMETHODIMP PutControl(BSTR message, IMessageDispatch* sender, long id, VARIANT* result) override;
    STDMETHODIMP PutMessage(BSTR message, IMessageDispatch* sender, long id, VARIANT* result) override;

protected:
    void Final() noexcept override;
};

}  // namespace beacon
