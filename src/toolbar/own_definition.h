#pragma once

#include <array>

#include "toolbar/toolbar_definition.h"

namespace beacon {

/// The add-in's own toolbar definition, for machines without the engine's utility server. Values of the machine's key
/// "Toolbar" replace the built-in captions, tooltips, bitmaps and texts; they are read at each use. A button number
/// outside 0 to 5 raises error 9. Commands need the utility server: here they succeed, and a search is only logged.
class OwnDefinition final : public ToolbarDefinition {
public:
    static constexpr long kButtons = 6;

    OwnDefinition() = default;
    /// Deletes the files that ButtonBitmapPath has written.
    ~OwnDefinition() override;

    long ButtonCount() override { return kButtons; }

    std::wstring ButtonCaption(long index) override;
    std::wstring ButtonTooltip(long index) override;
    /// Writes a built-in bitmap to the user's temporary folder.
    std::wstring ButtonBitmapPath(long index) override;
    bool ButtonEnabled(long index) override;
    OLE_COLOR ButtonMaskColor(long index) override;

    long ContextMode() override;
    std::wstring DefaultContextText() override;
    std::wstring ContextWarningTitle() override;
    std::wstring ContextWarningText() override;

    /// kEngineIsReady while the engine's controller is running, else 0.
    long EngineState() override;

    void BeginCommand() override {}

    void CommandDone(long) override {}

    void NewSearch(long hWnd, const std::wstring& text) override;

    void SaveLayout(const std::wstring& application, const BarLayout& layout) override;
    /// Raises the system's "file not found" if no layout has been saved for the application.
    BarLayout LoadLayout(const std::wstring& application) override;

private:
    std::wstring BuiltInBitmap(long index);

    std::array<std::wstring, kButtons> written_;
};

}  // namespace beacon
