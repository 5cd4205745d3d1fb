// Headers of bitmap files: a loader that believes one that is let through stays within the file.
#include "fuzz.h"
#include "toolbar/bitmap_file.h"

namespace {

using beacon::fuzz::Require;

std::uint64_t Dword(const std::uint8_t* data, std::size_t at) {
    std::uint64_t value = 0;
    for (std::size_t i = 4; i-- > 0;) value = value << 8 | data[at + i];
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!beacon::IsWholeBitmap({reinterpret_cast<const char*>(data), size})) return 0;
    const std::uint64_t header = Dword(data, 14);
    const bool isCore = header == 12;
    const std::uint64_t shape = Dword(data, 18);
    const auto width = isCore ? shape & 0xFFFF : shape;
    const auto tall = static_cast<std::int32_t>(isCore ? shape >> 16 : Dword(data, 22));
    const auto height = static_cast<std::uint64_t>(tall < 0 ? -std::int64_t{tall} : tall);
    const std::uint64_t depth = (isCore ? Dword(data, 22) : Dword(data, 26)) >> 16;
    const std::uint64_t compression = isCore ? 0 : Dword(data, 30);
    std::uint64_t colours = isCore ? 0 : Dword(data, 46);
    if (colours == 0 && depth <= 8) colours = std::uint64_t{1} << depth;
    const bool isPacked = compression == 1 || compression == 2;
    const std::uint64_t tableEnd =
        14 + header + (compression == 3 && header == 40 ? 12 : 0) + colours * (isCore ? 3 : 4);
    const std::uint64_t rows = Dword(data, 10);
    Require(width > 0 && height > 0 && width * height <= 1 << 24);
    Require(tableEnd <= rows && rows + (isPacked ? Dword(data, 34) : (width * depth + 31) / 32 * 4 * height) <= size);
    return 0;
}
