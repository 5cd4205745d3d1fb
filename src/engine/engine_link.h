#pragma once

#include <beacon_olk_adapter.h>

#include <string>
#include <vector>

#include "com/dual.h"
#include "com/object.h"
#include "engine/link_host.h"
#include "engine/message_sinks.h"
#include "support/globals.h"

namespace beacon {

/// The link between one watched Outlook window and the engine. StartUp finds the engine's running controller, connects
/// one channel to the controller and one to the engine, and sends the hello message. The shutdown functions send the
/// exit message and disconnect both channels. Every operation catches its own errors.
///
/// Outgoing calls have no time-out: the messages of a document must arrive in order, and after a time-out the adapter
/// could not know whether a message had been delivered. During a call the engine's calls and Outlook's events arrive,
/// so after it any member may have changed, and the owner may be gone.
class Application final : public com::Dual<IEngineLink, kAdapterLibrary> {
public:
    // State that other classes read; some of them also write it.
    com::ComPtr<ControllerInterface> gControllerInterface;  ///< sink of the controller's channel
    com::ComPtr<EngineInterface> gEngineInterface;          ///< sink of the engine's channel
    LinkHost* gBeaconConnection = nullptr;                  ///< the item sender; not owned
    long gAppHwnd = 0;                                      ///< handle of the watched window, and the id of this link
    bool gAppAdapterStarted = false;                        ///< both channels are connected
    bool gClosePending = false;                             ///< a shutdown has been requested and is not done yet
    bool gAutoUpdate = false;                               ///< send on every change of item
    bool gButtonClicked = false;                            ///< the next preamble reports a button click

    void Init(long appHWND, LinkHost* BeaconConn);
    /// Connects, unless the link is up. If the owner ends inside one of the calls, stops without writing more lines and
    /// disconnects any connected peers.
    void StartUp();

    /// A start-up is under way further up the stack.
    bool IsStartingUp() const { return isStartingUp_; }

    /// Drops both sinks before another StartUp. If the window is gone, which StartUp refuses, disconnects the peers
    /// first: nothing else would tell them.
    void DropSinks();
    /// Call when the owner goes away. Disconnects any connected peers, unless a start-up or shutdown of this link is in
    /// progress, which will do so. During another link's shutdown, this link stays alive and shuts down after it.
    void OwnerHasEnded() noexcept;

    bool GetDefaultAutoUpdate();
    /// Both return the peer's result; empty when the text could not be delivered.
    _variant_t PutMessage(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id);
    _variant_t PutControl(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id);

    /// All three return true after a complete shutdown. On failure they set gClosePending and leave the sinks as they
    /// are, for another attempt.
    bool Shutdown();
    bool ShutdownNoEnd();
    bool ShutdownBody();

    /// Turning automatic update on sends the current item again, unless it was on already.
    void SetAutoUpdate(bool on);

    // Composers of the outgoing messages. All but SendPerson send only while automatic update is on or after a button
    // click, SendText and SendPerson only without user input. They return PutMessage's result; empty when not sent.
    _variant_t SendContactPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                                   const std::wstring& szName);
    _variant_t SendEmailPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                                 const std::wstring& szName, const std::wstring& szSender,
                                 const std::wstring& szRecipient);
    /// Clears gButtonClicked before sending: a click that arrives during the call belongs to the next document.
    _variant_t SendEOD(const std::wstring& vstrDocId);
    _variant_t SendPerson(const std::wstring& szFirstName, const std::wstring& szLastName,
                          const std::wstring& szCompany, const std::wstring& szPosition, const std::wstring& szEmail,
                          const std::wstring& vstrDocId, const std::wstring& vstrDocPath,
                          const std::wstring& vstrDocName);
    /// Also stores the encoded text in vstrText.
    _variant_t SendText(const std::wstring& vstrEmphasis, std::wstring& vstrText, const std::wstring& vstrDocId,
                        const std::wstring& vstrDocPath, const std::wstring& vstrDocName);
    std::wstring XML_Encode(std::wstring text);

    // Part of the link's interface, but not called in this add-in.
    bool gInitPending = false;
    void Update();

    _variant_t SendPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                            const std::wstring& szName);
    _variant_t SendEODUsupportedOutlookItem(const std::wstring& vstrDocId);
    std::wstring URL_Encode(const std::wstring& vstrIn);
    std::wstring URL_Decode(const std::wstring& vstrIn);

    /// Drop a sink and disconnect it from clients, since a dead peer never releases it. Dropping a sink while the link
    /// is up shuts the link down.
    void DropControllerInterface();
    void DropEngineInterface();

    STDMETHODIMP get_gControllerInterface(IDispatch** value) override {
        return com::GiveObject(value, gControllerInterface.Get());
    }

    STDMETHODIMP get_gEngineInterface(IDispatch** value) override {
        return com::GiveObject(value, gEngineInterface.Get());
    }

    STDMETHODIMP get_gAppHwnd(long* value) override { return com::Give(value, gAppHwnd); }

    STDMETHODIMP get_gAppAdapterStarted(VARIANT_BOOL* value) override {
        return com::GiveBool(value, gAppAdapterStarted);
    }

    STDMETHODIMP get_gClosePending(VARIANT_BOOL* value) override { return com::GiveBool(value, gClosePending); }

    STDMETHODIMP put_gClosePending(VARIANT_BOOL value) override { return com::Take(gClosePending, value); }

    STDMETHODIMP get_gAutoUpdate(VARIANT_BOOL* value) override { return com::GiveBool(value, gAutoUpdate); }

    STDMETHODIMP put_gAutoUpdate(VARIANT_BOOL value) override { return com::Take(gAutoUpdate, value); }

    STDMETHODIMP get_gShutdownInProgress(VARIANT_BOOL* value) override {
        return com::GiveBool(value, globals::gShutdownInProgress);
    }

    STDMETHODIMP get_gInitPending(VARIANT_BOOL* value) override { return com::GiveBool(value, gInitPending); }

    STDMETHODIMP put_gInitPending(VARIANT_BOOL value) override { return com::Take(gInitPending, value); }

    STDMETHODIMP get_gButtonClicked(VARIANT_BOOL* value) override { return com::GiveBool(value, gButtonClicked); }

    STDMETHODIMP put_gButtonClicked(VARIANT_BOOL value) override { return com::Take(gButtonClicked, value); }

protected:
    void Final() noexcept override;

private:
    bool WindowExists() const;
    void TryToStart();
    /// For use after each outgoing call of a start-up: raises an error when the owner has ended.
    void NeedOwner() const;
    /// Replaces the member by a new sink that knows its link and its peer.
    template <class Sink>
    com::ComPtr<Sink> MakeSink(com::ComPtr<Sink>& member, const wchar_t* channel, IMessageDispatch* peer);
    void ConnectToRunningController();
    void Connect(const com::Object& controller);
    void WireChannels(const com::Object& controller);
    void SendExit();
    void DisconnectEngine();
    void DisconnectController();
    void CheckForRemovedToolbar();
    void RunWaitingShutdowns();
    /// Disconnects any connected peers, ignoring each failure, and drops the sinks, which no longer call this link.
    void DisconnectPeers() noexcept;

    bool MaySend() const { return gAutoUpdate || gButtonClicked; }

    _variant_t Put(const std::wstring& message) { return PutMessage(message, nullptr, gAppHwnd); }

    const LinkAddress address_ = std::make_shared<Application*>(this);
    bool hasLostOwner_ = false;
    bool isStartingUp_ = false;
    // Links without an owner that wait for this one's shutdown; theirs follow it.
    std::vector<com::ComPtr<Application>> waiting_;

    // The link that is shutting down, or null. Not owned: its shutdown holds a reference.
    static inline Application* shuttingDown_ = nullptr;
};

}  // namespace beacon
