#include "toolbar/button_faces.h"

#include <gtest/gtest.h>

#include <cstring>

#include "clipboard_reader.h"
#include "gdi_objects.h"
#include "test_bitmaps.h"
#include "tests/fakes/raised_by.h"

namespace beacon {
namespace {

using test::BitmapFile;
using test::FromDib24;
using test::FromMask;
using test::kMagenta;
using test::OnClipboard;
using test::Pixels;

constexpr OLE_COLOR kOleMagenta = 0x00FF00FF;

Pixels Painted(int width, int height, std::uint32_t (*colour)(int x, int y)) {
    Pixels pixels{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) pixels.rgb.push_back(colour(x, y));
    return pixels;
}

std::uint32_t AllMask(int, int) { return kMagenta; }

std::uint32_t NoMask(int x, int y) { return static_cast<std::uint32_t>(0x102030 + x * 0x10 + y * 0x1000); }

/// Few enough colours for 16, no symmetry; one differs from the mask colour by a single step.
std::uint32_t Mixed(int x, int y) {
    constexpr std::uint32_t kColours[] = {kMagenta, 0xFF01FF, 0x000000, 0xFFFFFF, 0x1234AB, kMagenta, 0x800000};
    return kColours[(x * 3 + y * 5 + x * y) % 7];
}

void PutOnClipboard(const std::vector<std::uint8_t>& file, OLE_COLOR maskColor = kOleMagenta) {
    const test::TemporaryFile temporary(file);
    CopyBitmapAsButtonFace(LoadPicture(temporary.Path()).Get(), maskColor);
}

void ExpectFaceAndMask(const Pixels& source, std::uint32_t maskColour) {
    const std::vector<std::uint8_t> dib = OnClipboard(CF_DIB);
    const std::vector<std::uint8_t> face = OnClipboard("Toolbar Button Face");
    EXPECT_EQ(face, dib);
    EXPECT_EQ(FromDib24(face).rgb, source.rgb);
    Pixels transparent = source;
    for (std::uint32_t& pixel : transparent.rgb) pixel = pixel == maskColour ? 1 : 0;
    EXPECT_EQ(FromMask(OnClipboard("Toolbar Button Mask")).rgb, transparent.rgb);
}

TEST(ButtonFaces, ArriveOnTheClipboardPixelByPixel) {
    const Pixels sources[] = {Painted(16, 16, Mixed), Painted(16, 16, AllMask), Painted(16, 16, NoMask),
                              Painted(1, 1, AllMask), Painted(1, 1, NoMask),    Painted(17, 5, Mixed),
                              Painted(33, 3, Mixed),  Painted(7, 20, Mixed)};
    for (const Pixels& source : sources) {
        SCOPED_TRACE(testing::Message() << source.width << " by " << source.height);
        PutOnClipboard(BitmapFile(source, source.width % 2 == 0 ? 24 : 8));
        ExpectFaceAndMask(source, kMagenta);
    }
}

TEST(ButtonFaces, MaskColourMayBeASystemColour) {
    const COLORREF buttonFace = GetSysColor(COLOR_BTNFACE);
    Pixels source = Painted(4, 4, NoMask);
    source.rgb[5] =
        static_cast<std::uint32_t>(GetRValue(buttonFace) << 16 | GetGValue(buttonFace) << 8 | GetBValue(buttonFace));
    PutOnClipboard(BitmapFile(source, 24), 0x80000000u | COLOR_BTNFACE);
    ExpectFaceAndMask(source, source.rgb[5]);
}

TEST(ButtonFaces, MaskBlockIsHeaderTwoColoursAndRowsFromTheBottom) {
    Pixels source = Painted(9, 2, NoMask);
    source.rgb[0] = kMagenta;   // top left
    source.rgb[8] = kMagenta;   // top right, in the row's second byte
    source.rgb[10] = kMagenta;  // second of the bottom row
    PutOnClipboard(BitmapFile(source, 24));
    std::vector<std::uint8_t> block = OnClipboard("Toolbar Button Mask");
    ASSERT_GE(block.size(), 48u + 8u + 2u);
    BITMAPINFOHEADER header{};
    std::memcpy(&header, block.data(), sizeof header);
    EXPECT_EQ(header.biSize, 40u);
    EXPECT_EQ(header.biWidth, 9);
    EXPECT_EQ(header.biHeight, 2);
    EXPECT_EQ(header.biBitCount, 1);
    EXPECT_EQ(header.biSizeImage, 8u);
    const std::vector<std::uint8_t> rest(block.begin() + 40, block.begin() + 56);
    const std::vector<std::uint8_t> expected = {0,    0, 0, 0, 0xFF, 0xFF, 0xFF, 0,  // black, white
                                                0x40, 0, 0, 0, 0x80, 0x80, 0,    0};
    EXPECT_EQ(rest, expected);
}

std::vector<std::uint8_t> MetafileFile() {
    const HDC dc = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    Rectangle(dc, 0, 0, 10, 10);
    const HENHMETAFILE metafile = CloseEnhMetaFile(dc);
    std::vector<std::uint8_t> bytes(GetEnhMetaFileBits(metafile, 0, nullptr));
    GetEnhMetaFileBits(metafile, static_cast<UINT>(bytes.size()), bytes.data());
    DeleteEnhMetaFile(metafile);
    return bytes;
}

TEST(ButtonFaces, WhatIsNoBitmapFailsAndLeavesTheClipboardAlone) {
    EXPECT_EQ(LoadPicture(L"C:\\no such folder\\button.bmp"), nullptr);
    EXPECT_EQ(LoadPicture(L""), nullptr);
    EXPECT_EQ(LoadPicture(L"C:\\"), nullptr);
    const test::TemporaryFile text({'n', 'o', ' ', 'p', 'i', 'c', 't', 'u', 'r', 'e'});
    EXPECT_EQ(LoadPicture(text.Path()), nullptr);
    const test::TemporaryFile metafile(MetafileFile());
    const auto drawing = LoadPicture(metafile.Path());
    ASSERT_NE(drawing, nullptr);

    PutOnClipboard(BitmapFile(Painted(3, 3, Mixed), 24));
    const DWORD sequence = GetClipboardSequenceNumber();
    for (IPicture* picture : {static_cast<IPicture*>(nullptr), drawing.Get()}) {
        const com::Error error = test::RaisedBy([&] { CopyBitmapAsButtonFace(picture, kOleMagenta); });
        EXPECT_EQ(error.number, com::kInvalidPicture);
    }
    EXPECT_EQ(GetClipboardSequenceNumber(), sequence);
}

TEST(ButtonFaces, ABitmapTooLargeForAMaskGetsAFaceAlone) {
    const Pixels wide = Painted(30001, 1, NoMask);
    PutOnClipboard(BitmapFile(wide, 24));
    EXPECT_EQ(FromDib24(OnClipboard(CF_DIB)).width, 30001);
    EXPECT_TRUE(OnClipboard("Toolbar Button Mask").empty());
    PutOnClipboard(BitmapFile(Painted(30000, 1, NoMask), 24));
    EXPECT_EQ(FromMask(OnClipboard("Toolbar Button Mask")).width, 30000);
}

TEST(ButtonFaces, AClipboardThatAnotherHoldsFailsInsteadOfWaiting) {
    const test::TemporaryFile file(BitmapFile(Painted(16, 16, Mixed), 24));
    const auto picture = LoadPicture(file.Path());
    const HWND other = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_TRUE(OpenClipboard(other));
    const ULONGLONG start = GetTickCount64();
    EXPECT_THROW(CopyBitmapAsButtonFace(picture.Get(), kOleMagenta), com::Error);
    EXPECT_LT(GetTickCount64() - start, 1000u);
    CloseClipboard();
    DestroyWindow(other);
    CopyBitmapAsButtonFace(picture.Get(), kOleMagenta);
}

TEST(ButtonFaces, AThousandBuildsLeaveNothingBehind) {
    const test::TemporaryFile file(BitmapFile(Painted(16, 16, Mixed), 24));
    const auto build = [&] { CopyBitmapAsButtonFace(LoadPicture(file.Path()).Get(), kOleMagenta); };
    build();
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    const long before = test::GdiObjects();
    ASSERT_GT(before, 0);
    const HBITMAP witness = CreateBitmap(1, 1, 1, 1, nullptr);
    ASSERT_EQ(test::GdiObjects(), before + 1) << "the count does not see what it should";
    for (int i = 0; i < 1000; ++i) build();
    EXPECT_EQ(test::GdiObjects(), before + 1);
    DeleteObject(witness);
    DWORD handlesAfter = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handlesAfter);
    EXPECT_LE(handlesAfter, handles + 5);
    EXPECT_EQ(GetOpenClipboardWindow(), nullptr);
    EXPECT_FALSE(OnClipboard("Toolbar Button Face").empty());
}

}  // namespace
}  // namespace beacon
