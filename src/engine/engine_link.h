#pragma once

#include <beacon_olk_adapter.h>

#include <string>
#include <vector>

#include "com/dual.h"
#include "com/object.h"
#include "engine/link_host.h"
#include "engine/message_sinks.h"

namespace beacon {

/// Number of the add-in's own type library among the binary's resources.
inline constexpr int kAdapterLibrary = 1;

/// The link between one watched Outlook window and the engine. StartUp finds the engine's running controller, wires one
/// channel with the controller and one with the engine, and greets; the shutdown family says good-bye and lets go.
/// Every operation catches its own errors.
///
/// An outgoing call waits for the engine's process, without a limit: messages of a document must arrive in their order,
/// and of a call that was given up nobody could say whether the engine has taken the message. While a call waits, the
/// engine's own calls and Outlook's events arrive, so that any member may have changed when it returns, and the owner
/// may be gone.
class Application final : public com::Dual<IEngineLink, kAdapterLibrary> {
public:
    // State that other parts read, and partly write.
    com::ComPtr<ControllerInterface> gControllerInterface;  ///< sink of the controller's channel
    com::ComPtr<EngineInterface> gEngineInterface;          ///< sink of the engine's channel
    LinkHost* gBeaconConnection = nullptr;                  ///< the item sender; not owned
    long gAppHwnd = 0;                                      ///< watched window; also this link's id everywhere
    bool gAppAdapterStarted = false;                        ///< both channels are wired
    bool gClosePending = false;                             ///< a shutdown is wanted and not yet carried out
    bool gAutoUpdate = false;                               ///< send on every change of item
    bool gButtonClicked = false;                            ///< the next preamble reports a button click

    void Init(long appHWND, LinkHost* BeaconConn);
    /// Connects, unless the link is up. It stops without a further line when the owner ends inside one of its calls;
    /// whoever has been connected by then is disconnected.
    void StartUp();

    /// A start-up is under way further up the stack.
    bool IsStartingUp() const { return isStartingUp_; }

    /// Drops both sinks before another StartUp. If the window is gone, which StartUp refuses, disconnects the peers
    /// first: nothing else would tell them.
    void DropSinks();
    /// The owner has ended or drops this link, and will not try again: from here on nothing is asked of it. Peers that
    /// are still connected are disconnected, unless a start-up or shutdown that is under way will see to that. A link
    /// that waits for another's shutdown is kept alive for its own, which follows.
    void OwnerHasEnded() noexcept;

    bool GetDefaultAutoUpdate();
    /// Both return what the peer returned; empty when the text could not be delivered.
    _variant_t PutMessage(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id);
    _variant_t PutControl(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id);

    /// All three are true when the good-bye is through. A failure leaves gClosePending and whatever is still connected,
    /// for another try.
    bool Shutdown();
    bool ShutdownNoEnd();
    bool ShutdownBody();

    /// The controller's switch: turning it on re-sends the current item, unless it was on already.
    void SetAutoUpdate(bool on);

    // Composers of the outgoing messages. All but SendPerson send only while automatic update is on or a button was
    // clicked; SendText and SendPerson only while the user does nothing. They return PutMessage's result, empty when
    // nothing was sent.
    _variant_t SendContactPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                                   const std::wstring& szName);
    _variant_t SendEmailPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                                 const std::wstring& szName, const std::wstring& szSender,
                                 const std::wstring& szRecipient);
    /// Clears gButtonClicked before it sends: a click that arrives inside the call is the next document's.
    _variant_t SendEOD(const std::wstring& vstrDocId);
    _variant_t SendPerson(const std::wstring& szFirstName, const std::wstring& szLastName,
                          const std::wstring& szCompany, const std::wstring& szPosition, const std::wstring& szEmail,
                          const std::wstring& vstrDocId, const std::wstring& vstrDocPath,
                          const std::wstring& vstrDocName);
    /// Leaves the encoded text in vstrText.
    _variant_t SendText(const std::wstring& vstrEmphasis, std::wstring& vstrText, const std::wstring& vstrDocId,
                        const std::wstring& vstrDocPath, const std::wstring& vstrDocName);
    std::wstring XML_Encode(std::wstring text);

    // Kept for others: part of what a link offers, but not called in this add-in.
    bool gInitPending = false;
    void ShutdownLater();
    void FinishInit();

    void InitLater() {}

    void Update();

    void ForceUpdate() {}

    _variant_t SendPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                            const std::wstring& szName);
    _variant_t SendEODUsupportedOutlookItem(const std::wstring& vstrDocId);
    std::wstring URL_Encode(const std::wstring& vstrIn);
    std::wstring URL_Decode(const std::wstring& vstrIn);

    /// Let go of a sink, and cut it off from a peer that may no longer be alive to release it. A sink that is let go
    /// while the link is up shuts the link down.
    void DropControllerInterface();
    void DropEngineInterface();

    STDMETHODIMP get_gControllerInterface(IDispatch** value) override;
    STDMETHODIMP get_gEngineInterface(IDispatch** value) override;
    STDMETHODIMP get_gAppHwnd(long* value) override;
    STDMETHODIMP get_gAppAdapterStarted(VARIANT_BOOL* value) override;
    STDMETHODIMP get_gClosePending(VARIANT_BOOL* value) override;
    STDMETHODIMP put_gClosePending(VARIANT_BOOL value) override;
    STDMETHODIMP get_gAutoUpdate(VARIANT_BOOL* value) override;
    STDMETHODIMP put_gAutoUpdate(VARIANT_BOOL value) override;
    STDMETHODIMP get_gShutdownInProgress(VARIANT_BOOL* value) override;
    STDMETHODIMP get_gInitPending(VARIANT_BOOL* value) override;
    STDMETHODIMP put_gInitPending(VARIANT_BOOL value) override;
    STDMETHODIMP get_gButtonClicked(VARIANT_BOOL* value) override;
    STDMETHODIMP put_gButtonClicked(VARIANT_BOOL value) override;

protected:
    void Final() noexcept override;

private:
    bool WindowExists() const;
    void TryToStart();
    /// Raises an error when the owner has ended, after each outgoing call of a start-up.
    void StopWithoutOwner() const;
    /// A new sink in the member's place, which knows its link and its peer.
    template <class Sink>
    com::ComPtr<Sink> MakeSink(com::ComPtr<Sink>& member, const wchar_t* channel, IMessageDispatch* peer);
    void ConnectToRunningController();
    void Connect(const com::Object& controller);
    void WireChannels(const com::Object& controller);
    void SayGoodBye();
    void DisconnectEngine();
    void DisconnectController();
    void CheckForRemovedToolbar();
    void CarryOutWaitingShutdowns();
    /// Disconnects whoever is still connected, each failure for itself, and drops the sinks, which end without asking
    /// this link for anything.
    void LetPeersGo() noexcept;

    bool MaySend() const { return gAutoUpdate || gButtonClicked; }

    _variant_t Put(const std::wstring& message) { return PutMessage(message, nullptr, gAppHwnd); }

    const LinkAddress address_ = std::make_shared<Application*>(this);
    bool hasLostOwner_ = false;
    bool isStartingUp_ = false;
    // Links without an owner that found this one's shutdown under way; theirs follow it.
    std::vector<com::ComPtr<Application>> waiting_;

    // The link whose shutdown is under way; null when there is none. Not owned: its shutdown holds it.
    static inline Application* shuttingDown_ = nullptr;
};

}  // namespace beacon
