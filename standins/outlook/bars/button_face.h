#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace beacon::standin {

/// The picture on a button. Pixels in rows from the top left, 0xAARRGGBB with AA 0 (transparent) or 255.
struct ButtonFace {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    bool Empty() const { return pixels.empty(); }

    std::uint32_t At(int x, int y) const {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }

    bool operator==(const ButtonFace&) const = default;
};

/// The side in pixels at which faces are drawn.
inline constexpr int kFaceSize = 16;
/// The largest side of a face.
inline constexpr int kLargestFace = 64;

/// Reads an opaque face from a packed DIB (CF_DIB) of 1, 4, 8, 16, 24 or 32 bits per pixel. Throws com::Error for any
/// other block, a too large picture, or a truncated block.
ButtonFace FaceFromDib(std::span<const std::byte> dib);

/// Makes the face transparent where the mask, a packed DIB of 1 bit per pixel, is white. Throws com::Error if it is not
/// a mask of the same size.
void ApplyMask(ButtonFace& face, std::span<const std::byte> mask);

/// The face that Office would paste: "Toolbar Button Face" with "Toolbar Button Mask", or else CF_DIB, opaque. Throws
/// com::Error if there is neither, if a block is malformed, or if another program keeps the clipboard open.
ButtonFace FaceFromClipboard(HWND owner);

/// The nearest pixels at another size.
ButtonFace Scaled(const ButtonFace& face, int width, int height);

}  // namespace beacon::standin
