#pragma once

#include <array>

#include "toolbar/toolbar_definition.h"

namespace beacon {

/// The add-in's own toolbar definition, for machines without the engine's utility server. Captions, tooltips, bitmaps
/// and texts come from values of the machine's key "Toolbar", each with a built-in default; values are read at every
/// use. A button number outside 0 to 5 raises error 9.
///
/// Commands need the utility server: they succeed, so that the click goes on, and a search leaves a line in the log.
class OwnDefinition final : public ToolbarDefinition {
public:
    static constexpr long kButtons = 6;

    OwnDefinition() = default;
    /// Removes the files that ButtonBitmapPath has written.
    ~OwnDefinition() override;

    long ButtonCount() override { return kButtons; }

    std::wstring ButtonCaption(long index) override;
    std::wstring ButtonTooltip(long index) override;
    /// The built-in bitmap is written to the user's temporary folder.
    std::wstring ButtonBitmapPath(long index) override;
    bool ButtonEnabled(long index) override;
    OLE_COLOR ButtonMaskColor(long index) override;

    long ContextMode() override;
    std::wstring DefaultContextText() override;
    std::wstring ContextWarningTitle() override;
    std::wstring ContextWarningText() override;

    /// Ready while the engine's controller runs, else 0.
    long EngineState() override;

    void BeginCommand() override {}

    void CommandDone(long) override {}

    void NewSearch(long hWnd, const std::wstring& text) override;

    void SaveLayout(const std::wstring& application, const BarLayout& layout) override;
    /// Raises the system's "file not found" while no layout has been saved for the application.
    BarLayout LoadLayout(const std::wstring& application) override;

private:
    std::wstring BuiltInBitmap(long index);

    std::array<std::wstring, kButtons> written_;
};

}  // namespace beacon
