#include "toolbar/button_faces.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
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

/// A picture whose pixels are 0xRRGGBB.
standin::ButtonFace Painted(int width, int height, std::uint32_t (*colour)(int x, int y)) {
    standin::ButtonFace picture{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) picture.pixels.push_back(colour(x, y));
    return picture;
}

std::uint32_t AllMask(int, int) { return kMagenta; }

std::uint32_t NoMask(int x, int y) { return static_cast<std::uint32_t>(0x102030 + x * 0x10 + y * 0x1000); }

/// Not symmetric; one colour differs from the mask colour by one.
std::uint32_t Mixed(int x, int y) {
    constexpr std::uint32_t kColours[] = {kMagenta, 0xFF01FF, 0x000000, 0xFFFFFF, 0x1234AB, kMagenta, 0x800000};
    return kColours[(x * 3 + y * 5 + x * y) % 7];
}

com::ComPtr<IPicture> PictureOf(HBITMAP bitmap) {
    PICTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = bitmap;
    com::ComPtr<IPicture> picture;
    com::Check(
        OleCreatePictureIndirect(&description, IID_IPicture, TRUE, reinterpret_cast<void**>(picture.GetAddressOf())));
    return picture;
}

com::ComPtr<IPicture> PictureOf(const standin::ButtonFace& pixels) {
    return PictureOf(CreateBitmap(pixels.width, pixels.height, 1, 32, pixels.pixels.data()));
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

/// Makes the folder that Wine shows as \\machine\share; empty on Windows.
std::filesystem::path SharedFolder(const std::wstring& machine) {
    wchar_t prefix[MAX_PATH] = L"";
    if (GetEnvironmentVariableW(L"WINECONFIGDIR", prefix, MAX_PATH) == 0) return {};
    const std::filesystem::path folder = std::filesystem::path(prefix + std::wstring_view(L"\\??\\").size()) /
                                         L"dosdevices" / L"unc" / machine / L"share";
    std::filesystem::create_directories(folder);
    return folder;
}

TEST(ButtonFaces, AreCopiedPixelByPixel) {
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

TEST(ButtonFaces, AreMadeOfBitmapsOnlyAndElseLeaveTheClipboardAlone) {
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
    const com::ComPtr<IPicture> huge = PictureOf(CreateBitmap(8192, 4096, 1, 1, nullptr));
    for (IPicture* picture : {static_cast<IPicture*>(nullptr), icon.Get(), huge.Get()})
        EXPECT_EQ(test::RaisedBy([&] { CopyBitmapAsButtonFace(picture, kMagenta); }).number, com::kInvalidPicture);
    EXPECT_EQ(GetClipboardSequenceNumber(), sequence);
}

TEST(ButtonFaces, AreNotLoadedFromOtherMachines) {
    const std::filesystem::path folder = SharedFolder(L"beacon-test");
    if (folder.empty()) GTEST_SKIP() << "only Wine maps names of machines to folders";
    std::filesystem::copy_file(TOOLBAR_BITMAPS L"\\button0.bmp", folder / L"a.bmp");
    for (const wchar_t* path : {L"\\\\beacon-test\\share\\a.bmp", L"//beacon-test/share/a.bmp"}) {
        ASSERT_TRUE(std::filesystem::exists(path)) << com::ToAnsi(path);
        EXPECT_EQ(LoadPicture(path), nullptr) << com::ToAnsi(path);
    }
    std::filesystem::remove_all(folder.parent_path());
}

TEST(ButtonFaces, AreNotLoadedFromIncompleteFiles) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / L"button-face-test.bmp";
    std::filesystem::remove(path);
    std::filesystem::copy_file(TOOLBAR_BITMAPS L"\\button0.bmp", path);
    EXPECT_NE(LoadPicture(path.wstring()), nullptr);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
    EXPECT_EQ(LoadPicture(path.wstring()), nullptr);
    std::filesystem::remove(path);
}

TEST(ButtonFaces, HaveNoMaskIfTheBitmapIsTooLargeForOne) {
    PutOnClipboard(Painted(30001, 1, NoMask));
    EXPECT_EQ(HeaderOf(OnClipboard(CF_DIB)).biWidth, 30001);
    EXPECT_TRUE(OnClipboard(kMask).empty());
    PutOnClipboard(Painted(30000, 1, NoMask));
    EXPECT_EQ(HeaderOf(OnClipboard(kMask)).biWidth, 30000);
}

TEST(ButtonFaces, LeaveNothingBehindAfterAHundredBuilds) {
    const auto build = [] { CopyBitmapAsButtonFace(LoadPicture(TOOLBAR_BITMAPS L"\\button0.bmp").Get(), kMagenta); };
    build();
    const auto before = standin::Resources::Now();
    for (int i = 0; i < 100; ++i) build();
    const auto after = standin::Resources::Now();
    EXPECT_LE(after.gdiObjects, before.gdiObjects + 5);
    EXPECT_LE(after.handles, before.handles + 5);
    EXPECT_EQ(GetOpenClipboardWindow(), nullptr);
    EXPECT_FALSE(OnClipboard(kFace).empty());
}

/// Another program with a window: a thread that answers no messages and ends with the object.
class OtherProgram {
public:
    /// `begin` runs before the constructor returns, `end` after so many ms.
    explicit OtherProgram(
        const std::function<void(HWND)>& begin, DWORD time = INFINITE, const std::function<void()>& end = [] {})
        : thread_(standin::StartThread([=, ready = ready_.get(), stop = stop_.get()] {
              const ClipboardOwner window;
              begin(window.Window());
              SetEvent(ready);
              WaitForSingleObject(stop, time);
              end();
              WaitForSingleObject(stop, INFINITE);
          })) {
        EXPECT_EQ(WaitForSingleObject(ready_.get(), 5000), WAIT_OBJECT_0);
    }

    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    ~OtherProgram() {
        SetEvent(stop_.get());
        WaitForSingleObject(thread_.get(), 20000);
    }

private:
    standin::UniqueHandle ready_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    standin::UniqueHandle stop_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    standin::UniqueHandle thread_;
};

/// Another program that keeps the clipboard open for so many ms, and does this before it closes it.
OtherProgram Busy(
    DWORD time, const std::function<void()>& last = [] {}) {
    return OtherProgram([](HWND window) { EXPECT_TRUE(OpenClipboard(window)); }, time,
                        [last] {
                            last();
                            CloseClipboard();
                        });
}

const Bytes kText{'h', 0, 0, 0};

TEST(ButtonFaces, WaitBrieflyForABusyClipboard) {
    const auto picture = PictureOf(Painted(16, 16, Mixed));
    {
        const OtherProgram busy = Busy(15);
        CopyBitmapAsButtonFace(picture.Get(), kMagenta);
    }
    const OtherProgram busy = Busy(INFINITE);
    const ULONGLONG start = GetTickCount64();
    EXPECT_THROW(CopyBitmapAsButtonFace(picture.Get(), kMagenta), com::Error);
    EXPECT_LT(GetTickCount64() - start, 1000u);
}

class ClipboardBackups : public testing::Test {
protected:
    void SetUp() override { Put(0, nullptr); }

    /// Replaces the content. The clipboard owns the data from now on.
    static void Put(UINT format, HANDLE data) {
        const ClipboardSession clipboard(nullptr);
        ASSERT_TRUE(clipboard.IsOpen() && EmptyClipboard());
        if (data != nullptr) ASSERT_EQ(SetClipboardData(format, data), data);
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
    for (const UINT format : {UINT{CF_DIB}, UINT{CF_DIBV5}}) {
        Bytes dib(sizeof(BITMAPV5HEADER) + 8, 0x5A);
        const BITMAPINFOHEADER header{format == CF_DIB ? 40u : 124u, 2, 1, 1, 32, BI_RGB, 8, 0, 0, 0, 0};
        std::copy_n(reinterpret_cast<const std::uint8_t*>(&header), sizeof header, dib.begin());
        Put(format, NewGlobalBlock(dib).release());
        {
            ClipboardSession clipboard(nullptr);
            clipboard.Set(CF_UNICODETEXT, NewGlobalBlock(kText));
        }
        BuildAFace();
        EXPECT_EQ(OnClipboard(format), dib);
        EXPECT_TRUE(OnClipboard(CF_UNICODETEXT).empty()) << "only a picture is restored";
    }
}

TEST_F(ClipboardBackups, RestoreABitmapHandle) {
    standin::ButtonFace source = Painted(2, 1, Mixed);
    Put(CF_BITMAP, CreateBitmap(source.width, source.height, 1, 32, source.pixels.data()));
    BuildAFace();
    for (std::uint32_t& pixel : source.pixels) pixel |= 0xFF000000;  // opaque
    EXPECT_EQ(standin::FaceFromClipboard(nullptr), source);
}

TEST_F(ClipboardBackups, RestoreAMetafile) {
    const RECT frame{0, 0, 1234, 567};
    Put(CF_ENHMETAFILE, CloseEnhMetaFile(CreateEnhMetaFileW(nullptr, nullptr, &frame, nullptr)));
    BuildAFace();
    const ClipboardSession clipboard(nullptr);
    ENHMETAHEADER header{};
    const auto metafile = static_cast<HENHMETAFILE>(GetClipboardData(CF_ENHMETAFILE));
    EXPECT_NE(GetEnhMetaFileHeader(metafile, sizeof header, &header), 0u);
    EXPECT_EQ(header.rclFrame.right, 1234);
}

TEST_F(ClipboardBackups, FailIfTheOwnerDoesNotAnswer) {
    const OtherProgram other([](HWND window) {
        if (OpenClipboard(window) && EmptyClipboard())
            for (const UINT format : {CF_DIB, CF_DIBV5, CF_ENHMETAFILE}) SetClipboardData(format, nullptr);
        CloseClipboard();
    });
    const DWORD before = GetClipboardSequenceNumber();
    const ULONGLONG start = GetTickCount64();
    ClipboardBackup backup;
    EXPECT_LT(GetTickCount64() - start, 2000u);
    EXPECT_FALSE(backup.IsTaken());
    backup.Restore();
    EXPECT_EQ(GetClipboardSequenceNumber(), before) << "the picture is still there";
}

TEST_F(ClipboardBackups, FailIfAPictureCannotBeCopied) {
    const ClipboardOwner user;  // promises a picture and never renders it
    {
        const ClipboardSession clipboard(user.Window());
        ASSERT_TRUE(clipboard.IsOpen() && EmptyClipboard());
        SetClipboardData(CF_DIB, nullptr);
    }
    EXPECT_FALSE(ClipboardBackup().IsTaken());
}

TEST_F(ClipboardBackups, WaitForABusyClipboardForASecond) {
    Put(CF_DIB, NewGlobalBlock(Bytes(48, 1)).release());
    ClipboardBackup backup;
    PutOnClipboard(Painted(1, 1, NoMask));
    {
        const OtherProgram busy = Busy(INFINITE);
        const ULONGLONG start = GetTickCount64();
        EXPECT_FALSE(backup.Restore());
        EXPECT_LT(GetTickCount64() - start, 2000u);
    }
    const OtherProgram busy = Busy(300);
    EXPECT_TRUE(backup.Restore());
    EXPECT_EQ(OnClipboard(CF_DIB), Bytes(48, 1));
}

TEST_F(ClipboardBackups, DoNotReplaceWhatTheUserHasCopiedSince) {
    const auto copyText = [] {
        if (EmptyClipboard()) SetClipboardData(CF_UNICODETEXT, NewGlobalBlock(kText).release());
    };
    const auto isText = [] { return !OnClipboard(CF_UNICODETEXT).empty(); };
    const ClipboardOwner user;
    ClipboardBackup first;
    PutOnClipboard(Painted(1, 1, NoMask));
    {
        const ClipboardSession clipboard(user.Window());
        copyText();
    }
    EXPECT_TRUE(first.Restore() && isText());

    ClipboardBackup second;
    PutOnClipboard(Painted(1, 1, NoMask));
    const OtherProgram busy = Busy(100, copyText);
    EXPECT_TRUE(second.Restore() && isText()) << "it is copied while restoring waits";
}

TEST_F(ClipboardBackups, LeaveNoFaceOnAClipboardWithoutAPicture) {
    Put(CF_UNICODETEXT, NewGlobalBlock(kText).release());
    ClipboardBackup untouched;
    untouched.Restore();
    EXPECT_FALSE(OnClipboard(CF_UNICODETEXT).empty()) << "nothing was built";
    BuildAFace();
    EXPECT_EQ(CountClipboardFormats(), 0);
}

}  // namespace
}  // namespace beacon
