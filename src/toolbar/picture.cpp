#include "toolbar/picture.h"

#include <olectl.h>

#include <cstdint>
#include <vector>

#include "toolbar/clipboard.h"

namespace beacon {
namespace {

using Microsoft::WRL::ComPtr;

std::vector<std::uint8_t> FileBytes(const std::wstring& path) {
    constexpr LONGLONG kLargest = 64 << 20;
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    std::vector<std::uint8_t> bytes;
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file, &size) && size.QuadPart <= kLargest) {
        bytes.resize(static_cast<size_t>(size.QuadPart));
        DWORD read = 0;
        if (!ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) read = 0;
        bytes.resize(read);
    }
    CloseHandle(file);
    return bytes;
}

}  // namespace

// The file is read here rather than by OleLoadPicturePath, which takes addresses of the web as well: a path that comes
// from a setting must not make Outlook wait for the network.
ComPtr<IPicture> LoadPicture(const std::wstring& path) {
    const std::vector<std::uint8_t> bytes = FileBytes(path);
    if (bytes.empty()) return nullptr;
    GlobalBlock block = NewGlobalBlock(bytes);
    ComPtr<IStream> stream;
    if (block == nullptr || FAILED(CreateStreamOnHGlobal(block.get(), TRUE, &stream))) return nullptr;
    static_cast<void>(block.release());  // the stream's now
    ComPtr<IPicture> picture;
    // Not in "run mode": Wine takes that for a picture that does not own its bitmap, and leaks it.
    if (FAILED(OleLoadPicture(stream.Get(), static_cast<LONG>(bytes.size()), FALSE, IID_IPicture,
                              reinterpret_cast<void**>(picture.GetAddressOf()))))
        return nullptr;
    return picture;
}

}  // namespace beacon
