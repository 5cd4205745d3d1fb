#pragma once

#include <windows.h>

#include <beacon_util.h>

#include <string>

#include "com/dual.h"

namespace beacon {

/// The engine's object where its utility server is installed, else the add-in's own.
com::ComPtr<IToolbarConfig> MakeToolbarConfig();

/// The add-in's own toolbar definition, for machines without the engine's utility server. Captions, tooltips, bitmaps
/// and texts come from values of the machine's key "Toolbar", each with a built-in default; values are read at every
/// use. A button number outside 0 to 5 fails with error 9.
///
/// Commands need the utility server: they succeed, so that the click goes on, and leave a line in the log.
class ToolbarConfig final : public com::Dual<IToolbarConfig, 2> {
public:
    static constexpr long kButtons = 6;

    ToolbarConfig() = default;
    /// Removes the files that ButtonBitmapPath has written.
    ~ToolbarConfig() override;

    STDMETHODIMP BeginCommand() override;
    /// 1: the context box is shown.
    STDMETHODIMP get_ContextMode(long* value) override;
    STDMETHODIMP get_ContextWarningTitle(BSTR* value) override;
    /// The built-in bitmap is written to the user's temporary folder and lasts as long as this object.
    STDMETHODIMP get_ButtonBitmapPath(long i, BSTR* value) override;
    STDMETHODIMP get_ButtonCaption(long i, BSTR* value) override;
    STDMETHODIMP get_ButtonTooltip(long i, BSTR* value) override;
    STDMETHODIMP get_ButtonEnabled(long i, VARIANT_BOOL* value) override;
    STDMETHODIMP CommandDone(long hWnd, long* result) override;
    STDMETHODIMP SaveLayout(BSTR app, long height, long width, long left, long top, long rowIndex,
                            BSTR position) override;
    /// Fails with the system's "file not found" while no layout has been saved for the application.
    STDMETHODIMP LoadLayout(BSTR app, long* height, long* width, long* left, long* top, long* rowIndex,
                            BSTR* position) override;
    STDMETHODIMP get_ButtonMaskColor(long i, OLE_COLOR* value) override;
    STDMETHODIMP NewSearch(long hWnd, BSTR text) override;
    STDMETHODIMP get_ButtonCount(long* value) override;
    STDMETHODIMP get_DefaultContextText(BSTR* value) override;
    STDMETHODIMP get_ContextWarningText(BSTR* value) override;
    /// 3 while the engine's controller is in the running object table, else 0.
    STDMETHODIMP get_EngineState(long* value) override;

    STDMETHODIMP Reserved1() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved2() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved4() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved5() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved6() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved9() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved11() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved18() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved21() override { return E_NOTIMPL; }

    STDMETHODIMP Reserved22() override { return E_NOTIMPL; }

private:
    std::wstring BuiltInBitmap(long index);

    std::wstring written_[kButtons];
};

}  // namespace beacon
