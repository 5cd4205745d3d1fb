#pragma once

#include <beacon_util.h>

#include <memory>
#include <string>
#include <utility>

#include "com/dual.h"

namespace beacon {

class Application;

/// Number of the engine's type library among the binary's resources.
inline constexpr int kEngineLibrary = 2;

/// Where a link is: null once it has ended. Its sinks share this with it, since a peer may hold a sink for longer than
/// the link does.
using LinkAddress = std::shared_ptr<Application*>;

/// One end of a channel, served to the engine or its controller. It remembers its peer at the first Connect; that peer
/// is the way out for messages. It refers to its link without owning it.
class MessageSink : public com::Dual<IMessageDispatch, kEngineLibrary> {
public:
    /// The face that is handed to the peer.
    IMessageDispatch* MDispatch() { return this; }

    /// The peer; null while not connected.
    com::ComPtr<IMessageDispatch> ReturnMessageDispatch;

    /// The id in decimal; only the engine's sink fills it, at Connect.
    std::wstring idText;

    /// The link that this sink belongs to; null once the link has ended.
    Application* gApplication() const { return link_ == nullptr ? nullptr : *link_; }

    void SetApplication(LinkAddress link) { link_ = std::move(link); }

    STDMETHODIMP get_id(long* value) override;
    STDMETHODIMP Status(BSTR status, IDispatch* object, long id, VARIANT* result) override;

protected:
    void KeepPeer(BSTR connectionType, IMessageDispatch* peer, long id);
    /// Raises error 91 when the link has ended.
    Application& Link() const;

    std::wstring connectionType_;
    long id_ = 0;

private:
    LinkAddress link_;
};

/// Receives what the controller sends: control verbs and button clicks.
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

/// Receives what the engine sends. Nothing of it is acted on; the object keeps the connection.
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
