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

/// A bar as a Windows toolbar control, with a separator and a button for each control. A combo box is a child window
/// over a separator of its width. Command ids are the positions of the controls on the bar.
class ToolBar {
public:
    /// Creates the window without a position. `edit` subclasses the edit windows of combo boxes. Throws com::Error.
    ToolBar(HWND parent, BarSet::BarPointer bar, SUBCLASSPROC edit, DWORD_PTR data);
    ToolBar(const ToolBar&) = delete;
    ToolBar& operator=(const ToolBar&) = delete;
    ~ToolBar();

    /// Whether it shows this bar and no controls were added or deleted since.
    bool IsOf(const Bar& bar) const { return bar_.get() == &bar && bar.controls == controls_; }

    /// Shows the current state, but keeps what the user is typing into a combo box.
    void Update();

    HWND Window() const { return window_; }

    const Bar& Shown() const { return *bar_; }

    SIZE Size() const;

    /// In client coordinates of the parent; nothing for a hidden control or one of another bar.
    std::optional<RECT> PlaceOf(const BarControl& control) const;
    /// Null if it is not on this bar.
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

// Parts of a combo box.
HWND EditOf(HWND combo);
std::wstring EditTextOf(HWND combo);
std::wstring ItemOf(HWND combo, LRESULT place);

}  // namespace beacon::standin
