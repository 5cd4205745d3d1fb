#pragma once

#include "outlook/bars/bar_layout.h"

namespace beacon::standin {

/// What the mouse and the keyboard are at.
struct PaintState {
    const BarControl* hot = nullptr;
    const BarControl* pressed = nullptr;
};

/// Paints the bars, without flicker, over the whole of the area.
void PaintBars(HDC target, const RECT& area, const BarLayout& layout, const PaintState& state, HFONT font);

/// The part of a combo box's place that shows its text.
RECT ComboTextPlace(const RECT& combo);

/// The system's font for menus; the caller deletes it.
HFONT MenuFont();

}  // namespace beacon::standin
