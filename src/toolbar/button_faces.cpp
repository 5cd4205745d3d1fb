#include "toolbar/button_faces.h"

#include <olectl.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "com/handle.h"
#include "com/object.h"
#include "support/error_styles.h"
#include "support/log.h"
#include "toolbar/bitmap_file.h"
#include "toolbar/clipboard.h"

namespace beacon {
namespace {

constexpr LONG kLargestSide = 30000;
constexpr size_t kHeaderSize = sizeof(BITMAPINFOHEADER);
// Header and two colours, as they stand at the start of the block of the mask.
constexpr size_t kMaskHeadSize = kHeaderSize + 2 * sizeof(RGBQUAD);

struct ReleaseScreenDc {
    void operator()(HDC dc) const noexcept { ReleaseDC(nullptr, dc); }
};

/// The screen's device context.
using ScreenDc = std::unique_ptr<HDC__, ReleaseScreenDc>;

/// A bitmap or palette selected into a device context for as long as this lives; a palette in the background.
class Selected {
public:
    Selected(HDC dc, HBITMAP bitmap) : dc_(dc), earlier_(SelectObject(dc, bitmap)) {}

    Selected(HDC dc, HPALETTE palette) : dc_(dc), earlier_(SelectPalette(dc, palette, TRUE)), isPalette_(true) {
        RealizePalette(dc);
    }

    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

    ~Selected() {
        if (isPalette_)
            SelectPalette(dc_, static_cast<HPALETTE>(earlier_), TRUE);
        else
            SelectObject(dc_, earlier_);
    }

private:
    HDC dc_;
    HGDIOBJ earlier_;
    bool isPalette_ = false;
};

/// Whether the path is on a drive of this machine: another machine may block for long, and would learn who asks.
bool IsOnThisMachine(const std::wstring& path) {
    wchar_t full[MAX_PATH];
    const DWORD length = GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
    if (length < 3 || length >= MAX_PATH || full[1] != L':') return false;
    full[3] = L'\0';
    return GetDriveTypeW(full) != DRIVE_REMOTE;
}

std::vector<std::uint8_t> FileBytes(const std::wstring& path) {
    constexpr LONGLONG kLargest = 64 << 20;
    if (!IsOnThisMachine(path)) return {};
    const com::UniqueHandle file =
        com::OwnFile(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                 nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (file == nullptr || !GetFileSizeEx(file.get(), &size) || size.QuadPart > kLargest) return {};
    std::vector<std::uint8_t> bytes(static_cast<size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) return {};
    bytes.resize(read);
    return bytes;
}

/// The bitmap's dimensions. Raises error 481 if they are not those of a face.
BITMAP DimensionsOf(HBITMAP bitmap) {
    BITMAP record{};
    if (GetObjectA(bitmap, sizeof record, &record) == 0 || !IsFaceSize(record.bmWidth, record.bmHeight))
        com::Raise(com::kInvalidPicture);
    return record;
}

/// The bitmap in clipboard format: header, then rows from bottom to top. Always 24 bits per pixel: with 32, some
/// versions of Office take the unused byte for transparency.
std::vector<std::uint8_t> PackedDib(HBITMAP bitmap, HDC dc) {
    constexpr WORD kDepth = 24;
    const BITMAP record = DimensionsOf(bitmap);
    const size_t rowSize = (static_cast<size_t>(record.bmWidth) * kDepth + 31) / 32 * 4;
    const auto height = static_cast<UINT>(record.bmHeight);
    BITMAPINFO info{};
    info.bmiHeader.biSize = kHeaderSize;
    info.bmiHeader.biWidth = record.bmWidth;
    info.bmiHeader.biHeight = record.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = kDepth;
    info.bmiHeader.biCompression = BI_RGB;
    info.bmiHeader.biSizeImage = static_cast<DWORD>(rowSize * height);
    std::vector<std::uint8_t> dib(kHeaderSize + rowSize * height);
    if (GetDIBits(dc, bitmap, 0, height, dib.data() + kHeaderSize, &info, DIB_RGB_COLORS) == 0)
        com::Raise(com::kInvalidPicture);
    std::memcpy(dib.data(), &info.bmiHeader, kHeaderSize);
    return dib;
}

/// Replaces the clipboard's content with the bitmap. Allocates before it empties the clipboard.
void SetClipboardDib(HBITMAP bitmap, HDC dc, HWND owner) {
    com::UniqueGlobal dib = NewGlobalBlock(PackedDib(bitmap, dc));
    ClipboardSession clipboard(owner);
    if (dib == nullptr || !clipboard.IsOpen() || !EmptyClipboard() || !clipboard.Set(CF_DIB, std::move(dib))) {
        constexpr long kCannotOpenClipboard = 521;
        throw com::Error(kCannotOpenClipboard, L"Can't open Clipboard");
    }
}

/// A monochrome bitmap of the source's size: 1 where the source has the mask colour, else 0. Null if a side is
/// longer than 30000 pixels. The palette, which stays the caller's, matters on palette displays only.
com::UniqueBitmap CreateButtonMask(HBITMAP hbmSource, COLORREF rgbMask, HDC hdcScreen, HPALETTE hPalette) {
    const BITMAP record = DimensionsOf(hbmSource);
    if (record.bmWidth > kLargestSide || record.bmHeight > kLargestSide) return nullptr;
    const com::UniqueDc source(CreateCompatibleDC(hdcScreen));
    const Selected palette(source.get(), hPalette);
    const Selected sourceBitmap(source.get(), hbmSource);
    com::UniqueBitmap mask(CreateBitmap(record.bmWidth, record.bmHeight, 1, 1, nullptr));
    const com::UniqueDc target(CreateCompatibleDC(hdcScreen));
    const Selected targetBitmap(target.get(), mask.get());
    if (source == nullptr || target == nullptr || mask == nullptr) com::Raise(com::kInvalidPicture);
    // Copying colours to monochrome turns the source's background colour into 1 and every other colour into 0.
    constexpr COLORREF kWhite = 0xFFFFFF;
    SetBkColor(source.get(), rgbMask);
    SetTextColor(source.get(), kWhite);
    if (!BitBlt(target.get(), 0, 0, record.bmWidth, record.bmHeight, source.get(), 0, 0, SRCCOPY))
        com::Raise(com::kInvalidPicture);
    return mask;
}

void AddFace(ClipboardSession& clipboard, UINT format) {
    const HANDLE placed = GetClipboardData(CF_DIB);
    LogMsg2(L"GetClipboardData(CF_DIB) retuned: ", HandleToLong(placed));
    if (placed == nullptr) return;
    com::UniqueGlobal copy = CopyOf(placed);
    LogMsg2(L"GlobalAlloc(&H2002, cbSize) retuned: ", HandleToLong(copy.get()));
    if (copy != nullptr) clipboard.Set(format, std::move(copy));
}

void AddMask(ClipboardSession& clipboard, UINT format, HBITMAP mask, HDC dc, const BITMAPINFOHEADER& header) {
    // The format leaves two unused bytes at the end.
    std::vector<std::uint8_t> content(kMaskHeadSize + header.biSizeImage + 2);
    std::memcpy(content.data(), &header, kHeaderSize);
    // The call stops at the bitmap's last row, however many are requested.
    GetDIBits(dc, mask, 0, header.biSizeImage, content.data() + kMaskHeadSize,
              reinterpret_cast<BITMAPINFO*>(content.data()), DIB_RGB_COLORS);
    com::UniqueGlobal block = NewGlobalBlock(content);
    LogMsg2(L"GlobalAlloc(&H2002, uBIH.biSizeImage + 50) retuned: ", HandleToLong(block.get()));
    if (block != nullptr) clipboard.Set(format, std::move(block));
}

/// Adds the face (a copy of the bitmap on the clipboard) and the mask in Office's private formats.
void CopyButtonMaskToClipboard(HBITMAP hbmMask, HDC hdcScreen) noexcept {
    LogOnError(L"Exception in CopyButtonMaskToClipboard: ", [&] {
        LogMsg2(L"CopyButtonMaskToClipboard called");
        // Includes room for a colour table, although a request for the header alone fills none.
        struct {
            BITMAPINFOHEADER header;
            RGBQUAD colours[256];
        } info{};
        info.header.biSize = kHeaderSize;
        GetDIBits(hdcScreen, hbmMask, 0, 0, nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS);
        if (info.header.biBitCount != 1) {
            LogMsg2(L"Not a mask image: uBIH.biBitCount =", info.header.biBitCount);
            return;
        }
        if (info.header.biSizeImage < 1) {
            LogMsg2(L"Not a mask image: uBIH.biSizeImage =", static_cast<long>(info.header.biSizeImage));
            return;
        }
        ClipboardSession clipboard(nullptr);
        if (!clipboard.IsOpen()) return;
        const UINT face = RegisterClipboardFormatA("Toolbar Button Face");
        const UINT mask = RegisterClipboardFormatA("Toolbar Button Mask");
        AddFace(clipboard, face);
        AddMask(clipboard, mask, hbmMask, hdcScreen, info.header);
        clipboard.Close();
        LogMsg2(L"ClosedClipboard");
    });
}

void PutFaceOnClipboard(IPicture* picture, OLE_COLOR maskColor) {
    SHORT type = 0;
    OLE_HANDLE handle = 0;
    if (picture == nullptr || FAILED(picture->get_Type(&type)) || type != PICTYPE_BITMAP ||
        FAILED(picture->get_Handle(&handle)) || handle == 0)
        throw com::Error(0, L"");
    const auto bitmap = static_cast<HBITMAP>(LongToHandle(static_cast<LONG>(handle)));
    const ScreenDc screen(GetDC(nullptr));
    com::UniquePalette ownPalette;
    OLE_HANDLE paletteHandle = 0;
    auto palette = SUCCEEDED(picture->get_hPal(&paletteHandle)) && paletteHandle != 0
                       ? static_cast<HPALETTE>(LongToHandle(static_cast<LONG>(paletteHandle)))
                       : nullptr;
    if (palette == nullptr) {
        ownPalette.reset(CreateHalftonePalette(screen.get()));
        palette = ownPalette.get();
    }
    COLORREF rgb = 0;
    com::Check(OleTranslateColor(maskColor, palette, &rgb));
    const com::UniqueBitmap mask = CreateButtonMask(bitmap, rgb, screen.get(), palette);
    const ClipboardOwner owner = MakeClipboardOwner();
    SetClipboardDib(bitmap, screen.get(), owner.get());
    CopyButtonMaskToClipboard(mask.get(), screen.get());
}

}  // namespace

// Not OleLoadPicturePath: it accepts URLs, and a setting must not make Outlook fetch something.
com::ComPtr<IPicture> LoadPicture(const std::wstring& path) {
    const std::vector<std::uint8_t> bytes = FileBytes(path);
    if (bytes.empty()) return nullptr;
    const std::string_view file(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (IsBitmapFile(file) && !IsWholeBitmap(file)) return nullptr;
    com::UniqueGlobal block = NewGlobalBlock(bytes);
    com::ComPtr<IStream> stream;
    if (block == nullptr || FAILED(CreateStreamOnHGlobal(block.get(), TRUE, &stream))) return nullptr;
    static_cast<void>(block.release());  // now the stream's
    com::ComPtr<IPicture> picture;
    // Not in "run mode": Wine's picture would then not own its bitmap, and leak it.
    if (FAILED(OleLoadPicture(stream.Get(), static_cast<LONG>(bytes.size()), FALSE, IID_IPicture,
                              reinterpret_cast<void**>(picture.GetAddressOf()))))
        return nullptr;
    return picture;
}

void CopyBitmapAsButtonFace(IPicture* picSource, OLE_COLOR clrMaskColor) {
    bool isCopied = false;
    LogOnError(L"CopyBitmapAsButtonFace() failed: ", [&] {
        PutFaceOnClipboard(picSource, clrMaskColor);
        isCopied = true;
    });
    if (!isCopied) com::Raise(com::kInvalidPicture);
}

}  // namespace beacon
