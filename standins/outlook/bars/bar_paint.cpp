#include "outlook/bars/bar_paint.h"

namespace beacon::standin {
namespace {

constexpr int kComboInset = 1;

/// Selections and colours of a device context, put back at the end.
class SavedDc {
public:
    explicit SavedDc(HDC dc) : dc_(dc), saved_(SaveDC(dc)) {}

    SavedDc(const SavedDc&) = delete;
    SavedDc& operator=(const SavedDc&) = delete;

    ~SavedDc() { RestoreDC(dc_, saved_); }

private:
    HDC dc_;
    int saved_;
};

void Fill(HDC dc, int left, int top, int width, int height, int colour) {
    const RECT area{left, top, left + width, top + height};
    FillRect(dc, &area, GetSysColorBrush(colour));
}

/// A frame of one pixel: light from the top left, or the reverse for something pressed.
void Frame(HDC dc, const RECT& place, int topLeft, int bottomRight) {
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    Fill(dc, place.left, place.top, width, 1, topLeft);
    Fill(dc, place.left, place.top, 1, height, topLeft);
    Fill(dc, place.left, place.bottom - 1, width, 1, bottomRight);
    Fill(dc, place.right - 1, place.top, 1, height, bottomRight);
}

void PaintFace(HDC dc, int left, int top, const ButtonFace& original, bool enabled) {
    if (original.Empty()) return;
    const ButtonFace face =
        original.width == kFaceSize && original.height == kFaceSize ? original : Scaled(original, kFaceSize, kFaceSize);
    for (int y = 0; y < kFaceSize; ++y) {
        for (int x = 0; x < kFaceSize; ++x) {
            const std::uint32_t pixel = face.At(x, y);
            if (pixel >> 24 == 0) continue;
            const auto red = static_cast<int>(pixel >> 16 & 0xFF);
            const auto green = static_cast<int>(pixel >> 8 & 0xFF);
            const auto blue = static_cast<int>(pixel & 0xFF);
            if (enabled) {
                SetPixelV(dc, left + x, top + y, RGB(red, green, blue));
            } else if (red * 3 + green * 6 + blue < 1600) {  // the dark parts, embossed
                SetPixelV(dc, left + x + 1, top + y + 1, GetSysColor(COLOR_3DHILIGHT));
                SetPixelV(dc, left + x, top + y, GetSysColor(COLOR_3DSHADOW));
            }
        }
    }
}

void PaintText(HDC dc, const std::wstring& text, RECT place, UINT format, bool enabled) {
    format |= DT_SINGLELINE | DT_VCENTER;
    if (!enabled) {
        RECT below = place;
        OffsetRect(&below, 1, 1);
        SetTextColor(dc, GetSysColor(COLOR_3DHILIGHT));
        DrawTextW(dc, text.c_str(), -1, &below, format);
    }
    SetTextColor(dc, GetSysColor(enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    DrawTextW(dc, text.c_str(), -1, &place, format);
}

void PaintCombo(HDC dc, const BarControl& control, RECT place, const PaintState& state) {
    place.top += kComboInset;
    place.bottom -= kComboInset;
    InflateRect(&place, -1, 0);
    const bool hot = control.enabled && (state.hot == &control || state.pressed == &control);
    if (hot) Frame(dc, place, COLOR_3DSHADOW, COLOR_3DHILIGHT);
    RECT inner = place;
    InflateRect(&inner, -1, -1);
    FillRect(dc, &inner, GetSysColorBrush(control.enabled ? COLOR_WINDOW : COLOR_3DFACE));
    if (!control.enabled) Frame(dc, inner, COLOR_3DSHADOW, COLOR_3DSHADOW);
    RECT arrow = inner;
    arrow.left = arrow.right - kArrowWidth;
    FillRect(dc, &arrow, GetSysColorBrush(COLOR_3DFACE));
    if (hot) Frame(dc, arrow, COLOR_3DHILIGHT, COLOR_3DSHADOW);
    const int middle = (arrow.left + arrow.right) / 2;
    const int top = (arrow.top + arrow.bottom) / 2 - 1;
    const int colour = control.enabled ? COLOR_BTNTEXT : COLOR_GRAYTEXT;
    for (int row = 0; row < 3; ++row) Fill(dc, middle - 2 + row, top + row, 5 - 2 * row, 1, colour);
    RECT text = inner;
    text.left += 3;
    text.right = arrow.left - 1;
    PaintText(dc, control.text, text, DT_NOPREFIX | DT_END_ELLIPSIS, control.enabled);
}

void PaintControl(HDC dc, const ControlPlace& entry, const PaintState& state) {
    const BarControl& control = *entry.control;
    const RECT& place = entry.place;
    if (entry.separator) {
        Fill(dc, *entry.separator - 1, place.top + 1, 1, place.bottom - place.top - 2, COLOR_3DSHADOW);
        Fill(dc, *entry.separator, place.top + 1, 1, place.bottom - place.top - 2, COLOR_3DHILIGHT);
    }
    if (control.type == kComboBoxControl) return PaintCombo(dc, control, place, state);
    const bool down = control.enabled && state.pressed == &control && state.hot == &control;
    const bool sunken = down || control.state == -1;
    if (sunken)
        Frame(dc, place, COLOR_3DSHADOW, COLOR_3DHILIGHT);
    else if (control.enabled && (state.hot == &control || state.pressed == &control))
        Frame(dc, place, COLOR_3DHILIGHT, COLOR_3DSHADOW);
    const int shift = down ? 1 : 0;
    RECT text = place;
    OffsetRect(&text, shift, shift);
    if (ShowsFace(control)) {
        PaintFace(dc, place.left + 3 + shift, place.top + 3 + shift, control.face, control.enabled);
        text.left += 3 + kFaceSize + 4;
        text.right -= 3;
    }
    if (control.type == kPopupControl || ShowsCaption(control))
        PaintText(dc, control.caption, text, ShowsFace(control) ? DT_LEFT : DT_CENTER, control.enabled);
}

void PaintBar(HDC dc, const BarPlace& bar) {
    Frame(dc, bar.place, COLOR_3DHILIGHT, COLOR_3DSHADOW);
    const RECT grip{bar.place.left + 3, bar.place.top + 3, bar.place.left + 6, bar.place.bottom - 3};
    Frame(dc, grip, COLOR_3DHILIGHT, COLOR_3DSHADOW);
}

}  // namespace

RECT ComboTextPlace(const RECT& combo) {
    return {combo.left + 4, combo.top + 4, combo.right - 2 - kArrowWidth, combo.bottom - 3};
}

HFONT MenuFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) == FALSE) return nullptr;
    return CreateFontIndirectW(&metrics.lfMenuFont);
}

void PaintBars(HDC target, const RECT& area, const BarLayout& layout, const PaintState& state, HFONT font) {
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const HDC dc = CreateCompatibleDC(target);
    const HBITMAP bitmap = CreateCompatibleBitmap(target, width, height);
    {
        const SavedDc saved(dc);
        SelectObject(dc, bitmap);
        SelectObject(dc, font);
        SetBkMode(dc, TRANSPARENT);
        Fill(dc, 0, 0, width, height, COLOR_3DFACE);
        for (const BarPlace& bar : layout.bars) PaintBar(dc, bar);
        for (const ControlPlace& control : layout.controls) PaintControl(dc, control, state);
        BitBlt(target, area.left, area.top, width, height, dc, 0, 0, SRCCOPY);
    }
    DeleteObject(bitmap);
    DeleteDC(dc);
}

}  // namespace beacon::standin
