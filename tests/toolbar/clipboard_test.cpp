#include "toolbar/clipboard.h"

#include <gtest/gtest.h>

#include "clipboard_reader.h"
#include "test_bitmaps.h"
#include "toolbar/button_faces.h"

namespace beacon {
namespace {

using test::OnClipboard;
using test::PutOnClipboard;

std::vector<std::uint8_t> Dib(int depth) {
    const test::Pixels pixels{3, 2, {0x112233, 0xFF00FF, 0xABCDEF, 0x000000, 0xFFFFFF, 0x123456}};
    std::vector<std::uint8_t> file = test::BitmapFile(pixels, depth);
    file.erase(file.begin(), file.begin() + sizeof(BITMAPFILEHEADER));
    return file;
}

void BuildAFace() {
    const test::TemporaryFile file(test::BitmapFile({1, 1, {0x00FF00}}, 24));
    CopyBitmapAsButtonFace(LoadPicture(file.Path()).Get(), 0);
}

class TheClipboardKeeper : public testing::Test {
protected:
    void SetUp() override { test::EmptyTheClipboard(); }
};

TEST_F(TheClipboardKeeper, BringsABitmapBackByteForByte) {
    for (const int depth : {8, 24, 32}) {
        test::EmptyTheClipboard();
        PutOnClipboard(CF_DIB, Dib(depth));
        PutOnClipboard(CF_UNICODETEXT, {'h', 0, 'i', 0, 0, 0});
        ClipboardKeeper keeper;
        BuildAFace();
        ASSERT_NE(OnClipboard(CF_DIB), Dib(depth));
        keeper.Restore();
        EXPECT_EQ(OnClipboard(CF_DIB), Dib(depth));
        EXPECT_TRUE(OnClipboard("Toolbar Button Face").empty());
        EXPECT_TRUE(OnClipboard(CF_UNICODETEXT).empty()) << "only a picture is kept";
    }
}

TEST_F(TheClipboardKeeper, BringsABitmapHandleBack) {
    const std::vector<std::uint32_t> bits = {0x00112233, 0x00FF00FF};
    ASSERT_TRUE(OpenClipboard(nullptr));
    SetClipboardData(CF_BITMAP, CreateBitmap(2, 1, 1, 32, bits.data()));
    CloseClipboard();
    ClipboardKeeper keeper;
    BuildAFace();
    keeper.Restore();
    ASSERT_TRUE(OpenClipboard(nullptr));
    const auto bitmap = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP));
    BITMAP record{};
    EXPECT_NE(GetObjectW(bitmap, sizeof record, &record), 0);
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ earlier = SelectObject(dc, bitmap);
    EXPECT_EQ(record.bmWidth, 2);
    EXPECT_EQ(GetPixel(dc, 0, 0), RGB(0x11, 0x22, 0x33));
    EXPECT_EQ(GetPixel(dc, 1, 0), RGB(0xFF, 0x00, 0xFF));
    SelectObject(dc, earlier);
    DeleteDC(dc);
    CloseClipboard();
}

TEST_F(TheClipboardKeeper, BringsAMetafileBack) {
    const RECT frame{0, 0, 1234, 567};
    const HDC dc = CreateEnhMetaFileW(nullptr, nullptr, &frame, nullptr);
    Rectangle(dc, 1, 2, 3, 4);
    ASSERT_TRUE(OpenClipboard(nullptr));
    SetClipboardData(CF_ENHMETAFILE, CloseEnhMetaFile(dc));
    CloseClipboard();
    ClipboardKeeper keeper;
    BuildAFace();
    keeper.Restore();
    ASSERT_TRUE(OpenClipboard(nullptr));
    ENHMETAHEADER header{};
    EXPECT_NE(GetEnhMetaFileHeader(static_cast<HENHMETAFILE>(GetClipboardData(CF_ENHMETAFILE)), sizeof header, &header),
              0u);
    EXPECT_EQ(header.rclFrame.right, 1234);
    CloseClipboard();
}

TEST_F(TheClipboardKeeper, LeavesNoFaceWhereThereWasNoPicture) {
    PutOnClipboard(CF_UNICODETEXT, {'h', 0, 'i', 0, 0, 0});
    {
        ClipboardKeeper untouched;
        untouched.Restore();
        EXPECT_FALSE(OnClipboard(CF_UNICODETEXT).empty()) << "nothing was built, so nothing needs to go";
    }
    ClipboardKeeper keeper;
    BuildAFace();
    keeper.Restore();
    EXPECT_EQ(CountClipboardFormats(), 0);
}

}  // namespace
}  // namespace beacon
