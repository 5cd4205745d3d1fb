#pragma once

#include <windows.h>

#include <ocidl.h>

#include <string>

namespace beacon {

/// Place and size of a command bar as Office gives them; `position` is a name (see PositionName).
struct BarLayout {
    long height = 0;
    long width = 0;
    long left = 0;
    long top = 0;
    long rowIndex = 0;
    std::wstring position;
};

/// Defines what the toolbar shows and carries out its commands. Implemented by the engine's utility server or, on
/// machines without it, by the add-in. Buttons are numbered from 0. Members raise their errors. Calls of the utility
/// server let other code run, so the window that a call was made for may be gone when it returns.
class ToolbarDefinition {
public:
    static constexpr long kContextBoxIsShown = 1;
    static constexpr long kEngineIsReady = 3;

    ToolbarDefinition() = default;
    ToolbarDefinition(const ToolbarDefinition&) = delete;
    ToolbarDefinition& operator=(const ToolbarDefinition&) = delete;
    virtual ~ToolbarDefinition() = default;

    /// True once the server has died, so that the definition must be created again.
    virtual bool HasDied() const { return false; }

    /// Informative only: the bar always has six buttons.
    virtual long ButtonCount() = 0;
    virtual std::wstring ButtonCaption(long index) = 0;
    virtual std::wstring ButtonTooltip(long index) = 0;
    /// Path of a bitmap file, which exists at least as long as this object.
    virtual std::wstring ButtonBitmapPath(long index) = 0;
    virtual bool ButtonEnabled(long index) = 0;
    /// The colour of the bitmap's transparent pixels.
    virtual OLE_COLOR ButtonMaskColor(long index) = 0;

    /// kContextBoxIsShown; with any other number the box is hidden and not used.
    virtual long ContextMode() = 0;
    virtual std::wstring DefaultContextText() = 0;
    virtual std::wstring ContextWarningTitle() = 0;
    virtual std::wstring ContextWarningText() = 0;

    /// kEngineIsReady if the engine can accept a command.
    virtual long EngineState() = 0;
    virtual void BeginCommand() = 0;
    virtual void CommandDone(long hWnd) = 0;
    virtual void NewSearch(long hWnd, const std::wstring& text) = 0;

    virtual void SaveLayout(const std::wstring& application, const BarLayout& layout) = 0;
    virtual BarLayout LoadLayout(const std::wstring& application) = 0;
};

}  // namespace beacon
