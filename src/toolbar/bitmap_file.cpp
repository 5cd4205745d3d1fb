#include "toolbar/bitmap_file.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace beacon {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::uint32_t kCoreHeader = 12;  // the oldest: 16-bit sides, three bytes per colour
constexpr std::uint32_t kInfoHeader = 40;

enum Compression : std::uint32_t { kNone = 0, kRunLength8 = 1, kRunLength4 = 2, kMasks = 3 };

// Little-endian. The caller has checked that they are within the bytes.
std::uint32_t Number(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = size; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

std::uint32_t Word(std::string_view bytes, std::size_t at) { return Number(bytes, at, 2); }

std::uint32_t Dword(std::string_view bytes, std::size_t at) { return Number(bytes, at, 4); }

struct Header {
    std::int64_t width = 0;
    std::int64_t height = 0;  // without the sign, which gives the order of the rows
    std::uint32_t planes = 0;
    std::uint32_t depth = 0;  // bits per pixel
    std::uint32_t compression = kNone;
    std::uint64_t dataSize = 0;
    std::uint64_t tableEnd = 0;  // of masks and colour table
};

Header CoreHeader(std::string_view bytes) {
    Header header;
    header.width = Word(bytes, kFileHeader + 4);
    header.height = Word(bytes, kFileHeader + 6);
    header.planes = Word(bytes, kFileHeader + 8);
    header.depth = Word(bytes, kFileHeader + 10);
    const std::uint64_t colours = header.depth <= 8 ? 1U << header.depth : 0;
    header.tableEnd = kFileHeader + kCoreHeader + 3 * colours;
    return header;
}

Header InfoHeader(std::string_view bytes, std::uint32_t size) {
    Header header;
    header.width = static_cast<std::int32_t>(Dword(bytes, kFileHeader + 4));
    header.height = std::abs(std::int64_t{static_cast<std::int32_t>(Dword(bytes, kFileHeader + 8))});
    header.planes = Word(bytes, kFileHeader + 12);
    header.depth = Word(bytes, kFileHeader + 14);
    header.compression = Dword(bytes, kFileHeader + 16);
    header.dataSize = Dword(bytes, kFileHeader + 20);
    std::uint64_t colours = Dword(bytes, kFileHeader + 32);
    if (colours == 0 && header.depth <= 8) colours = 1U << header.depth;
    // The colour masks follow the first version of the header; later versions contain them.
    const std::uint64_t masks = header.compression == kMasks && size == kInfoHeader ? 12 : 0;
    header.tableEnd = kFileHeader + size + masks + 4 * colours;
    return header;
}

bool IsKnownSize(std::uint32_t size) {
    constexpr std::uint32_t kKnown[] = {kCoreHeader, kInfoHeader, 52, 56, 108, 124};
    return std::find(std::begin(kKnown), std::end(kKnown), size) != std::end(kKnown);
}

bool IsKnownFormat(const Header& header) {
    switch (header.compression) {
        case kNone:
            return header.depth == 1 || header.depth == 4 || header.depth == 8 || header.depth == 16 ||
                   header.depth == 24 || header.depth == 32;
        case kRunLength8: return header.depth == 8;
        case kRunLength4: return header.depth == 4;
        case kMasks: return header.depth == 16 || header.depth == 32;
        default: return false;
    }
}

}  // namespace

bool IsWholeBitmap(std::string_view bytes) {
    if (!IsBitmapFile(bytes) || bytes.size() < kFileHeader + kCoreHeader) return false;
    const std::uint32_t fileSize = Dword(bytes, 2);
    const std::uint64_t rows = Dword(bytes, 10);
    const std::uint32_t headerSize = Dword(bytes, kFileHeader);
    if (fileSize > bytes.size() || !IsKnownSize(headerSize) || kFileHeader + headerSize > bytes.size()) return false;

    const Header header = headerSize == kCoreHeader ? CoreHeader(bytes) : InfoHeader(bytes, headerSize);
    if (header.planes != 1 || !IsKnownFormat(header)) return false;
    if (!IsFaceSize(header.width, header.height)) return false;
    const std::uint64_t rowSize = (static_cast<std::uint64_t>(header.width) * header.depth + 31) / 32 * 4;
    const bool isPacked = header.compression == kRunLength8 || header.compression == kRunLength4;
    const std::uint64_t dataSize = isPacked ? header.dataSize : rowSize * static_cast<std::uint64_t>(header.height);
    return dataSize > 0 && header.tableEnd <= rows && rows + dataSize <= bytes.size();
}

}  // namespace beacon
