#include "outlook/bars/bar_layout.h"

#include <algorithm>

namespace beacon::standin {
namespace {

constexpr int kControlHeight = 22;
constexpr int kRowHeight = 26;
constexpr int kGripWidth = 9;
constexpr int kSeparatorWidth = 7;
constexpr int kComboWidth = 100;
constexpr int kRightMargin = 4;

int TextWidth(HDC dc, const std::wstring& caption) {
    RECT place{};
    DrawTextW(dc, caption.c_str(), -1, &place, DT_CALCRECT | DT_SINGLELINE);
    return place.right;
}

int WidthOf(const BarControl& control, HDC dc) {
    if (control.type == kComboBoxControl) return control.width != 0 ? static_cast<int>(control.width) : kComboWidth;
    if (control.width != 0) return static_cast<int>(control.width);
    int width = 6;
    if (control.type == kPopupControl) return width + 6 + TextWidth(dc, control.caption);
    if (ShowsFace(control)) width += kFaceSize;
    if (ShowsCaption(control)) width += TextWidth(dc, control.caption) + (ShowsFace(control) ? 4 : 2);
    return std::max(width, kControlHeight);
}

/// Puts the bar's controls in a row from this corner on; gives the bar's right end.
int PlaceBar(BarLayout& layout, const BarSet::BarPointer& bar, HDC dc, int left, int top) {
    int x = left + kGripWidth;
    const int inset = (kRowHeight - kControlHeight) / 2;
    bool first = true;
    for (const auto& control : bar->controls) {
        if (!control->visible) continue;
        ControlPlace entry{control, {}, std::nullopt};
        if (control->beginGroup && !first) {
            entry.separator = x + kSeparatorWidth / 2;
            x += kSeparatorWidth;
        }
        first = false;
        const int width = WidthOf(*control, dc);
        entry.place = {x, top + inset, x + width, top + inset + kControlHeight};
        x += width;
        layout.controls.push_back(std::move(entry));
    }
    return x + kRightMargin;
}

}  // namespace

bool ShowsFace(const BarControl& control) {
    return control.type == kButtonControl && (control.style & kIconAndCaptionStyle) != kCaptionStyle &&
           (!control.face.Empty() || control.style != kAutomaticStyle);
}

bool ShowsCaption(const BarControl& control) {
    if (control.style == kAutomaticStyle) return control.face.Empty();
    return (control.style & kCaptionStyle) != 0;
}

const ControlPlace* BarLayout::At(POINT point) const {
    const auto found = std::find_if(controls.begin(), controls.end(),
                                    [&](const ControlPlace& entry) { return PtInRect(&entry.place, point) != FALSE; });
    return found == controls.end() ? nullptr : &*found;
}

const ControlPlace* BarLayout::Find(const BarControl& control) const {
    const auto found = std::find_if(controls.begin(), controls.end(),
                                    [&](const ControlPlace& entry) { return entry.control.get() == &control; });
    return found == controls.end() ? nullptr : &*found;
}

BarLayout LayOut(const std::vector<BarSet::BarPointer>& bars, HDC dc, HFONT font, int width) {
    std::vector<BarSet::BarPointer> shown;
    for (const auto& bar : bars)
        if (bar->visible && bar->position != kPopupPosition) shown.push_back(bar);
    std::stable_sort(shown.begin(), shown.end(), [](const BarSet::BarPointer& left, const BarSet::BarPointer& right) {
        return left->rowIndex < right->rowIndex;
    });
    BarLayout layout;
    const HGDIOBJ previous = SelectObject(dc, font);
    int top = 0;
    int x = 0;
    for (size_t i = 0; i < shown.size(); ++i) {
        if (i != 0 && shown[i]->rowIndex != shown[i - 1]->rowIndex) {
            top += kRowHeight;
            x = 0;
        }
        const int right = PlaceBar(layout, shown[i], dc, x, top);
        layout.bars.push_back({shown[i], {x, top, right, top + kRowHeight}});
        x = right;
    }
    SelectObject(dc, previous);
    // The last bar of each row reaches to the window's edge.
    for (size_t i = 0; i < layout.bars.size(); ++i) {
        RECT& place = layout.bars[i].place;
        const bool last = i + 1 == layout.bars.size() || layout.bars[i + 1].place.top != place.top;
        if (last) place.right = std::max<LONG>(place.right, width);
    }
    layout.height = layout.bars.empty() ? 0 : top + kRowHeight;
    return layout;
}

}  // namespace beacon::standin
