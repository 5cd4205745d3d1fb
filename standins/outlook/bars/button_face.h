#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace beacon::standin {

/// The picture on a button. Pixels run from the top left to the right and down, 0xAARRGGBB with AA 0 (shows what is
/// below) or 255.
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

/// An opaque face from a packed device-independent bitmap of 1, 4, 8, 16, 24 or 32 bits a pixel, as CF_DIB has it.
/// Throws com::Error on anything else: a picture that is too large, a block that is smaller than its header says.
ButtonFace FaceFromDib(std::span<const std::byte> dib);

/// Makes the face transparent where the mask, a packed bitmap of 1 bit a pixel, is white. Throws com::Error when it is
/// no mask, or one of another size.
void ApplyMask(ButtonFace& face, std::span<const std::byte> mask);

/// The face that Office would paste: "Toolbar Button Face" made transparent by "Toolbar Button Mask", or else the
/// picture (CF_DIB), all of it opaque. Throws com::Error when there is neither, when a block is malformed, or when
/// another program keeps the clipboard open.
ButtonFace FaceFromClipboard(HWND owner);

/// The nearest pixels at another size.
ButtonFace Scaled(const ButtonFace& face, int width, int height);

}  // namespace beacon::standin
