#include "outlook/bars/button_face.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "com/error.h"

namespace beacon::standin {
namespace {

[[noreturn]] void Refuse(const wchar_t* reason) {
    throw com::Error(com::kInvalidPicture, std::wstring(L"Invalid picture: ") + reason, L"Microsoft Outlook");
}

size_t RowBytes(int width, int bits) { return (static_cast<size_t>(width) * static_cast<size_t>(bits) + 31) / 32 * 4; }

struct CheckedDib {
    BITMAPINFOHEADER header;
    int width;
    int height;   // of the picture, without its sign
    size_t bits;  // offset
};

CheckedDib CheckDib(std::span<const std::byte> dib) {
    CheckedDib checked{};
    BITMAPINFOHEADER& header = checked.header;
    if (dib.size() < sizeof header) Refuse(L"too short for a bitmap header");
    std::memcpy(&header, dib.data(), sizeof header);
    if (header.biSize < sizeof header || header.biSize > dib.size()) Refuse(L"the header's size is wrong");
    if (header.biWidth < 1 || header.biWidth > kLargestFace || header.biHeight == 0 || header.biHeight > kLargestFace ||
        header.biHeight < -kLargestFace || header.biPlanes != 1)
        Refuse(L"the picture's size is wrong");
    checked.width = header.biWidth;
    checked.height = std::abs(header.biHeight);
    const WORD bits = header.biBitCount;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32)
        Refuse(L"an unknown number of bits a pixel");
    const bool fields = header.biCompression == BI_BITFIELDS && (bits == 16 || bits == 32);
    if (header.biCompression != BI_RGB && !fields) Refuse(L"compressed");
    const size_t mostColours = bits <= 8 ? size_t{1} << bits : 256;
    if (header.biClrUsed > mostColours) Refuse(L"too many colours");
    const size_t colours = header.biClrUsed != 0 ? header.biClrUsed : bits <= 8 ? mostColours : 0;
    // Newer headers contain the masks.
    const size_t fieldBytes = fields && header.biSize == sizeof header ? 3 * sizeof(DWORD) : 0;
    checked.bits = header.biSize + fieldBytes + colours * sizeof(RGBQUAD);
    const size_t needed = checked.bits + RowBytes(checked.width, bits) * static_cast<size_t>(checked.height);
    if (dib.size() < needed) Refuse(L"the block ends before its picture");
    return checked;
}

[[noreturn]] void Fail(const wchar_t* reason) { throw com::Error(E_FAIL, reason, L"Microsoft Outlook"); }

class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) {
        // Clipboard viewers open it briefly after each change.
        for (int attempt = 0; OpenClipboard(owner) == FALSE; ++attempt) {
            if (attempt == 20) Fail(L"The clipboard is in use by another program");
            Sleep(10);
        }
    }

    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    ~OpenedClipboard() { CloseClipboard(); }
};

/// Empty if the format is not available.
std::vector<std::byte> BlockOf(UINT format) {
    if (IsClipboardFormatAvailable(format) == FALSE) return {};
    const HANDLE block = GetClipboardData(format);
    const void* const bytes = block == nullptr ? nullptr : GlobalLock(block);
    if (bytes == nullptr) return {};
    const std::unique_ptr<void, decltype(&GlobalUnlock)> unlock(block, &GlobalUnlock);
    const auto* const first = static_cast<const std::byte*>(bytes);
    return {first, first + GlobalSize(block)};
}

}  // namespace

ButtonFace FaceFromDib(std::span<const std::byte> dib) {
    const CheckedDib checked = CheckDib(dib);
    const std::unique_ptr<std::remove_pointer_t<HDC>, decltype(&DeleteDC)> dc(CreateCompatibleDC(nullptr), &DeleteDC);
    BITMAPINFO wanted{};
    wanted.bmiHeader = {sizeof wanted.bmiHeader, checked.width, -checked.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const std::unique_ptr<std::remove_pointer_t<HBITMAP>, decltype(&DeleteObject)> section(
        CreateDIBSection(dc.get(), &wanted, DIB_RGB_COLORS, &bits, nullptr, 0), &DeleteObject);
    if (section == nullptr) Refuse(L"no memory for it");
    // GDI needs an aligned header.
    std::vector<DWORD> aligned((checked.bits + sizeof(DWORD) - 1) / sizeof(DWORD));
    std::memcpy(aligned.data(), dib.data(), checked.bits);
    const HGDIOBJ previous = SelectObject(dc.get(), section.get());
    const int lines = StretchDIBits(dc.get(), 0, 0, checked.width, checked.height, 0, 0, checked.width, checked.height,
                                    dib.data() + checked.bits, reinterpret_cast<const BITMAPINFO*>(aligned.data()),
                                    DIB_RGB_COLORS, SRCCOPY);
    GdiFlush();
    SelectObject(dc.get(), previous);
    if (lines <= 0) Refuse(L"its bits cannot be read");
    ButtonFace face;
    face.width = checked.width;
    face.height = checked.height;
    face.pixels.resize(static_cast<size_t>(checked.width) * static_cast<size_t>(checked.height));
    std::memcpy(face.pixels.data(), bits, face.pixels.size() * sizeof(std::uint32_t));
    for (std::uint32_t& pixel : face.pixels) pixel |= 0xFF000000;
    return face;
}

void ApplyMask(ButtonFace& face, std::span<const std::byte> mask) {
    if (CheckDib(mask).header.biBitCount != 1) Refuse(L"the mask has more than 1 bit a pixel");
    const ButtonFace marks = FaceFromDib(mask);
    if (marks.width != face.width || marks.height != face.height) Refuse(L"the mask has another size than the face");
    for (size_t i = 0; i < face.pixels.size(); ++i)
        if (marks.pixels[i] == 0xFFFFFFFF) face.pixels[i] &= 0x00FFFFFF;
}

ButtonFace Scaled(const ButtonFace& face, int width, int height) {
    ButtonFace scaled;
    scaled.width = width;
    scaled.height = height;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            scaled.pixels.push_back(face.At(x * face.width / width, y * face.height / height));
    return scaled;
}

ButtonFace FaceFromClipboard(HWND owner) {
    std::vector<std::byte> picture;
    std::vector<std::byte> mask;
    {
        const OpenedClipboard clipboard(owner);
        picture = BlockOf(RegisterClipboardFormatW(L"Toolbar Button Face"));
        if (picture.empty())
            picture = BlockOf(CF_DIB);
        else
            mask = BlockOf(RegisterClipboardFormatW(L"Toolbar Button Mask"));
    }
    if (picture.empty()) Fail(L"The clipboard holds no picture for a button");
    ButtonFace face = FaceFromDib(picture);
    if (!mask.empty()) ApplyMask(face, mask);
    return face;
}

}  // namespace beacon::standin
