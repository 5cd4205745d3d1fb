#include "toolbar/bitmap_file.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace beacon {
namespace {

std::string LittleEndian(std::uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

/// What a file says of itself; without a byte too many.
struct Bitmap {
    std::uint32_t headerSize;
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
    std::uint32_t compression;
    std::uint32_t dataSize;  // 0: of its rows
    std::uint32_t colours;
    std::uint32_t tableSize;  // masks and colours, in bytes
    std::uint32_t rowsSize;
};

std::string FileOf(const Bitmap& bitmap) {
    const bool isCore = bitmap.headerSize == 12;
    const std::uint32_t rows = 14 + bitmap.headerSize + bitmap.tableSize;
    std::string file = "BM" + LittleEndian(rows + bitmap.rowsSize, 4) + LittleEndian(0, 4) + LittleEndian(rows, 4);
    file += LittleEndian(bitmap.headerSize, 4);
    file += LittleEndian(bitmap.width, isCore ? 2 : 4) + LittleEndian(bitmap.height, isCore ? 2 : 4);
    file += LittleEndian(1, 2) + LittleEndian(bitmap.depth, 2);
    if (!isCore) {
        file += LittleEndian(bitmap.compression, 4) + LittleEndian(bitmap.dataSize, 4) + LittleEndian(0, 8);
        file += LittleEndian(bitmap.colours, 4) + LittleEndian(0, 4);
    }
    file.resize(rows + bitmap.rowsSize);
    return file;
}

constexpr std::uint32_t kUpsideDown = static_cast<std::uint32_t>(-2);

TEST(IsWholeBitmap, TakesEveryKindDownToItsLastByte) {
    const Bitmap kinds[] = {
        {12, 3, 2, 24, 0, 0, 0, 0, 24},
        {12, 3, 2, 1, 0, 0, 0, 6, 8},
        {40, 16, 16, 24, 0, 0, 0, 0, 768},
        {40, 3, 2, 24, 0, 999, 0, 0, 24},
        {40, 3, kUpsideDown, 24, 0, 0, 0, 0, 24},
        {40, 33, 1, 1, 0, 0, 0, 8, 8},
        {40, 9, 1, 4, 0, 0, 0, 64, 8},
        {40, 5, 1, 8, 0, 0, 0, 1024, 8},
        {40, 5, 1, 8, 0, 0, 16, 64, 8},
        {40, 2, 2, 8, 1, 5, 2, 8, 5},
        {40, 2, 2, 4, 2, 5, 2, 8, 5},
        {40, 3, 2, 16, 0, 0, 0, 0, 16},
        {40, 3, 2, 16, 3, 0, 0, 12, 16},
        {40, 3, 2, 32, 0, 0, 0, 0, 24},
        {40, 3, 2, 32, 3, 0, 0, 12, 24},
        {52, 3, 2, 32, 3, 0, 0, 0, 24},
        {56, 3, 2, 32, 3, 0, 0, 0, 24},
        {108, 3, 2, 32, 3, 0, 0, 0, 24},
        {124, 3, 2, 32, 3, 0, 4, 16, 24},
        {40, 30001, 1, 1, 0, 0, 0, 8, 3752},
    };
    for (const Bitmap& kind : kinds) {
        SCOPED_TRACE(testing::Message() << kind.headerSize << " bytes of header, " << kind.depth << " bits");
        const std::string file = FileOf(kind);
        EXPECT_TRUE(IsWholeBitmap(file));
        EXPECT_TRUE(IsWholeBitmap(file + "and more"));
        for (std::size_t size = 0; size < file.size(); ++size)
            EXPECT_FALSE(IsWholeBitmap(file.substr(0, size))) << size;
        // The same without the help of the file's own length.
        EXPECT_FALSE(IsWholeBitmap(file.substr(0, 2) + LittleEndian(0, 4) + file.substr(6, file.size() - 7)));
    }
}

TEST(IsWholeBitmap, RefusesAHeaderThatPointsElsewhere) {
    const std::string file = FileOf({40, 3, 2, 24, 0, 0, 0, 0, 24});

    const struct {
        const char* field;
        std::size_t at;
        std::uint32_t value;
    } cases[] = {
        {"mark", 0, 0x4D41},
        {"size of the file", 2, 79},
        {"rows inside the header", 10, 53},
        {"rows behind the file", 10, 55},
        {"rows far behind the file", 10, 0xFFFFFFFF},
        {"no header", 14, 0},
        {"unknown header", 14, 41},
        {"header behind the file", 14, 108},
        {"no width", 18, 0},
        {"negative width", 18, 0xFFFFFFFD},
        {"wide", 18, 0x7FFFFFFF},
        {"no height", 22, 0},
        {"one row more", 22, 3},
        {"a height without a positive twin", 22, 0x80000000},
        {"planes", 26, 24 << 16},
        {"no depth", 26, 1},
        {"odd depth", 26, 1 | 23 << 16},
        {"depth of a table that is not there", 26, 1 | 8 << 16},
        {"masks without a place", 30, 3},
        {"packed rows", 30, 1},
        {"a format of its own", 30, 4},
        {"colours", 46, 1},
        {"colours without end", 46, 0x40000000},
    };

    for (const auto& one : cases) {
        std::string changed = file;
        changed.replace(one.at, one.at == 0 ? 2 : 4, LittleEndian(one.value, one.at == 0 ? 2 : 4));
        EXPECT_FALSE(IsWholeBitmap(changed)) << one.field;
    }
    EXPECT_FALSE(IsWholeBitmap(FileOf({40, 2, 2, 8, 1, 0, 2, 8, 5}))) << "packed rows of no known length";
    EXPECT_FALSE(IsWholeBitmap(FileOf({40, 30000, 30000, 8, 1, 5, 2, 8, 5}))) << "a few bytes for 900 million pixels";
}

}  // namespace
}  // namespace beacon
