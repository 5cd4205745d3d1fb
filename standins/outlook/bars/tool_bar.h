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

std::wstring WindowText(HWND window);

/// One bar as a tool bar of the platform, with a separator and a button for each control; both are hidden as long as
/// they are not to be seen. A combo box lies over a separator as wide as it is.
class ToolBar {
public:
    /// Makes the window, without a place. `edit` subclasses the edit windows of combo boxes and gets this data. Throws
    /// com::Error.
    ToolBar(HWND parent, BarSet::BarPointer bar, SUBCLASSPROC edit, void* data);
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
    BarSet::ControlPointer ControlOf(HWND combo) const;
    BarSet::ControlPointer ControlOf(UINT command) const;

private:
    struct Combo {
        HWND window = nullptr;  // null for other controls
        std::vector<std::wstring> items;
    };

    void UpdateButton(size_t place);
    static void UpdateCombo(Combo& combo, const BarControl& control);
    size_t PlaceIn(const BarControl& control) const;

    const BarSet::BarPointer bar_;
    const std::vector<BarSet::ControlPointer> controls_;
    std::vector<Combo> combos_;
    HWND window_;
    const std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, decltype(&ImageList_Destroy)> faces_;
};

/// The edit window of a combo box.
HWND EditOf(HWND combo);

}  // namespace beacon::standin
