#pragma once

#include <add_in_designer.h>

#include "com/dual.h"
#include "com/event_sink.h"
#include "observe/explorer_listener.h"
#include "observe/inspector_listener.h"

namespace beacon {

/// Number of the add-in designer's type library among the binary's resources.
inline constexpr int kDesignerLibrary = 3;

/// The add-in's entry object, through which Outlook connects and disconnects it. It follows Outlook's start-up and quit
/// and makes a listener for every explorer and inspector. Nothing it meets reaches Outlook: every method returns S_OK.
class Connect final : public com::Dual<IDTExtensibility2, kDesignerLibrary> {
public:
    Connect() = default;

    STDMETHODIMP OnConnection(IDispatch* application, long connectMode, IDispatch* addIn, SAFEARRAY** custom) override;
    STDMETHODIMP OnDisconnection(long removeMode, SAFEARRAY** custom) override;
    STDMETHODIMP OnAddInsUpdate(SAFEARRAY** custom) override;
    STDMETHODIMP OnStartupComplete(SAFEARRAY** custom) override;
    STDMETHODIMP OnBeginShutdown(SAFEARRAY** custom) override;

private:
    /// A host that lets go without disconnecting: the same as OnDisconnection.
    void Final() noexcept override;
    void AddinInstance_OnConnection(IDispatch* application, long connectMode);
    void AddinInstance_OnDisconnection();
    void gOutlookApp_Startup(bool isUpAlready);
    void gOutlookApp_Quit();
    void FollowActiveWindow(const com::Object& application, bool isUpAlready);
    void gExplorers_NewExplorer(const com::Object& explorer);
    void gInspectors_NewInspector(const com::Object& inspector);
    void Shutdown();
    /// False after Quit, which may come inside any call: what has been subscribed since is released then, and the
    /// caller goes no further.
    bool MayHoldOutlook() noexcept;
    /// A registered listener for this window of Outlook; not initialised yet. Null when Outlook has quit meanwhile. One
    /// that Outlook refuses its events is not registered, and the error is raised: nothing may be held of a window
    /// whose end will not be heard.
    com::ComPtr<ExplorerListener> FollowExplorer(const com::Object& explorer);
    com::ComPtr<InspectorListener> FollowInspector(const com::Object& inspector);

    com::WatchedObject gOutlookApp_;
    com::WatchedObject gExplorers_;
    com::WatchedObject gInspectors_;
    bool connected_ = false;
    bool mayHoldOutlook_ = false;  // from OnConnection to Quit
};

}  // namespace beacon
