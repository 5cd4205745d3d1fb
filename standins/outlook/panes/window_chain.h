#pragma once

#include <vector>

#include "outlook/panes/item_pane.h"

namespace beacon::standin {

/// The window classes from a top-level window to the control with the text of an item.
struct WindowChain {
    /// From the top-level window to the dialog (last).
    std::vector<const wchar_t*> outer;
    /// From the dialog to the parent of the control.
    std::vector<const wchar_t*> inner;
    /// Null if the item has no body window.
    const wchar_t* control = nullptr;
    const wchar_t* field = nullptr;
    bool header = false;
    /// Word in Outlook up to 11: the first child on every level, found by no class path.
    bool foremost = false;
};

WindowChain ExplorerChain(int outlookVersion, Editor editor);
WindowChain InspectorChain(int outlookVersion, Editor editor);

}  // namespace beacon::standin
