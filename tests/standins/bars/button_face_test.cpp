#include <cstring>

#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

using Bytes = std::vector<std::byte>;

void Append(Bytes& block, const void* bytes, size_t count) {
    const auto* const first = static_cast<const std::byte*>(bytes);
    block.insert(block.end(), first, first + count);
}

/// The colour of a test picture's pixel; among the first two so that 1 bit is enough.
std::uint32_t Colour(int x, int y) { return (x * 3 + y * 5) % 7 < 3 ? 0x0000FF00 : 0x00FF0000; }

bool Masked(int x, int y) { return (x + 2 * y) % 3 == 0; }

/// A packed bitmap, bottom up, whose pixel (x, y) from the top is `value(x, y)`: an index up to 8 bits, else a colour.
template <class Value>
Bytes Dib(int width, int height, WORD bits, std::vector<std::uint32_t> colours, Value value) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bits;
    header.biClrUsed = static_cast<DWORD>(colours.size());
    Bytes block;
    Append(block, &header, sizeof header);
    Append(block, colours.data(), colours.size() * 4);
    for (int y = height - 1; y >= 0; --y) {
        std::vector<std::uint8_t> row((static_cast<size_t>(width * bits) + 31) / 32 * 4);
        for (int x = 0; x < width; ++x) {
            const std::uint32_t pixel = value(x, y);
            const auto at = static_cast<size_t>(x * bits / 8);
            if (bits < 8) {
                const int shift = 8 - bits - x * bits % 8;
                row[at] = static_cast<std::uint8_t>(row[at] | pixel << shift);
            } else {
                std::memcpy(&row[at], &pixel, bits / 8);
            }
        }
        Append(block, row.data(), row.size());
    }
    return block;
}

Bytes Picture(int width, int height, WORD bits) {
    if (bits > 8) return Dib(width, height, bits, {}, Colour);
    return Dib(width, height, bits, {0x00FF0000, 0x0000FF00},
               [](int x, int y) { return Colour(x, y) == 0xFF00 ? 1u : 0u; });
}

template <class Value>
Bytes Mask(int width, int height, Value value) {
    Bytes mask = Dib(width, height, 1, {0, 0x00FFFFFF}, [&](int x, int y) { return value(x, y) ? 1u : 0u; });
    mask.resize(mask.size() + 2);  // as the add-in allocates it
    return mask;
}

class Faces : public CommandBars {
protected:
    Faces() { BarWindow::AddControl(bar_, 1, L"Face").Put(L"Style", FromLong(3)); }

    void Put(UINT format, const Bytes& bytes) const {
        const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
        std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
        GlobalUnlock(block);
        SetClipboardData(format, block);
    }

    void FillClipboard(const Bytes& face, const Bytes& mask, const Bytes& picture = {}) const {
        ASSERT_TRUE(OpenClipboard(window_.top));
        EmptyClipboard();
        if (!picture.empty()) Put(CF_DIB, picture);
        if (!face.empty()) Put(RegisterClipboardFormatA("Toolbar Button Face"), face);
        if (!mask.empty()) Put(RegisterClipboardFormatA("Toolbar Button Mask"), mask);
        CloseClipboard();
    }

    long Paste() const {
        return NumberOf([&] { BarWindow::Control(bar_, 1).Call(L"PasteFace"); });
    }

    template <class Transparent>
    void ExpectFace(int width, int height, Transparent transparent) const {
        const ButtonFace& face = window_.host->Button(L"Face").face;
        ASSERT_EQ(face.width, width);
        ASSERT_EQ(face.height, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const std::uint32_t expected = Colour(x, y) | (transparent(x, y) ? 0 : 0xFF000000);
                ASSERT_EQ(face.At(x, y), expected) << x << "," << y << std::hex << " " << face.At(x, y);
            }
        }
    }
};

TEST_F(Faces, EveryDepthAndWidthUnderItsMaskOrWithoutOne) {
    for (const WORD bits : std::initializer_list<WORD>{1, 4, 8, 24, 32}) {
        for (const int width : {1, 15, 16, 33}) {
            SCOPED_TRACE(testing::Message() << bits << " bits, " << width << " wide");
            // The picture as such does not matter where a face is.
            FillClipboard(Picture(width, 16, bits), Mask(width, 16, Masked), Picture(3, 3, 24));
            ASSERT_EQ(Paste(), 0);
            ExpectFace(width, 16, Masked);
        }
    }
    const auto none = [](int, int) { return false; };
    FillClipboard(Picture(16, 16, 24), {});
    ASSERT_EQ(Paste(), 0);
    ExpectFace(16, 16, none);
    FillClipboard({}, Mask(15, 9, Masked), Picture(15, 9, 8));  // a mask alone belongs to nothing
    ASSERT_EQ(Paste(), 0);
    ExpectFace(15, 9, none);
}

TEST_F(Faces, AnythingElseIsRefusedAndChangesNothing) {
    FillClipboard(Picture(16, 16, 24), Mask(16, 16, Masked));
    ASSERT_EQ(Paste(), 0);
    const auto broken = [](Bytes block, size_t offset, std::uint32_t value, size_t bytes = 4) {
        std::memcpy(block.data() + offset, &value, bytes);
        return block;
    };
    const Bytes good = Picture(16, 16, 24);
    const Bytes paletted = Picture(16, 16, 8);
    const Bytes faces[] = {
        Bytes(39),
        Bytes(good.begin(), good.end() - 1),
        broken(good, 0, 0xFFFFFFFF),
        broken(good, 4, 0),
        broken(good, 8, 0x80000000),
        broken(good, 8, 17),
        broken(good, 14, 48, 2),
        broken(paletted, 16, BI_RLE8),
        broken(paletted, 32, 257),
        broken(paletted, 32, 0),  // 256 colours, for which there is no room
        Picture(65, 1, 24),
    };
    for (const Bytes& face : faces) {
        FillClipboard(face, {});
        EXPECT_EQ(Paste(), com::kInvalidPicture) << "face " << &face - faces;
    }
    for (const Bytes& mask : {Mask(15, 16, Masked), Picture(16, 16, 24), Bytes(48)}) {
        FillClipboard(good, mask);
        EXPECT_EQ(Paste(), com::kInvalidPicture);
    }
    FillClipboard({}, {});
    EXPECT_EQ(Paste(), E_FAIL);
    ExpectFace(16, 16, Masked);
}

TEST_F(Faces, ShowOnTheBarWithTheBarBehindThem) {
    FillClipboard(Picture(16, 16, 24), Mask(16, 16, Masked));
    ASSERT_EQ(Paste(), 0);
    RECT place = *window_.host->PlaceOf(L"Face");
    const HWND strip = window_.host->Window();
    const HWND toolBar = ChildWindowFromPoint(strip, {place.left, place.top});
    MapWindowPoints(strip, toolBar, reinterpret_cast<POINT*>(&place), 2);
    PumpMessages();
    UpdateWindow(toolBar);
    const HDC dc = GetDC(toolBar);
    const auto shownAt = [&](int left, int top) {
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) {
                const std::uint32_t colour = Colour(x, y);
                const COLORREF wanted = Masked(x, y) ? GetSysColor(COLOR_3DFACE)
                                                     : RGB(colour >> 16 & 0xFF, colour >> 8 & 0xFF, colour & 0xFF);
                if (GetPixel(dc, left + x, top + y) != wanted) return false;
            }
        return true;
    };
    int found = 0;
    for (int top = place.top; top + 16 <= place.bottom; ++top)
        for (int left = place.left; left + 16 <= place.right; ++left) found += shownAt(left, top) ? 1 : 0;
    ReleaseDC(toolBar, dc);
    EXPECT_EQ(found, 1);
}

}  // namespace
}  // namespace beacon::standin::test
