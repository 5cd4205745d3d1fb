#include <cstring>
#include <map>

#include "tests/standins/bars/bar_window.h"

namespace beacon::standin::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A packed bitmap of at most two colours (0xRRGGBB, from the top left), as the clipboard has it.
Bytes Dib(int width, int height, int bits, std::uint32_t (*colour)(int x, int y)) {
    const BITMAPINFOHEADER header{sizeof header, width, height, 1, static_cast<WORD>(bits), BI_RGB, 0, 0, 0, 0, 0};
    std::vector<std::uint32_t> table(bits <= 8 ? size_t{1} << bits : 0);
    const std::uint32_t first = colour(0, 0);
    if (!table.empty()) table[0] = first;
    const size_t head = sizeof header + table.size() * sizeof(RGBQUAD);
    const size_t row = static_cast<size_t>((width * bits + 31) / 32 * 4);
    Bytes dib(head + row * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) {
        std::uint8_t* const line = &dib[head + static_cast<size_t>(height - 1 - y) * row];
        for (int x = 0; x < width; ++x) {
            const std::uint32_t value = colour(x, y);
            std::uint8_t* const place = line + x * bits / 8;
            if (bits >= 24) {
                std::memcpy(place, &value, 3);
            } else if (value != first) {
                table[1] = value;
                *place |= static_cast<std::uint8_t>(1 << (8 - bits - x * bits % 8));
            }
        }
    }
    std::memcpy(dib.data(), &header, sizeof header);
    if (!table.empty()) std::memcpy(dib.data() + sizeof header, table.data(), table.size() * sizeof(RGBQUAD));
    return dib;
}

/// One of two, so that 1 bit is enough.
std::uint32_t Colour(int x, int y) { return (x * 3 + y * 5) % 7 < 3 ? 0x00FF01 : 0xFF0001; }

std::uint32_t Mask(int x, int y) { return (x + 2 * y) % 3 == 0 ? 0xFFFFFF : 0; }

class Faces : public CommandBars {
protected:
    Faces() { BarWindow::AddControl(bar_, 1, L"Face").Put(L"Style", FromLong(3)); }

    /// The number that pasting these fails with, or 0; an empty block is not there.
    long Paste(const Bytes& face, const Bytes& mask, const Bytes& picture = {}) const {
        EXPECT_TRUE(OpenClipboard(window_.top) && EmptyClipboard());
        Put(RegisterClipboardFormatA("Toolbar Button Face"), face);
        Put(RegisterClipboardFormatA("Toolbar Button Mask"), mask);
        Put(CF_DIB, picture);
        CloseClipboard();
        return RaisedBy([&] { BarWindow::Control(bar_, 1).Call(L"PasteFace"); }).number;
    }

    void ExpectFace(int width, int height, bool masked) const {
        const ButtonFace& face = window_.host->Button(L"Face").face;
        ASSERT_EQ(face.width, width);
        ASSERT_EQ(face.height, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(face.At(x, y), Colour(x, y) | (masked && Mask(x, y) != 0 ? 0 : 0xFF000000)) << x << "," << y;
    }

private:
    static void Put(UINT format, const Bytes& bytes) {
        if (bytes.empty()) return;
        const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
        std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
        GlobalUnlock(block);
        SetClipboardData(format, block);
    }
};

TEST_F(Faces, AreReadPixelByPixelUnderTheirMask) {
    for (const auto& [width, bits] : {std::pair(1, 24), {17, 1}, {15, 8}, {33, 32}}) {
        SCOPED_TRACE(testing::Message() << bits << " bits, " << width << " wide");
        ASSERT_EQ(Paste(Dib(width, 9, bits, Colour), Dib(width, 9, 1, Mask)), 0);
        ExpectFace(width, 9, true);
    }
    ASSERT_EQ(Paste({}, Dib(15, 9, 1, Mask), Dib(15, 9, 8, Colour)), 0);
    ExpectFace(15, 9, false);  // a mask alone belongs to nothing
}

TEST_F(Faces, AnythingElseIsRefusedAndChangesNothing) {
    const Bytes good = Dib(16, 16, 24, Colour);
    const Bytes mask = Dib(16, 16, 1, Mask);
    ASSERT_EQ(Paste(good, mask), 0);
    const auto broken = [&](size_t offset, std::uint32_t value) {
        Bytes block = good;
        std::memcpy(block.data() + offset, &value, sizeof value);
        return block;
    };
    const std::pair<Bytes, Bytes> rows[] = {
        {Bytes(39), {}},
        {Bytes(good.begin(), good.end() - 1), {}},
        {broken(0, 0xFFFFFFFF), {}},
        {broken(8, 0x80000000), {}},
        {broken(16, BI_RLE8), {}},
        {broken(32, 257), {}},
        {Dib(65, 1, 24, Colour), {}},
        {good, Dib(15, 16, 1, Mask)},
        {good, good},
    };
    for (const auto& row : rows) EXPECT_EQ(Paste(row.first, row.second), com::kInvalidPicture) << "row " << &row - rows;
    EXPECT_EQ(Paste({}, {}), E_FAIL);
    ExpectFace(16, 16, true);
}

TEST_F(Faces, ShowOnTheBarWhereTheyAreNotMasked) {
    ASSERT_EQ(Paste(Dib(16, 16, 24, Colour), Dib(16, 16, 1, Mask)), 0);
    PumpMessages();
    const HWND strip = window_.host->Window();
    RECT place = *window_.host->PlaceOf(L"Face");
    const HWND toolBar = ChildWindowFromPoint(strip, {place.left, place.top});
    MapWindowPoints(strip, toolBar, reinterpret_cast<POINT*>(&place), 2);
    UpdateWindow(toolBar);
    const HDC dc = GetDC(toolBar);
    std::map<COLORREF, int> shown;
    for (int y = place.top; y < place.bottom; ++y)
        for (int x = place.left; x < place.right; ++x) ++shown[GetPixel(dc, x, y)];
    ReleaseDC(toolBar, dc);
    std::map<COLORREF, int> expected;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            if (Mask(x, y) == 0) ++expected[Colour(x, y) == 0xFF0001 ? RGB(0xFF, 0, 1) : RGB(0, 0xFF, 1)];
    for (const auto& [colour, count] : expected) EXPECT_EQ(shown[colour], count);
}

}  // namespace
}  // namespace beacon::standin::test
