#pragma once

#include <beacon_olk_adapter.h>

#include <string>

#include "com/dual.h"
#include "com/object.h"
#include "engine/engine_link.h"
#include "observe/listener.h"
#include "observe/services.h"
#include "toolbar/toolbar.h"
#include "toolbar/toolbar_host.h"

namespace beacon {

/// Item sender: turns one Outlook item into the series of engine messages that describes it, and decides whether it is
/// sent at all. Each listener owns one; it owns the engine link and the toolbar of its window.
class BeaconConnection final : public com::Dual<IBeaconConnection, kAdapterLibrary> {
public:
    explicit BeaconConnection(Services& services);

    // Public members, by the names of the COM interface.
    com::ComPtr<Application> objApplication;  ///< engine link, from Connect to Disconnect
    com::ComPtr<CToolbar> gToolbar;           ///< null unless the toolbar is enabled
    std::wstring strLastBodySignature;        ///< of the last mail body sent; "" when none
    _variant_t gContextString;                ///< the toolbar's context, appended to the selection by the listeners

    /// Not owned; the listener clears it before it drops the sender or ends.
    void SetListener(Listener* listener) { objListener_ = listener; }

    com::ComPtr<Listener> objListener() const { return com::ComPtr<Listener>(objListener_); }

    /// The text that listeners append to the selection; "" for none.
    std::wstring ContextText() const;

    void SendOutlookItem(const com::Object& objItem, std::wstring& szSelected, bool& bBailEarly, short editorType);
    /// True: the item is not to be sent. bBailEarly tells that it was not decided but put off.
    bool SkipItem(const com::Object& item, bool& bBailEarly, short editorType);
    std::wstring GenDocID(const std::wstring& strName) const;
    void SendMail(const com::Object& objItem, std::wstring& szSelected, bool& bBailEarly, short editorType);
    void SendContact(const com::Object& objItem, std::wstring& szSelected, bool& bBailEarly);
    /// False when link or toolbar could not be made.
    bool Connect(long hWnd);
    /// False when something refused to be let go; the caller tries again later.
    bool Disconnect();
    /// Drops item and toolbar, the objects of Outlook's that it holds; the link stays up.
    void LetGoOfOutlook() noexcept;
    void ReSend(bool bForce);

    STDMETHODIMP get_objListener(IDispatch** value) override;
    STDMETHODIMP put_objListener(IDispatch* value) override;
    STDMETHODIMP putref_objListener(IDispatch* value) override;
    STDMETHODIMP get_objApplication(IDispatch** value) override;
    STDMETHODIMP put_objApplication(IDispatch* value) override;
    STDMETHODIMP putref_objApplication(IDispatch* value) override;
    STDMETHODIMP get_hWnd(long* value) override;
    STDMETHODIMP put_hWnd(long value) override;
    STDMETHODIMP get_strLastBodySignature(BSTR* value) override;
    STDMETHODIMP put_strLastBodySignature(BSTR value) override;
    STDMETHODIMP get_gContextString(VARIANT* value) override;
    STDMETHODIMP put_gContextString(VARIANT value) override;
    STDMETHODIMP putref_gContextString(VARIANT value) override;
    STDMETHODIMP get_gToolbar(IDispatch** value) override;
    STDMETHODIMP put_gToolbar(IDispatch* value) override;
    STDMETHODIMP putref_gToolbar(IDispatch* value) override;
    STDMETHODIMP GetHwnd(long* result) override;
    STDMETHODIMP SendOutlookItem(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly,
                                 short* editorType) override;
    STDMETHODIMP SkipItem(VARIANT* item, VARIANT_BOOL* bBailEarly, short* editorType, VARIANT* result) override;
    STDMETHODIMP GenDocID(BSTR* strName, VARIANT* result) override;
    STDMETHODIMP SendMail(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly, short* editorType) override;
    STDMETHODIMP SendContact(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly) override;
    STDMETHODIMP SendNull() override;
    STDMETHODIMP Connect(long* hWnd) override;
    STDMETHODIMP Disconnect(VARIANT_BOOL* result) override;
    STDMETHODIMP ReSend(VARIANT_BOOL* bForce) override;
    STDMETHODIMP ForceUpdate() override;
    STDMETHODIMP OnUpdateClicked() override;

protected:
    void Final() noexcept override;

private:
    /// Answers the link and the toolbar, whose demands partly have the names of the COM methods.
    class Host final : public LinkHost, public ToolbarHost {
    public:
        explicit Host(BeaconConnection& owner) : owner_(owner) {}

        ULONG STDMETHODCALLTYPE AddRef() override { return owner_.AddRef(); }

        ULONG STDMETHODCALLTYPE Release() override { return owner_.Release(); }

        bool ToolbarWasRemoved() override;
        void ReplayPendingClick() override;

        void ReSend(bool bForce) override { owner_.ReSend(bForce); }

        void ForceUpdate() override { owner_.ForceUpdate(); }

        void SetUpWindowsHook() override { owner_.mServices_.SetUpWindowsHook(); }

        IDispatch* AsDispatch() override { return &owner_; }

        long GetHwnd() override { return owner_.ListenerThere()->GetHwnd(); }

        bool ListenerIsInspector() override;

        com::Object OutlookApplication() override { return owner_.mServices_.OutlookApplication(); }

        void SetContextString(const std::wstring& text) override { owner_.gContextString = com::FromText(text); }

        void OnUpdateClicked() override { owner_.OnUpdateClicked(); }

        void StopToolbarTimer() override;
        com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) override;

    private:
        BeaconConnection& owner_;
    };

    /// One document on its way: what its messages share.
    struct Document {
        std::wstring id;
        std::wstring title;
    };

    void DropLink() noexcept;
    void DropToolbar() noexcept;
    void KeepLastItem(const com::Object& item);
    /// Both raise error 91 when there is none.
    com::ComPtr<Listener> ListenerThere() const;
    com::ComPtr<Application> LinkThere() const;
    bool IsUnchanged(const com::Object& item, short editorType);
    std::wstring BodyOf(const com::Object& item, short editorType) const;
    void SendPiece(const std::wstring& emphasis, std::wstring text, const Document& document);
    void SendBodyText(const com::Object& item, short editorType, const Document& document);

    Services& mServices_;
    Host mHost_;
    Listener* objListener_ = nullptr;
    long hWnd_ = 0;
    com::Object objLastItem_;  // last item sent completely
    bool mbOutlookGone_ = false;
    bool bForceNext_ = false;  // the next item is sent even if it has not changed
};

}  // namespace beacon
