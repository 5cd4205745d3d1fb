#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace beacon {

struct DeleteGdiObject {
    void operator()(HGDIOBJ object) const { DeleteObject(object); }
};

using OwnedBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, DeleteGdiObject>;
using OwnedPalette = std::unique_ptr<std::remove_pointer_t<HPALETTE>, DeleteGdiObject>;

struct DeleteMemoryDc {
    void operator()(HDC dc) const { DeleteDC(dc); }
};

using MemoryDc = std::unique_ptr<std::remove_pointer_t<HDC>, DeleteMemoryDc>;

/// The screen's device context.
class ScreenDc {
public:
    ScreenDc() : dc_(GetDC(nullptr)) {}

    ScreenDc(const ScreenDc&) = delete;
    ScreenDc& operator=(const ScreenDc&) = delete;

    ~ScreenDc() { ReleaseDC(nullptr, dc_); }

    HDC Get() const { return dc_; }

private:
    HDC dc_;
};

/// A bitmap selected into a device context for as long as this lives.
class SelectedBitmap {
public:
    SelectedBitmap(HDC dc, HBITMAP bitmap) : dc_(dc), earlier_(SelectObject(dc, bitmap)) {}

    SelectedBitmap(const SelectedBitmap&) = delete;
    SelectedBitmap& operator=(const SelectedBitmap&) = delete;

    ~SelectedBitmap() {
        if (earlier_ != nullptr) SelectObject(dc_, earlier_);
    }

private:
    HDC dc_;
    HGDIOBJ earlier_;
};

/// A palette selected in the background for as long as this lives.
class SelectedPalette {
public:
    SelectedPalette(HDC dc, HPALETTE palette) : dc_(dc), earlier_(SelectPalette(dc, palette, TRUE)) {
        RealizePalette(dc);
    }

    SelectedPalette(const SelectedPalette&) = delete;
    SelectedPalette& operator=(const SelectedPalette&) = delete;

    ~SelectedPalette() {
        if (earlier_ != nullptr) SelectPalette(dc_, earlier_, TRUE);
    }

private:
    HDC dc_;
    HPALETTE earlier_;
};

}  // namespace beacon
