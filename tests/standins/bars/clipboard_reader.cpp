#include "tests/standins/bars/clipboard_reader.h"

#include <cstring>
#include <stdexcept>

namespace beacon::test {
namespace {

BITMAPINFOHEADER HeaderOf(const std::vector<std::uint8_t>& dib, WORD depth) {
    BITMAPINFOHEADER header{};
    if (dib.size() < sizeof header) throw std::runtime_error("no header");
    std::memcpy(&header, dib.data(), sizeof header);
    if (header.biSize != sizeof header || header.biBitCount != depth) throw std::runtime_error("another header");
    return header;
}

}  // namespace

std::vector<std::uint8_t> OnClipboard(UINT format) {
    std::vector<std::uint8_t> bytes;
    if (!OpenClipboard(nullptr)) throw std::runtime_error("the clipboard is locked");
    const HANDLE block = GetClipboardData(format);
    if (block != nullptr) {
        const auto* start = static_cast<const std::uint8_t*>(GlobalLock(block));
        bytes.assign(start, start + GlobalSize(block));
        GlobalUnlock(block);
    }
    CloseClipboard();
    return bytes;
}

std::vector<std::uint8_t> OnClipboard(const char* format) { return OnClipboard(RegisterClipboardFormatA(format)); }

void PutOnClipboard(UINT format, const std::vector<std::uint8_t>& bytes) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
    GlobalUnlock(block);
    if (!OpenClipboard(nullptr)) throw std::runtime_error("the clipboard is locked");
    SetClipboardData(format, block);
    CloseClipboard();
}

void EmptyTheClipboard() {
    if (!OpenClipboard(nullptr)) throw std::runtime_error("the clipboard is locked");
    EmptyClipboard();
    CloseClipboard();
}

Pixels FromDib24(const std::vector<std::uint8_t>& dib) {
    const BITMAPINFOHEADER header = HeaderOf(dib, 24);
    Pixels pixels{header.biWidth, header.biHeight, {}};
    const size_t row = (static_cast<size_t>(header.biWidth) * 24 + 31) / 32 * 4;
    for (LONG y = 0; y < header.biHeight; ++y) {
        for (LONG x = 0; x < header.biWidth; ++x) {
            const std::uint8_t* cell = &dib.at(sizeof header + static_cast<size_t>(header.biHeight - 1 - y) * row +
                                               static_cast<size_t>(x) * 3 + 2) -
                                       2;
            pixels.rgb.push_back(static_cast<std::uint32_t>(cell[0] | cell[1] << 8 | cell[2] << 16));
        }
    }
    return pixels;
}

Pixels FromMask(const std::vector<std::uint8_t>& mask) {
    const BITMAPINFOHEADER header = HeaderOf(mask, 1);
    Pixels pixels{header.biWidth, header.biHeight, {}};
    const size_t row = (static_cast<size_t>(header.biWidth) + 31) / 32 * 4;
    for (LONG y = 0; y < header.biHeight; ++y) {
        for (LONG x = 0; x < header.biWidth; ++x) {
            const std::uint8_t cell =
                mask.at(48 + static_cast<size_t>(header.biHeight - 1 - y) * row + static_cast<size_t>(x) / 8);
            pixels.rgb.push_back((cell >> (7 - x % 8)) & 1u);
        }
    }
    return pixels;
}

}  // namespace beacon::test
