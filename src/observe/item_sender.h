#pragma once

#include <beacon_olk_adapter.h>

#include <string>

#include "com/dual.h"
#include "com/object.h"
#include "com/out_values.h"
#include "engine/engine_link.h"
#include "observe/listener.h"
#include "observe/services.h"
#include "support/type_libraries.h"
#include "toolbar/toolbar.h"
#include "toolbar/toolbar_host.h"

namespace beacon {

/// Item sender: decides whether an Outlook item is sent, and turns it into engine messages. Each listener owns one,
/// which owns the engine link and the toolbar of its window.
class BeaconConnection final : public com::Dual<IBeaconConnection, kAdapterLibrary>,
                               public LinkHost,
                               public ToolbarHost {
public:
    explicit BeaconConnection(Services& services);

    // Public members of the COM interface.
    com::ComPtr<Application> objApplication;  ///< engine link; null before Connect and after Disconnect
    com::ComPtr<CToolbar> gToolbar;           ///< null unless the toolbar is enabled
    std::wstring strLastBodySignature;        ///< of the last mail body sent; "" if there is none
    _variant_t gContextString;                ///< the toolbar's context, which listeners append to the selection

    /// Not owned. The listener clears it before it ends or drops the sender.
    void SetListener(Listener* listener) { objListener_ = listener; }

    com::ComPtr<Listener> objListener() const { return com::ComPtr<Listener>(objListener_); }

    /// The text that listeners append to the selection; "" for none.
    std::wstring ContextText() const;

    void SendOutlookItem(const com::Object& objItem, std::wstring& szSelected, bool& bBailEarly, short editorType);
    /// True if the item is not to be sent. bBailEarly: the send is only put off.
    bool SkipItem(const com::Object& item, bool& bBailEarly, short editorType);
    std::wstring GenDocID(const std::wstring& strName) const;
    void SendMail(const com::Object& objItem, std::wstring& szSelected, bool& bBailEarly, short editorType);
    void SendContact(const com::Object& objItem, std::wstring& szSelected, bool& bBailEarly);
    /// False when link or toolbar could not be made.
    bool Connect(long hWnd);
    /// False when link or property reader refuse; the caller tries again later.
    bool Disconnect();
    /// Drops the item and the toolbar, which hold objects of Outlook. The link stays up.
    void ReleaseOutlook() noexcept;
    void ReSend(bool bForce) override;

    STDMETHODIMP get_objListener(IDispatch** value) override;

    // The listener sets itself through SetListener: an object that is not one could not answer.
    STDMETHODIMP put_objListener(IDispatch* value) override {
        return com::TakeNull(value, [&] { SetListener(nullptr); });
    }

    STDMETHODIMP putref_objListener(IDispatch* value) override { return put_objListener(value); }

    STDMETHODIMP get_objApplication(IDispatch** value) override { return com::GiveObject(value, objApplication.Get()); }

    STDMETHODIMP put_objApplication(IDispatch* value) override {
        return com::TakeNull(value, [&] { DropLink(); });
    }

    STDMETHODIMP putref_objApplication(IDispatch* value) override { return put_objApplication(value); }

    STDMETHODIMP get_hWnd(long* value) override { return com::Give(value, hWnd_); }

    STDMETHODIMP put_hWnd(long value) override { return com::Take(hWnd_, value); }

    STDMETHODIMP get_strLastBodySignature(BSTR* value) override { return com::GiveText(value, strLastBodySignature); }

    STDMETHODIMP put_strLastBodySignature(BSTR value) override { return com::Take(strLastBodySignature, value); }

    STDMETHODIMP get_gContextString(VARIANT* value) override;
    STDMETHODIMP put_gContextString(VARIANT value) override;

    STDMETHODIMP putref_gContextString(VARIANT value) override { return put_gContextString(value); }

    STDMETHODIMP get_gToolbar(IDispatch** value) override { return com::GiveObject(value, gToolbar.Get()); }

    STDMETHODIMP put_gToolbar(IDispatch* value) override {
        return com::TakeNull(value, [&] { DropToolbar(); });
    }

    STDMETHODIMP putref_gToolbar(IDispatch* value) override { return put_gToolbar(value); }

    STDMETHODIMP GetHwnd(long* result) override;
    STDMETHODIMP SendOutlookItem(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly,
                                 short* editorType) override;
    STDMETHODIMP SkipItem(VARIANT* item, VARIANT_BOOL* bBailEarly, short* editorType, VARIANT* result) override;
    STDMETHODIMP GenDocID(BSTR* strName, VARIANT* result) override;
    STDMETHODIMP SendMail(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly, short* editorType) override;
    STDMETHODIMP SendContact(IDispatch** objItem, BSTR* szSelected, VARIANT_BOOL* bBailEarly) override;

    STDMETHODIMP SendNull() override { return S_OK; }

    STDMETHODIMP Connect(long* hWnd) override;
    STDMETHODIMP Disconnect(VARIANT_BOOL* result) override;
    STDMETHODIMP ReSend(VARIANT_BOOL* bForce) override;
    STDMETHODIMP ForceUpdate() override;
    STDMETHODIMP OnUpdateClicked() override;

    // LinkHost and ToolbarHost declare these, too.
    STDMETHODIMP_(ULONG) AddRef() override { return Dual::AddRef(); }

    STDMETHODIMP_(ULONG) Release() override { return Dual::Release(); }

    // What the link needs besides ReSend and ForceUpdate.
    bool ToolbarWasRemoved() override;
    void ReplayPendingClick() override;

    void SetUpWindowsHook() override { mServices_.SetUpWindowsHook(); }

    // What the toolbar needs besides OnUpdateClicked.
    long GetHwnd() override { return NeedListener()->GetHwnd(); }

    bool ListenerIsInspector() override { return NeedListener()->IsInspector(); }

    com::Object OutlookApplication() override { return mServices_.OutlookApplication(); }

    void SetContextString(const std::wstring& text) override { gContextString = com::FromText(text); }

    void StopToolbarTimer() override;
    com::ComPtr<ToolbarHost> FindConnectionForWindow(long hWnd) override;

    IDispatch* AsDispatch() override { return this; }

protected:
    void Final() noexcept override;

private:
    /// Common to all messages of a document.
    struct Document {
        std::wstring id;
        std::wstring title;
    };

    void DropLink() noexcept;
    void DropToolbar() noexcept;
    /// Remembers the item, unless the window or Outlook has ended meanwhile.
    void RememberLastItem(const com::Object& item);
    /// Both hold a reference, since a call may end the object, and raise error 91 when it is null.
    com::ComPtr<Listener> NeedListener() const;
    com::ComPtr<Application> NeedLink() const;
    bool IsUnchanged(const com::Object& item, short editorType);
    std::wstring BodyOf(const com::Object& item, short editorType) const;
    void SendPiece(const std::wstring& emphasis, std::wstring text, const Document& document);
    void SendBodyText(const com::Object& item, short editorType, const Document& document);

    Services& mServices_;
    Listener* objListener_ = nullptr;
    long hWnd_ = 0;
    com::Object objLastItem_;  // last item sent completely
    bool mbOutlookGone_ = false;
    bool bForceNext_ = false;  // send the next item even if it has not changed
};

}  // namespace beacon
