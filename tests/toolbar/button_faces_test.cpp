#include "toolbar/button_faces.h"

#include <gmock/gmock-matchers.h>
#include <gtest/gtest.h>
#include <olectl.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "com/object.h"
#include "common/threads.h"
#include "outlook/bars/button_face.h"
#include "tests/fakes/pump.h"
#include "tests/fakes/raised_by.h"
#include "toolbar/clipboard.h"
#include "toolbar/toolbar.h"

namespace beacon {
namespace {

using standin::ButtonFace;
using test::Duration;
using Bytes = std::vector<std::uint8_t>;
using Path = std::filesystem::path;

constexpr std::uint32_t kMagenta = 0xFF00FF;
const UINT kFace = RegisterClipboardFormatW(L"Toolbar Button Face");
const UINT kMask = RegisterClipboardFormatW(L"Toolbar Button Mask");
const Bytes kText{'h', 0, 0, 0};
const Path kBitmap = Path(TOOLBAR_BITMAPS L"/button0.bmp").make_preferred();

/// A face whose pixels are 0xRRGGBB.
ButtonFace Painted(int width, int height, std::uint32_t (*colour)(int x, int y)) {
    ButtonFace face{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) face.pixels.push_back(colour(x, y));
    return face;
}

std::uint32_t AllMask(int, int) { return kMagenta; }

std::uint32_t NoMask(int x, int y) { return static_cast<std::uint32_t>(0x102030 + x * 0x10 + y * 0x1000); }

/// Not symmetric; one colour differs from the mask colour by one.
std::uint32_t Mixed(int x, int y) {
    constexpr std::uint32_t kColours[] = {kMagenta, 0xFF01FF, 0x000000, 0xFFFFFF, 0x1234AB, kMagenta, 0x800000};
    return kColours[(x * 3 + y * 5 + x * y) % 7];
}

HBITMAP BitmapOf(const ButtonFace& face) { return CreateBitmap(face.width, face.height, 1, 32, face.pixels.data()); }

com::ComPtr<IPicture> PictureOf(HANDLE handle, UINT type = PICTYPE_BITMAP) {
    PICTDESC description{sizeof description, type, {}};
    description.bmp.hbitmap = static_cast<HBITMAP>(handle);
    com::ComPtr<IPicture> picture;
    com::Check(
        OleCreatePictureIndirect(&description, IID_IPicture, TRUE, reinterpret_cast<void**>(picture.GetAddressOf())));
    return picture;
}

void PutOnClipboard(const ButtonFace& face, OLE_COLOR maskColor = kMagenta) {
    com::ComPtr<IDispatch> picture;
    com::Check(PictureOf(BitmapOf(face)).As(&picture));
    com::Check(com::MakeObject<CToolbar>()->CopyBitmapAsButtonFace(picture.Get(), maskColor));
}

/// All bytes of a format on the clipboard; empty if the format is missing.
Bytes OnClipboard(UINT format) {
    const ClipboardSession clipboard(nullptr);
    EXPECT_TRUE(clipboard.IsOpen());
    const HANDLE block = GetClipboardData(format);
    if (block == nullptr) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(GlobalLock(block));
    Bytes copy(bytes, bytes + GlobalSize(block));
    GlobalUnlock(block);
    return copy;
}

const BITMAPINFOHEADER& HeaderOf(const Bytes& dib) { return *reinterpret_cast<const BITMAPINFOHEADER*>(dib.data()); }

/// Compares the face that Office would paste: transparent where the source has the mask colour, elsewhere opaque.
void ExpectFaceOf(ButtonFace source, std::uint32_t maskColour = kMagenta) {
    for (std::uint32_t& pixel : source.pixels) pixel |= pixel == maskColour ? 0 : 0xFF000000;
    const ButtonFace pasted = standin::FaceFromClipboard(nullptr);
    EXPECT_EQ(std::pair(pasted.width, pasted.height), std::pair(source.width, source.height));
    EXPECT_THAT(pasted.pixels, testing::ElementsAreArray(source.pixels));
}

TEST(ButtonFaces, AreCopiedPixelByPixel) {
    for (const ButtonFace& source :
         {Painted(16, 16, Mixed), Painted(16, 16, AllMask), Painted(16, 16, NoMask), Painted(1, 1, AllMask),
          Painted(1, 1, NoMask), Painted(17, 5, Mixed), Painted(33, 3, Mixed), Painted(7, 20, Mixed)}) {
        SCOPED_TRACE(testing::Message() << source.width << " by " << source.height);
        PutOnClipboard(source);
        ExpectFaceOf(source);
        EXPECT_EQ(OnClipboard(kFace), OnClipboard(CF_DIB));
        EXPECT_EQ(HeaderOf(OnClipboard(kFace)).biBitCount, 24);
    }
    ButtonFace source = Painted(4, 4, NoMask);
    const COLORREF system = GetSysColor(COLOR_BTNFACE);
    source.pixels[5] = static_cast<std::uint32_t>(GetRValue(system) << 16 | GetGValue(system) << 8 | GetBValue(system));
    PutOnClipboard(source, 0x80000000u | COLOR_BTNFACE);
    ExpectFaceOf(source, source.pixels[5]);
}

TEST(ButtonFaces, AreLoadedFromCompleteBitmapsOnLocalDrives) {
    const Path cut = std::filesystem::temp_directory_path() / L"button-face-test.bmp";
    std::filesystem::copy_file(kBitmap, cut, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) - 1);
    const Path withoutLetter = L"\\\\?\\" + kBitmap.wstring();
    ASSERT_TRUE(std::filesystem::exists(withoutLetter));
    EXPECT_NE(LoadPicture(kBitmap.wstring()), nullptr);
    for (const Path& path : {Path(L"C:\\no such folder\\button.bmp"), Path(), Path(L"C:\\"), cut, withoutLetter,
                             Path(TOOLBAR_BITMAPS L"\\button_bitmaps.rc")})
        EXPECT_EQ(LoadPicture(path.wstring()), nullptr) << path;
    std::filesystem::remove(cut);
}

TEST(ButtonFaces, AreMadeOfBitmapsOnlyAndElseLeaveTheClipboardAlone) {
    PutOnClipboard(Painted(3, 3, Mixed));
    const DWORD sequence = GetClipboardSequenceNumber();
    const auto icon = PictureOf(LoadIconW(nullptr, IDI_APPLICATION), PICTYPE_ICON);
    const auto huge = PictureOf(CreateBitmap(8192, 4096, 1, 1, nullptr));
    for (IPicture* picture : {static_cast<IPicture*>(nullptr), icon.Get(), huge.Get()})
        EXPECT_EQ(test::RaisedBy([&] { CopyBitmapAsButtonFace(picture, kMagenta); }).number, com::kInvalidPicture);
    EXPECT_EQ(GetClipboardSequenceNumber(), sequence);
}

TEST(ButtonFaces, HaveNoMaskIfTheBitmapIsTooLargeForOne) {
    PutOnClipboard(Painted(30001, 1, NoMask));
    EXPECT_EQ(HeaderOf(OnClipboard(CF_DIB)).biWidth, 30001);
    EXPECT_TRUE(OnClipboard(kMask).empty());
    PutOnClipboard(Painted(30000, 1, NoMask));
    EXPECT_EQ(HeaderOf(OnClipboard(kMask)).biWidth, 30000);
}

/// Another program: a thread that has opened the clipboard with a window of its own. It runs `last` after so many ms,
/// closes the clipboard, and answers no message until this object ends, or for five seconds.
class OtherProgram {
public:
    explicit OtherProgram(
        DWORD time, const std::function<void()>& last = [] {})
        : thread_(standin::StartThread([=, opened = opened_.get(), stop = stop_.get()] {
              const ClipboardOwner window = MakeClipboardOwner();
              ClipboardSession clipboard(window.get());
              EXPECT_TRUE(clipboard.IsOpen());
              SetEvent(opened);
              WaitForSingleObject(stop, time);
              last();
              clipboard.Close();
              WaitForSingleObject(stop, 5000);
          })) {
        EXPECT_EQ(WaitForSingleObject(opened_.get(), 5000), WAIT_OBJECT_0);
    }

    ~OtherProgram() {
        SetEvent(stop_.get());
        WaitForSingleObject(thread_.get(), 20000);
    }

private:
    standin::UniqueHandle opened_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    standin::UniqueHandle stop_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    standin::UniqueHandle thread_;
};

TEST(ButtonFaces, WaitBrieflyForABusyClipboard) {
    const ButtonFace face = Painted(16, 16, Mixed);
    {
        const OtherProgram busy(15);
        PutOnClipboard(face);
    }
    const OtherProgram busy(INFINITE);
    const ULONGLONG waited = Duration([&] { EXPECT_THROW(PutOnClipboard(face), com::Error); });
    EXPECT_LT(waited, 1000u);
}

class ClipboardBackups : public testing::Test {
protected:
    void SetUp() override { Copy(0, nullptr); }

    /// Replaces the content, as a program without a window does. The clipboard owns the data from now on.
    static void Copy(UINT format, HANDLE data) {
        const ClipboardSession clipboard(nullptr);
        ASSERT_TRUE(clipboard.IsOpen() && EmptyClipboard());
        if (data != nullptr) ASSERT_EQ(SetClipboardData(format, data), data);
    }

    static void CopyText() {
        if (EmptyClipboard()) SetClipboardData(CF_UNICODETEXT, NewGlobalBlock(kText).release());
    }

    static bool HasText() { return !OnClipboard(CF_UNICODETEXT).empty(); }

    /// Promises pictures to the clipboard that is open, and never renders them.
    static void PromisePictures() {
        if (!EmptyClipboard()) return;
        for (const UINT format : {UINT{CF_DIB}, UINT{CF_DIBV5}, UINT{CF_ENHMETAFILE}})
            SetClipboardData(format, nullptr);
    }

    static void BuildAFace() {
        ClipboardBackup backup;
        PutOnClipboard(Painted(1, 1, NoMask));
        ASSERT_FALSE(OnClipboard(kFace).empty());
        EXPECT_TRUE(backup.Restore());
        EXPECT_TRUE(OnClipboard(kFace).empty());
    }
};

TEST_F(ClipboardBackups, RestoreABitmapByteForByte) {
    for (const auto& [format, headerSize] : {std::pair(UINT{CF_DIB}, 40u), std::pair(UINT{CF_DIBV5}, 124u)}) {
        Bytes dib(sizeof(BITMAPV5HEADER) + 8, 0x5A);
        const BITMAPINFOHEADER header{headerSize, 2, 1, 1, 32, BI_RGB, 8, 0, 0, 0, 0};
        std::copy_n(reinterpret_cast<const std::uint8_t*>(&header), sizeof header, dib.begin());
        Copy(format, NewGlobalBlock(dib).release());
        ClipboardSession(nullptr).Set(CF_UNICODETEXT, NewGlobalBlock(kText));
        BuildAFace();
        EXPECT_EQ(OnClipboard(format), dib);
        EXPECT_FALSE(HasText()) << "only a picture is restored";
    }
}

TEST_F(ClipboardBackups, LeaveNoBlockLocked) {
    const com::UniqueGlobal block = NewGlobalBlock(kText);
    EXPECT_NE(CopyOf(block.get()), nullptr);
    EXPECT_EQ(GlobalFlags(block.get()) & GMEM_LOCKCOUNT, 0u);
}

TEST_F(ClipboardBackups, RestoreABitmapHandle) {
    const ButtonFace source = Painted(2, 1, NoMask);
    Copy(CF_BITMAP, BitmapOf(source));
    BuildAFace();
    ExpectFaceOf(source);
}

TEST_F(ClipboardBackups, RestoreAMetafile) {
    const RECT frame{0, 0, 1234, 567};
    Copy(CF_ENHMETAFILE, CloseEnhMetaFile(CreateEnhMetaFileW(nullptr, nullptr, &frame, nullptr)));
    BuildAFace();
    const ClipboardSession clipboard(nullptr);
    ENHMETAHEADER header{};
    GetEnhMetaFileHeader(static_cast<HENHMETAFILE>(GetClipboardData(CF_ENHMETAFILE)), sizeof header, &header);
    EXPECT_EQ(header.rclFrame.right, 1234);
}

TEST_F(ClipboardBackups, FailIfTheOwnerDoesNotAnswer) {
    const OtherProgram hung(0, PromisePictures);
    ASSERT_TRUE(ClipboardSession(nullptr, 5000).IsOpen());  // the promise is made
    const DWORD before = GetClipboardSequenceNumber();
    const auto backUp = [] {
        ClipboardBackup backup;
        EXPECT_FALSE(backup.IsTaken());
        backup.Restore();
    };
    EXPECT_LT(Duration(backUp), 2000u);
    EXPECT_EQ(GetClipboardSequenceNumber(), before) << "the picture is still there";
}

TEST_F(ClipboardBackups, FailIfAPictureCannotBeCopied) {
    const ClipboardOwner user = MakeClipboardOwner();
    {
        const ClipboardSession clipboard(user.get());
        PromisePictures();
    }
    EXPECT_FALSE(ClipboardBackup().IsTaken());
}

TEST_F(ClipboardBackups, WaitForABusyClipboardForASecond) {
    const Bytes picture(48, 1);
    Copy(CF_DIB, NewGlobalBlock(picture).release());
    ClipboardBackup backup;
    PutOnClipboard(Painted(1, 1, NoMask));
    {
        const OtherProgram busy(INFINITE);
        const ULONGLONG waited = Duration([&] { EXPECT_FALSE(backup.Restore()); });
        EXPECT_LT(waited, 2000u);
    }
    const OtherProgram busy(300);
    EXPECT_TRUE(backup.Restore());
    EXPECT_EQ(OnClipboard(CF_DIB), picture);
}

TEST_F(ClipboardBackups, DoNotReplaceWhatTheUserHasCopiedSince) {
    const ClipboardOwner user = MakeClipboardOwner();
    ClipboardBackup first;
    PutOnClipboard(Painted(1, 1, NoMask));
    {
        const ClipboardSession clipboard(user.get());
        CopyText();
    }
    EXPECT_TRUE(first.Restore() && HasText());

    ClipboardBackup second;
    PutOnClipboard(Painted(1, 1, NoMask));
    const OtherProgram other(100, CopyText);
    EXPECT_TRUE(second.Restore() && HasText()) << "it is copied while restoring waits";
}

TEST_F(ClipboardBackups, LeaveNoFaceOnAClipboardWithoutAPicture) {
    Copy(CF_UNICODETEXT, NewGlobalBlock(kText).release());
    ClipboardBackup untouched;
    untouched.Restore();
    EXPECT_TRUE(HasText()) << "nothing was built";
    BuildAFace();
    EXPECT_EQ(CountClipboardFormats(), 0);
}

}  // namespace
}  // namespace beacon
