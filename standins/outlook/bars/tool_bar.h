#pragma once

#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "outlook/bars/bar_set.h"

namespace beacon::standin {

/// One bar as a tool bar of the platform, with a separator and a button for each control; both are hidden as long as
/// they are not to be seen. A combo box is a child window over a separator as wide as it is. Commands are the places of
/// the controls on the bar.
class ToolBar {
public:
    /// Makes the window, without a place. `edit` subclasses the edit windows of combo boxes. Throws com::Error.
    ToolBar(HWND parent, BarSet::BarPointer bar, SUBCLASSPROC edit, DWORD_PTR data);
    ToolBar(const ToolBar&) = delete;
    ToolBar& operator=(const ToolBar&) = delete;
    ~ToolBar();

    /// False for another bar, and once controls have been added or deleted.
    bool IsOf(const Bar& bar) const { return bar_.get() == &bar && bar.controls == controls_; }

    /// Shows everything as it is now, apart from what the user is entering in a combo box.
    void Update();

    HWND Window() const { return window_; }

    const Bar& Shown() const { return *bar_; }

    SIZE Size() const;

    /// In pixels of the parent; nothing for a control that is not this bar's or does not show.
    std::optional<RECT> PlaceOf(const BarControl& control) const;
    /// Null when it is not here.
    HWND ComboOf(const BarControl& control) const;
    BarSet::ControlPointer ControlOf(int command) const;

private:
    RECT ButtonAt(size_t place) const;
    void UpdateButton(size_t place);
    void UpdateCombo(HWND combo, size_t place);
    size_t PlaceIn(const BarControl& control) const;

    const BarSet::BarPointer bar_;
    const std::vector<BarSet::ControlPointer> controls_;
    HWND window_;
    const std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, decltype(&ImageList_Destroy)> faces_;
};

/// Parts of a combo box.
HWND EditOf(HWND combo);
std::wstring EditTextOf(HWND combo);
std::wstring ItemOf(HWND combo, LRESULT place);

}  // namespace beacon::standin
