#pragma once

#include <windows.h>

#include <optional>

#include "outlook/bars/bar_set.h"

namespace beacon::standin {

struct ControlPlace {
    BarSet::ControlPointer control;
    RECT place;
    std::optional<int> separator;  // where the line before it is drawn
};

struct BarPlace {
    BarSet::BarPointer bar;
    RECT place;
};

/// Where everything that shows is: the visible bars in rows by their RowIndex, whatever edge they are docked to, and on
/// them the visible controls. Hidden controls take no place.
struct BarLayout {
    std::vector<BarPlace> bars;
    std::vector<ControlPlace> controls;
    int height = 0;

    const ControlPlace* At(POINT point) const;
    const ControlPlace* Find(const BarControl& control) const;
};

/// Measures with this font in this device context; rows are at least `width` pixels wide.
BarLayout LayOut(const std::vector<BarSet::BarPointer>& bars, HDC dc, HFONT font, int width);

/// What a button shows.
bool ShowsFace(const BarControl& control);
bool ShowsCaption(const BarControl& control);

inline constexpr int kArrowWidth = 13;  // of a combo box's button

}  // namespace beacon::standin
