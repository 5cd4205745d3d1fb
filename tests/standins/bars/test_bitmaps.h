#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace beacon::test {

/// Pixels as 0xRRGGBB, from the top left.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> rgb;

    std::uint32_t At(int x, int y) const { return rgb[static_cast<size_t>(y * width + x)]; }
};

inline constexpr std::uint32_t kMagenta = 0xFF00FF;

/// A file in the temporary folder that is deleted at the end.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::vector<std::uint8_t>& content);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const std::wstring& Path() const { return path_; }

private:
    std::wstring path_;
};

/// A bitmap file of 1, 8, 24 or 32 bits a pixel. With 1 there may be 2 different colours, with 8 there may be 256.
std::vector<std::uint8_t> BitmapFile(const Pixels& pixels, int depth);

}  // namespace beacon::test
