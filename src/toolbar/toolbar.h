#pragma once

#include <windows.h>

#include <beacon_olk_adapter.h>

#include <string>
#include <vector>

#include "com/dual.h"
#include "com/object.h"
#include "toolbar/click_state.h"
#include "toolbar/config_client.h"
#include "toolbar/control_sink.h"
#include "toolbar/toolbar_host.h"

namespace beacon {

/// The add-in's Office command bar in one Outlook window: finds or creates it, marks its controls with the owning
/// window and turns their events into commands. One exists per connection, which owns it and is known to it without
/// ownership.
///
/// The operations are the COM methods themselves. All of them catch and log their errors and return S_OK, but for
/// CopyBitmapAsButtonFace, which fails with error 481.
class CToolbar final : public com::Dual<IBeaconToolbar, 1> {
public:
    CToolbar() = default;

    /// The owning connection; not owned. The owner passes null before it dies, or when it lets go of the toolbar.
    void SetConnect(ToolbarHost* connect) { gConnect_ = connect; }

    /// True once InstallBeaconToolbar has found or created the bar.
    bool Initialized() const { return gInitialized_; }

    /// The bar, found by its controls' tags in the window that was active at the first call and then kept: also a bar
    /// that has been deleted since is returned. Empty when there is none.
    com::Object GetCommandBar();

    /// False only when the bar of this toolbar was installed and has been deleted since, by someone else than this
    /// object. True before the installation and when the window's command bars cannot be reached any more, since
    /// neither says that the user does not want the bar.
    bool CommandBarExists();

    /// The window of the last SyncToolbar of any toolbar, to which every command is addressed. 0 before the first.
    static long LastSynchronisedWindow();

    STDMETHODIMP InstallBeaconToolbar(VARIANT_BOOL bRemoveOldToolbar) override;
    STDMETHODIMP SyncToolbar(long hWnd) override;
    STDMETHODIMP GetCommandBar(IDispatch** result) override;
    STDMETHODIMP RemoveBeaconToolbar() override;
    STDMETHODIMP AddToolbarButtons() override;
    STDMETHODIMP GetAppName(BSTR* result) override;
    STDMETHODIMP GetDefaultToolbarName(BSTR* result) override;
    STDMETHODIMP IsFirstInstallOfToolbar(BSTR sAppName, VARIANT_BOOL* result) override;
    STDMETHODIMP SetFirstInstallOfToolbar(BSTR sAppName, long lngValue) override;
    STDMETHODIMP CopyFreshTemplateToAppData(BSTR sDOTFilename) override;
    STDMETHODIMP g_tmrLayoutSaver_Timer() override;
    STDMETHODIMP CopyBitmapAsButtonFace(IDispatch* picSource, OLE_COLOR clrMaskColor) override;
    STDMETHODIMP OnConnect() override;

    STDMETHODIMP get_g_strDOTName(BSTR* value) override;
    STDMETHODIMP put_g_strDOTName(BSTR value) override;
    STDMETHODIMP get_g_sPendingButton(BSTR* value) override;
    STDMETHODIMP put_g_sPendingButton(BSTR value) override;
    STDMETHODIMP get_g_nPendingButton(long* value) override;
    STDMETHODIMP put_g_nPendingButton(long value) override;
    STDMETHODIMP get_gConnect(IDispatch** value) override;
    STDMETHODIMP get_gCboContext(VARIANT* value) override;
    STDMETHODIMP put_gCboContext(VARIANT value) override;
    STDMETHODIMP putref_gCboContext(VARIANT value) override;
    STDMETHODIMP get_gSharedConextList(VARIANT_BOOL* value) override;
    STDMETHODIMP put_gSharedConextList(VARIANT_BOOL value) override;
    STDMETHODIMP get_gInitialized(VARIANT_BOOL* value) override;
    STDMETHODIMP put_gInitialized(VARIANT_BOOL value) override;

private:
    void Final() noexcept override;

    /// A button's place on the bar, from 1, and what is bound to it.
    struct ButtonPlace {
        long position;
        ControlSink CToolbar::*sink;
        const wchar_t* handler;  ///< null for a button whose clicks nobody handles
    };

    static const ButtonPlace kButtonPlaces[6];

    ToolbarHost& Connect() const;

    static std::wstring DefaultToolbarName();
    com::Object GetCommandBars();
    bool AddBeaconToolbar();
    com::Object AddButtonToToolbar(const com::Object& bar, const std::wstring& caption, const std::wstring& tooltip,
                                   bool flag, long index);
    com::Object AddComboBoxToToolbar();
    void AddImageToButton(const com::Object& button, long index, OLE_COLOR maskColor);
    void ApplyLayout(const com::Object& bar);

    void BindButton(const ButtonPlace& place, const com::Object& controls);
    void BindContextBox(const com::Object& box);
    void BindMissingSinks(const com::Object& controls);
    void OnButtonClick(const wchar_t* handler, const com::EventArguments& arguments);
    void mvargCboContext_Change(const com::Object& ctrl);

    void CommonButton_Click(const std::wstring& caption, long id);
    void CarryOut(const std::wstring& caption, const com::ComPtr<ToolbarHost>& conn);
    void SearchInContext(const com::ComPtr<ToolbarHost>& conn);
    void OnUpdate(const com::ComPtr<ToolbarHost>& conn, bool useContext);
    void OnContextChange(const com::ComPtr<ToolbarHost>& conn, const std::wstring& text);
    com::ComPtr<ToolbarHost> FindActiveConnection(long hWnd);
    std::wstring CaptionAt(long position);
    std::wstring ContextBoxText();

    std::wstring g_strDOTName_;
    ClickState clicks_;
    ToolbarHost* gConnect_ = nullptr;
    bool gSharedConextList_ = false;
    bool gInitialized_ = false;
    bool removedHere_ = false;

    std::vector<std::wstring> colContextList_;
    std::wstring sCurrentContext_;
    com::Object oBeaconCmdBar_;
    com::Object oCommandBars_;
    com::Object comboBox_;
    ConfigClient toolbarConfig_;

    ControlSink mvargCbbBeacon_;
    ControlSink mvargCbbBackpack_;
    ControlSink mvargCboContext_;
    ControlSink mvargCbbSearch_;
    ControlSink mvargCbbSearchInContext_;
    ControlSink mvargCbbFocus_;
    ControlSink mvargCbbRefresh_;
};

}  // namespace beacon
