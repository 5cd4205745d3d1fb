#pragma once

#include <cstdint>
#include <string_view>

namespace beacon {

/// Whether a picture may become a face: both sides 1 or more, and at most 16 million pixels, which would block Outlook.
constexpr bool IsFaceSize(std::int64_t width, std::int64_t height) {
    constexpr std::int64_t kMostPixels = 1 << 24;
    return width >= 1 && height >= 1 && width <= kMostPixels / height;
}

/// Whether the bytes are a bitmap file of a face's size whose colour table and rows are complete. The system's loader
/// trusts the header and would read beyond the end of a shorter file. The pixels are not examined.
bool IsWholeBitmap(std::string_view bytes);

/// Whether the bytes begin like a bitmap file.
inline bool IsBitmapFile(std::string_view bytes) { return bytes.starts_with("BM"); }

}  // namespace beacon
