#include "tests/standins/bars/test_bitmaps.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "com/text.h"

namespace beacon::test {

TemporaryFile::TemporaryFile(const std::vector<std::uint8_t>& content) {
    wchar_t folder[MAX_PATH];
    wchar_t path[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"bmp", 0, path);
    path_ = path;
    std::ofstream file(com::ToAnsi(path_), std::ios::binary);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

TemporaryFile::~TemporaryFile() { DeleteFileW(path_.c_str()); }

std::vector<std::uint8_t> BitmapFile(const Pixels& pixels, int depth) {
    std::vector<std::uint32_t> table;
    if (depth <= 8) {
        for (const std::uint32_t colour : pixels.rgb)
            if (std::find(table.begin(), table.end(), colour) == table.end()) table.push_back(colour);
    }
    const size_t width = static_cast<size_t>(pixels.width);
    const size_t row = (width * static_cast<size_t>(depth) + 31) / 32 * 4;
    const size_t tableSize = depth <= 8 ? (size_t{4} << depth) : 0;
    const size_t head = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    std::vector<std::uint8_t> file(head + tableSize + row * static_cast<size_t>(pixels.height));

    BITMAPFILEHEADER fileHeader{};
    fileHeader.bfType = 0x4D42;
    fileHeader.bfSize = static_cast<DWORD>(file.size());
    fileHeader.bfOffBits = static_cast<DWORD>(head + tableSize);
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = pixels.width;
    header.biHeight = pixels.height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(depth);
    std::memcpy(file.data(), &fileHeader, sizeof fileHeader);
    std::memcpy(file.data() + sizeof fileHeader, &header, sizeof header);
    for (size_t i = 0; i < table.size(); ++i) std::memcpy(file.data() + head + i * 4, &table[i], 4);

    for (int y = 0; y < pixels.height; ++y) {
        std::uint8_t* line = file.data() + head + tableSize + static_cast<size_t>(pixels.height - 1 - y) * row;
        for (size_t x = 0; x < width; ++x) {
            const std::uint32_t colour = pixels.At(static_cast<int>(x), y);
            if (depth >= 24) {
                std::memcpy(line + x * static_cast<size_t>(depth) / 8, &colour, 3);
                continue;
            }
            const auto index = std::find(table.begin(), table.end(), colour) - table.begin();
            const size_t bit = x * static_cast<size_t>(depth);
            std::uint8_t& byte = line[bit / 8];
            byte = static_cast<std::uint8_t>(byte | index << (8 - depth - static_cast<int>(bit % 8)));
        }
    }
    return file;
}

}  // namespace beacon::test
