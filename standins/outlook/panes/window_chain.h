#pragma once

#include <vector>

#include "outlook/panes/item_pane.h"

namespace beacon::standin {

/// The window classes that lead from a top-level window to the control with the item's text.
struct WindowChain {
    /// From the top-level window to the dialog, which is the last.
    std::vector<const wchar_t*> outer;
    /// From the dialog to the window around the control.
    std::vector<const wchar_t*> inner;
    /// Null when the item has no body window.
    const wchar_t* control = nullptr;
    const wchar_t* field = nullptr;
    bool header = false;
    /// Word inside the windows of Outlook up to 11: no classes lead there, it is the first child on every level.
    bool foremost = false;
};

WindowChain ExplorerChain(int outlookVersion, Editor editor);
WindowChain InspectorChain(int outlookVersion, Editor editor);

}  // namespace beacon::standin
