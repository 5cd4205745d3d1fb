#include "toolbar/button_faces.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "com/object.h"
#include "com/text.h"
#include "common/threads.h"
#include "outlook/bars/button_face.h"
#include "outlook/observation/resources.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/clipboard.h"

namespace beacon {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kMagenta = 0xFF00FF;
const UINT kFace = RegisterClipboardFormatW(L"Toolbar Button Face");
const UINT kMask = RegisterClipboardFormatW(L"Toolbar Button Mask");

/// Its pixels are 0xRRGGBB.
standin::ButtonFace Painted(int width, int height, std::uint32_t (*colour)(int x, int y)) {
    standin::ButtonFace picture{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) picture.pixels.push_back(colour(x, y));
    return picture;
}

std::uint32_t AllMask(int, int) { return kMagenta; }

std::uint32_t NoMask(int x, int y) { return static_cast<std::uint32_t>(0x102030 + x * 0x10 + y * 0x1000); }

/// No symmetry; one colour differs from the mask colour by a single step.
std::uint32_t Mixed(int x, int y) {
    constexpr std::uint32_t kColours[] = {kMagenta, 0xFF01FF, 0x000000, 0xFFFFFF, 0x1234AB, kMagenta, 0x800000};
    return kColours[(x * 3 + y * 5 + x * y) % 7];
}

com::ComPtr<IPicture> PictureOf(const standin::ButtonFace& pixels) {
    PICTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = CreateBitmap(pixels.width, pixels.height, 1, 32, pixels.pixels.data());
    com::ComPtr<IPicture> picture;
    com::Check(
        OleCreatePictureIndirect(&description, IID_IPicture, TRUE, reinterpret_cast<void**>(picture.GetAddressOf())));
    return picture;
}

/// All bytes of a format on the clipboard; none when it is not there.
Bytes OnClipboard(UINT format) {
    const ClipboardSession clipboard(nullptr);
    EXPECT_TRUE(clipboard.IsOpen());
    const HANDLE block = GetClipboardData(format);
    return block == nullptr ? Bytes() : BytesOf(block);
}

const BITMAPINFOHEADER& HeaderOf(const Bytes& dib) { return *reinterpret_cast<const BITMAPINFOHEADER*>(dib.data()); }

void ExpectFaceAndMask(standin::ButtonFace source, std::uint32_t maskColour = kMagenta) {
    const Bytes face = OnClipboard(kFace);
    ASSERT_EQ(face, OnClipboard(CF_DIB));
    EXPECT_EQ(HeaderOf(face).biBitCount, 24);
    for (std::uint32_t& pixel : source.pixels) pixel |= pixel == maskColour ? 0 : 0xFF000000;
    EXPECT_EQ(standin::FaceFromClipboard(nullptr), source);
}

void PutOnClipboard(const standin::ButtonFace& pixels, OLE_COLOR maskColor = kMagenta) {
    CopyBitmapAsButtonFace(PictureOf(pixels).Get(), maskColor);
}

TEST(ButtonFaces, ArriveOnTheClipboardPixelByPixel) {
    for (const standin::ButtonFace& source :
         {Painted(16, 16, Mixed), Painted(16, 16, AllMask), Painted(16, 16, NoMask), Painted(1, 1, AllMask),
          Painted(1, 1, NoMask), Painted(17, 5, Mixed), Painted(33, 3, Mixed), Painted(7, 20, Mixed)}) {
        SCOPED_TRACE(testing::Message() << source.width << " by " << source.height);
        PutOnClipboard(source);
        ExpectFaceAndMask(source);
    }
    standin::ButtonFace source = Painted(4, 4, NoMask);
    const COLORREF system = GetSysColor(COLOR_BTNFACE);
    source.pixels[5] = static_cast<std::uint32_t>(GetRValue(system) << 16 | GetGValue(system) << 8 | GetBValue(system));
    PutOnClipboard(source, 0x80000000u | COLOR_BTNFACE);
    ExpectFaceAndMask(source, source.pixels[5]);
}

TEST(ButtonFaces, WhatIsNoBitmapFailsAndLeavesTheClipboardAlone) {
    for (const wchar_t* path :
         {L"C:\\no such folder\\button.bmp", L"", L"C:\\", TOOLBAR_BITMAPS L"\\button_bitmaps.rc"})
        EXPECT_EQ(LoadPicture(path), nullptr) << com::ToAnsi(path);
    PICTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_ICON;
    description.icon.hicon = LoadIconW(nullptr, IDI_APPLICATION);
    com::ComPtr<IPicture> icon;
    OleCreatePictureIndirect(&description, IID_IPicture, FALSE, reinterpret_cast<void**>(icon.GetAddressOf()));
    ASSERT_NE(icon, nullptr);

    PutOnClipboard(Painted(3, 3, Mixed));
    const DWORD sequence = GetClipboardSequenceNumber();
    for (IPicture* picture : {static_cast<IPicture*>(nullptr), icon.Get()})
        EXPECT_EQ(test::RaisedBy([&] { CopyBitmapAsButtonFace(picture, kMagenta); }).number, com::kInvalidPicture);
    EXPECT_EQ(GetClipboardSequenceNumber(), sequence);
}

TEST(ButtonFaces, AFileThatIsShorterThanItsHeaderSaysNeverReachesTheLoader) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / L"button-face-test.bmp";
    std::filesystem::remove(path);
    std::filesystem::copy_file(TOOLBAR_BITMAPS L"\\button0.bmp", path);
    EXPECT_NE(LoadPicture(path.wstring()), nullptr);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
    EXPECT_EQ(LoadPicture(path.wstring()), nullptr);
    std::filesystem::remove(path);
}

TEST(ButtonFaces, ABitmapTooLargeForAMaskGetsAFaceAlone) {
    PutOnClipboard(Painted(30001, 1, NoMask));
    EXPECT_EQ(HeaderOf(OnClipboard(CF_DIB)).biWidth, 30001);
    EXPECT_TRUE(OnClipboard(kMask).empty());
    PutOnClipboard(Painted(30000, 1, NoMask));
    EXPECT_EQ(HeaderOf(OnClipboard(kMask)).biWidth, 30000);
}

TEST(ButtonFaces, AClipboardThatAnotherHoldsFailsInsteadOfWaiting) {
    const auto picture = PictureOf(Painted(16, 16, Mixed));
    const ClipboardOwner other;
    ASSERT_TRUE(OpenClipboard(other.Window()));
    const ULONGLONG start = GetTickCount64();
    EXPECT_THROW(CopyBitmapAsButtonFace(picture.Get(), kMagenta), com::Error);
    EXPECT_LT(GetTickCount64() - start, 1000u);
    CloseClipboard();
    CopyBitmapAsButtonFace(picture.Get(), kMagenta);
}

TEST(ButtonFaces, AThousandBuildsLeaveNothingBehind) {
    const auto build = [] { CopyBitmapAsButtonFace(LoadPicture(TOOLBAR_BITMAPS L"\\button0.bmp").Get(), kMagenta); };
    build();
    const auto before = standin::Resources::Now();
    for (int i = 0; i < 1000; ++i) build();
    const auto after = standin::Resources::Now();
    EXPECT_LE(after.gdiObjects, before.gdiObjects + 5);
    EXPECT_LE(after.handles, before.handles + 5);
    EXPECT_EQ(GetOpenClipboardWindow(), nullptr);
    EXPECT_FALSE(OnClipboard(kFace).empty());
}

class TheClipboardKeeper : public testing::Test {
protected:
    void SetUp() override { Put(0, nullptr); }

    /// In place of everything else. The clipboard's from now on.
    static void Put(UINT format, HANDLE data) {
        const ClipboardSession clipboard(nullptr);
        ASSERT_TRUE(clipboard.IsOpen() && EmptyClipboard());
        if (data != nullptr) ASSERT_EQ(SetClipboardData(format, data), data);
    }

    static void BuildAFace() {
        ClipboardKeeper keeper;
        PutOnClipboard(Painted(1, 1, NoMask));
        ASSERT_FALSE(OnClipboard(kFace).empty());
        keeper.Restore();
        EXPECT_TRUE(OnClipboard(kFace).empty());
    }
};

TEST_F(TheClipboardKeeper, BringsABitmapBackByteForByte) {
    for (const UINT format : {UINT{CF_DIB}, UINT{CF_DIBV5}}) {
        Bytes dib(sizeof(BITMAPV5HEADER) + 8, 0x5A);
        const BITMAPINFOHEADER header{format == CF_DIB ? 40u : 124u, 2, 1, 1, 32, BI_RGB, 8, 0, 0, 0, 0};
        std::copy_n(reinterpret_cast<const std::uint8_t*>(&header), sizeof header, dib.begin());
        Put(format, NewGlobalBlock(dib).release());
        {
            ClipboardSession clipboard(nullptr);
            clipboard.Set(CF_UNICODETEXT, NewGlobalBlock(Bytes{'h', 0, 0, 0}));
        }
        BuildAFace();
        EXPECT_EQ(OnClipboard(format), dib);
        EXPECT_TRUE(OnClipboard(CF_UNICODETEXT).empty()) << "only a picture is kept";
    }
}

TEST_F(TheClipboardKeeper, BringsABitmapHandleBack) {
    const standin::ButtonFace source = Painted(2, 1, Mixed);
    Put(CF_BITMAP, CreateBitmap(source.width, source.height, 1, 32, source.pixels.data()));
    BuildAFace();
    const ClipboardSession clipboard(nullptr);
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ earlier = SelectObject(dc, GetClipboardData(CF_BITMAP));
    EXPECT_EQ(GetPixel(dc, 0, 0), RGB(0xFF, 0x00, 0xFF));
    EXPECT_EQ(GetPixel(dc, 1, 0), RGB(0xFF, 0xFF, 0xFF));
    EXPECT_EQ(GetPixel(dc, 2, 0), CLR_INVALID);
    SelectObject(dc, earlier);
    DeleteDC(dc);
}

TEST_F(TheClipboardKeeper, BringsAMetafileBack) {
    const RECT frame{0, 0, 1234, 567};
    Put(CF_ENHMETAFILE, CloseEnhMetaFile(CreateEnhMetaFileW(nullptr, nullptr, &frame, nullptr)));
    BuildAFace();
    const ClipboardSession clipboard(nullptr);
    ENHMETAHEADER header{};
    const auto metafile = static_cast<HENHMETAFILE>(GetClipboardData(CF_ENHMETAFILE));
    EXPECT_NE(GetEnhMetaFileHeader(metafile, sizeof header, &header), 0u);
    EXPECT_EQ(header.rclFrame.right, 1234);
}

TEST_F(TheClipboardKeeper, DoesNotWaitForAProgramThatHangs) {
    const standin::UniqueHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const standin::UniqueHandle ready(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto thread = standin::StartThread([stop = stop.get(), ready = ready.get()] {
        const ClipboardOwner owner;
        if (OpenClipboard(owner.Window()) && EmptyClipboard())
            for (const UINT format : {CF_DIB, CF_DIBV5, CF_ENHMETAFILE}) SetClipboardData(format, nullptr);
        CloseClipboard();
        SetEvent(ready);
        WaitForSingleObject(stop, 20000);  // while the picture is asked for
    });
    ASSERT_EQ(WaitForSingleObject(ready.get(), 5000), WAIT_OBJECT_0);
    const DWORD before = GetClipboardSequenceNumber();
    const ULONGLONG start = GetTickCount64();
    ClipboardKeeper keeper;
    EXPECT_LT(GetTickCount64() - start, 2000u);
    EXPECT_FALSE(keeper.IsReady());
    keeper.Restore();
    EXPECT_EQ(GetClipboardSequenceNumber(), before) << "its picture is still there";
    SetEvent(stop.get());
    WaitForSingleObject(thread.get(), 5000);
}

TEST_F(TheClipboardKeeper, LeavesAloneWhatTheUserCopiesInTheMeantime) {
    ClipboardKeeper keeper;
    PutOnClipboard(Painted(1, 1, NoMask));
    const ClipboardOwner user;
    {
        ClipboardSession clipboard(user.Window());
        EXPECT_TRUE(EmptyClipboard() && clipboard.Set(CF_UNICODETEXT, NewGlobalBlock(Bytes{'h', 0, 0, 0})));
    }
    keeper.Restore();
    EXPECT_FALSE(OnClipboard(CF_UNICODETEXT).empty());
}

TEST_F(TheClipboardKeeper, LeavesNoFaceWhereThereWasNoPicture) {
    Put(CF_UNICODETEXT, NewGlobalBlock(Bytes{'h', 0, 0, 0}).release());
    ClipboardKeeper untouched;
    untouched.Restore();
    EXPECT_FALSE(OnClipboard(CF_UNICODETEXT).empty()) << "nothing was built, so nothing needs to go";
    BuildAFace();
    EXPECT_EQ(CountClipboardFormats(), 0);
}

}  // namespace
}  // namespace beacon
