#pragma once

#include <add_in_designer.h>

#include "addin/listener_registry.h"
#include "com/dual.h"
#include "com/event_sink.h"
#include "support/type_libraries.h"

namespace beacon {

/// The add-in's entry object, which Outlook connects and disconnects. Follows Outlook's start-up and quit, and makes a
/// listener for every explorer and inspector. Every method returns S_OK.
class Connect final : public com::Dual<IDTExtensibility2, kDesignerLibrary> {
public:
    Connect() = default;

    STDMETHODIMP OnConnection(IDispatch* application, long connectMode, IDispatch* addIn, SAFEARRAY** custom) override;
    STDMETHODIMP OnDisconnection(long removeMode, SAFEARRAY** custom) override;
    STDMETHODIMP OnAddInsUpdate(SAFEARRAY** custom) override;
    STDMETHODIMP OnStartupComplete(SAFEARRAY** custom) override;
    STDMETHODIMP OnBeginShutdown(SAFEARRAY** custom) override;

private:
    /// For a host that releases the add-in without disconnecting it: the same as OnDisconnection.
    void Final() noexcept override;
    void AddinInstance_OnConnection(IDispatch* application, long connectMode);
    void AddinInstance_OnDisconnection();
    void gOutlookApp_Startup(bool isUpAlready);
    void gOutlookApp_Quit();
    void FollowActiveWindow(const com::Object& application, bool isUpAlready);
    void gExplorers_NewExplorer(const com::Object& explorer);
    void gInspectors_NewInspector(const com::Object& inspector);
    void Shutdown();
    /// False after Quit, which may come inside any call. Releases later subscriptions then; the caller must stop.
    bool MayHoldOutlook() noexcept;
    /// A registered listener for this window of Outlook; not initialised yet. Null if Outlook quits meanwhile. If there
    /// is no window or Outlook refuses its events, raises the error and registers nothing: a window may only be held
    /// while its end will be heard.
    template <class Class>
    com::ComPtr<Class> Follow(const com::Object& window, ListenerCollection<Class>& listeners);

    com::WatchedObject gOutlookApp_;
    com::WatchedObject gExplorers_;
    com::WatchedObject gInspectors_;
    bool connected_ = false;
    bool mayHoldOutlook_ = false;  // from OnConnection to Quit
};

}  // namespace beacon
