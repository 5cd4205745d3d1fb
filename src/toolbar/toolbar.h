#pragma once

#include <windows.h>

#include <beacon_olk_adapter.h>

#include <optional>
#include <string>
#include <vector>

#include "com/dual.h"
#include "com/object.h"
#include "com/out_values.h"
#include "support/type_libraries.h"
#include "toolbar/bar_places.h"
#include "toolbar/config_client.h"
#include "toolbar/saved_clipboard.h"
#include "toolbar/toolbar_host.h"

namespace beacon {

/// The add-in's Office command bar in one Outlook window: finds or creates the bar, marks its controls with the owning
/// window and turns their events into commands. Each connection owns one; the toolbar does not own its connection.
///
/// The operations are the COM methods themselves. They log their errors and return S_OK; only CopyBitmapAsButtonFace
/// fails, with error 481. Plain properties fail as COM methods do.
///
/// Calls of the utility server and message boxes let other code run, and the window may close inside them. Every entry
/// point therefore keeps the toolbar and its connection alive until it returns, and after such a call NeedWindow stops
/// the routine before it writes for a window that is gone.
///
/// Offered to other programs, not called here: the layouts (g_tmrLayoutSaver_Timer, ApplyLayout), the template of
/// Word's toolbar (template_copy.h), the record SavedClipboard.
class CToolbar final : public com::Dual<IBeaconToolbar, kAdapterLibrary> {
public:
    CToolbar() = default;

    /// The owning connection; not counted. The owner passes null before it ends or releases the toolbar.
    void SetConnect(ToolbarHost* connect) { gConnect_ = connect; }

    /// True once InstallBeaconToolbar has found or created the bar.
    bool Initialized() const { return gInitialized_; }

    /// The bar, found by its controls' tags in the window that was active at the first call, then cached: the reference
    /// outlives a bar that is deleted. Empty if there is none.
    com::Object GetCommandBar();

    /// False only if the user has deleted the bar: this object has built or found it, the add-in has not deleted it,
    /// and it is gone now. True if the window's command bars fail, which says nothing about the user's wish.
    bool CommandBarExists();

    /// The window of the last SyncToolbar of any toolbar, to which every command is addressed; 0 before the first.
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

    STDMETHODIMP get_g_strDOTName(BSTR* value) override { return com::GiveText(value, g_strDOTName_); }

    STDMETHODIMP put_g_strDOTName(BSTR value) override { return com::Take(g_strDOTName_, value); }

    STDMETHODIMP get_g_sPendingButton(BSTR* value) override { return com::GiveText(value, g_sPendingButton_); }

    STDMETHODIMP put_g_sPendingButton(BSTR value) override { return com::Take(g_sPendingButton_, value); }

    STDMETHODIMP get_g_nPendingButton(long* value) override { return com::Give(value, g_nPendingButton_); }

    STDMETHODIMP put_g_nPendingButton(long value) override { return com::Take(g_nPendingButton_, value); }

    STDMETHODIMP get_gConnect(IDispatch** value) override;
    STDMETHODIMP get_gCboContext(VARIANT* value) override;
    STDMETHODIMP put_gCboContext(VARIANT value) override;
    STDMETHODIMP putref_gCboContext(VARIANT value) override;

    STDMETHODIMP get_gSharedConextList(VARIANT_BOOL* value) override {
        return com::GiveBool(value, gSharedConextList_);
    }

    STDMETHODIMP put_gSharedConextList(VARIANT_BOOL value) override { return com::Take(gSharedConextList_, value); }

    STDMETHODIMP get_gInitialized(VARIANT_BOOL* value) override { return com::GiveBool(value, gInitialized_); }

    STDMETHODIMP put_gInitialized(VARIANT_BOOL value) override { return com::Take(gInitialized_, value); }

private:
    void Final() noexcept override;

    /// The references that an entry point holds until it returns.
    struct KeepAlive {
        com::ComPtr<CToolbar> toolbar;
        com::ComPtr<ToolbarHost> connection;
    };

    struct Click {
        std::wstring caption;
        long id = 0;
        long window = 0;
        long long second = 0;  ///< of the local time

        bool operator==(const Click&) const = default;
    };

    static constexpr wchar_t kAppName[] = L"Outlook";
    /// After so many failed builds this object gives up.
    static constexpr int kMostFailedBuilds = 3;
    /// So often a build waits for the clipboard, before it builds a bar without faces.
    static constexpr int kMostClipboardWaits = 10;

    KeepAlive Hold() { return {com::ComPtr<CToolbar>(this), com::ComPtr<ToolbarHost>(gConnect_)}; }

    ToolbarHost& Connect() const;

    static std::wstring DefaultToolbarName();
    com::Object GetCommandBars();
    bool AddBeaconToolbar();
    void DiscardBar(const com::Object& bar) noexcept;
    void DeletePartialBar();
    bool AddButtons();
    com::Object AddButtonToToolbar(const com::Object& bar, const std::wstring& caption, const std::wstring& tooltip,
                                   bool flag, long index);
    com::Object AddComboBoxToToolbar();
    void AddImageToButton(const com::Object& button, long index, OLE_COLOR maskColor);
    void ApplyLayout(const com::Object& bar);

    void Synchronise(long hWnd);
    com::Object BindPlace(const BarPlace& place, const com::Object& control);
    void BindContextBox(const com::Object& box);
    void RefillContextBox(const com::Object& box);
    void OnButtonClick(const wchar_t* handler, const com::EventArguments& arguments);
    void mvargCboContext_Change(const com::Object& ctrl);

    void CommonButton_Click(const std::wstring& caption, long id);
    void NoteClick(const Click& click);
    void CarryOut(const std::wstring& caption, const com::ComPtr<ToolbarHost>& conn, ToolbarDefinition& definition);
    void SearchFor(const std::wstring& text, ToolbarHost& conn);
    void SearchInContext(const com::ComPtr<ToolbarHost>& conn, ToolbarDefinition& definition);
    void OnUpdate(const com::ComPtr<ToolbarHost>& conn, bool useContext);
    void OnContextChange(const com::ComPtr<ToolbarHost>& conn, const std::wstring& text);
    com::ComPtr<ToolbarHost> FindActiveConnection(long hWnd);
    bool ContextBoxIsShown();
    com::Object ControlAt(long place);
    std::wstring CaptionAt(long place);
    std::wstring ContextBoxText();

    std::wstring g_strDOTName_;
    std::wstring g_sPendingButton_;
    long g_nPendingButton_ = 0;
    ToolbarHost* gConnect_ = nullptr;
    bool gSharedConextList_ = false;
    bool gInitialized_ = false;

    std::vector<std::wstring> colContextList_;
    std::wstring sCurrentContext_;
    com::Object oBeaconCmdBar_;
    com::Object oCommandBars_;
    com::Object comboBox_;
    ConfigClient toolbarConfig_;
    BarSinks sinks_;
    Click lastClick_;

    bool installing_ = false;  ///< InstallBeaconToolbar is running further up the stack
    int failedBuilds_ = 0;
    int clipboardWaits_ = 0;
    com::Object partialBar_;    ///< of a failed build, until it can be deleted
    unsigned foundBefore_ = 0;  ///< BeaconBarsFound when the last build began
    /// BeaconBarsDeleted when this object last built or found a bar.
    std::optional<unsigned> deletedBefore_;
    bool drawsFaces_ = true;     ///< false while a bar is built without the clipboard
    bool synchronised_ = false;  ///< the last synchronisation completed all places
    bool isRefilling_ = false;   ///< a synchronisation is filling the context box
};

}  // namespace beacon
