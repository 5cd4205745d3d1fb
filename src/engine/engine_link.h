#pragma once

#include <beacon_olk_adapter.h>

#include <string>

#include "com/dual.h"
#include "com/object.h"
#include "engine/link_host.h"
#include "engine/message_sinks.h"

namespace beacon {

/// Number of the add-in's own type library among the binary's resources.
inline constexpr int kAdapterLibrary = 1;

/// The link between one watched Outlook window and the engine. StartUp finds the engine's running controller, wires one
/// channel with the controller and one with the engine, and greets; the shutdown family says good-bye and lets go.
/// Every operation catches its own errors. An outgoing call waits for the engine; while it waits, the engine's own
/// calls arrive, so that any member may have changed when it returns.
class Application final : public com::Dual<IEngineLink, kAdapterLibrary> {
public:
    // State that other parts read, and partly write.
    com::ComPtr<ControllerInterface> gControllerInterface;  ///< sink of the controller's channel
    com::ComPtr<EngineInterface> gEngineInterface;          ///< sink of the engine's channel
    LinkHost* gBeaconConnection = nullptr;                  ///< the item sender; not owned, cleared by it
    long gAppHwnd = 0;                                      ///< watched window; also this link's id everywhere
    bool gAppAdapterStarted = false;                        ///< both channels are wired
    bool gClosePending = false;                             ///< a shutdown is wanted and not yet carried out
    bool gAutoUpdate = false;                               ///< send on every change of item
    bool gInitPending = false;                              ///< kept for others; nothing here sets it
    bool gButtonClicked = false;                            ///< the next preamble reports a button click

    void Init(long appHWND, LinkHost* BeaconConn);
    bool GetDefaultAutoUpdate();
    void StartUp();
    /// Both return what the peer returned; empty when the text could not be delivered.
    _variant_t PutMessage(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id);
    _variant_t PutControl(const std::wstring& vstrMsg, IMessageDispatch* pInterface, long id);
    bool Shutdown();
    bool ShutdownNoEnd();
    void ShutdownLater();
    bool ShutdownBody();

    void InitLater() {}

    void FinishInit();
    void Update();

    void ForceUpdate() {}

    /// The controller's switch: turning it on re-sends the current item, unless it was on already.
    void SetAutoUpdate(bool on);

    // Composers of the outgoing messages. All but SendPerson send only while automatic update is on or a button was
    // clicked; SendText and SendPerson only while the user does nothing. They return PutMessage's result, empty when
    // nothing was sent.
    _variant_t SendPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                            const std::wstring& szName);
    _variant_t SendContactPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                                   const std::wstring& szName);
    _variant_t SendEmailPreamble(const std::wstring& szTitle, const std::wstring& szDocID, const std::wstring& szPath,
                                 const std::wstring& szName, const std::wstring& szSender,
                                 const std::wstring& szRecipient);
    _variant_t SendEOD(const std::wstring& vstrDocId);
    _variant_t SendEODUsupportedOutlookItem(const std::wstring& vstrDocId);
    _variant_t SendPerson(const std::wstring& szFirstName, const std::wstring& szLastName,
                          const std::wstring& szCompany, const std::wstring& szPosition, const std::wstring& szEmail,
                          const std::wstring& vstrDocId, const std::wstring& vstrDocPath,
                          const std::wstring& vstrDocName);
    /// Leaves the encoded text in vstrText.
    _variant_t SendText(const std::wstring& vstrEmphasis, std::wstring& vstrText, const std::wstring& vstrDocId,
                        const std::wstring& vstrDocPath, const std::wstring& vstrDocName);
    std::wstring XML_Encode(const std::wstring& text);
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
    /// A new sink in the member's place, which knows its link and its peer.
    template <class Sink>
    com::ComPtr<Sink> MakeSink(com::ComPtr<Sink>& member, const wchar_t* channel, IMessageDispatch* peer);
    void WireChannels(const com::Object& controller);
    void SayGoodBye();
    void DisconnectEngine();
    void DisconnectController();
    void CheckForRemovedToolbar();

    bool MaySend() const { return gAutoUpdate || gButtonClicked; }

    _variant_t Put(const std::wstring& message) { return PutMessage(message, nullptr, gAppHwnd); }

    const LinkAddress address_ = std::make_shared<Application*>(this);
};

}  // namespace beacon
