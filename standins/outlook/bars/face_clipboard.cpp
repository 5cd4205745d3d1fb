#include "outlook/bars/face_clipboard.h"

#include <memory>

#include "com/error.h"

namespace beacon::standin {
namespace {

[[noreturn]] void Fail(const wchar_t* reason) { throw com::Error(E_FAIL, reason, L"Microsoft Outlook"); }

class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) {
        // Clipboard viewers open it for a moment after each change.
        for (int attempt = 0; OpenClipboard(owner) == FALSE; ++attempt) {
            if (attempt == 20) Fail(L"The clipboard is in use by another program");
            Sleep(10);
        }
    }

    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    ~OpenedClipboard() { CloseClipboard(); }
};

/// Empty when the format is not there.
std::vector<std::byte> BlockOf(UINT format) {
    if (IsClipboardFormatAvailable(format) == FALSE) return {};
    const HANDLE block = GetClipboardData(format);
    const void* const bytes = block == nullptr ? nullptr : GlobalLock(block);
    if (bytes == nullptr) return {};
    const std::unique_ptr<void, decltype(&GlobalUnlock)> unlock(block, &GlobalUnlock);
    const auto* const first = static_cast<const std::byte*>(bytes);
    return {first, first + GlobalSize(block)};
}

}  // namespace

ButtonFace FaceFromClipboard(HWND owner) {
    std::vector<std::byte> picture;
    std::vector<std::byte> mask;
    {
        const OpenedClipboard clipboard(owner);
        picture = BlockOf(RegisterClipboardFormatW(L"Toolbar Button Face"));
        if (picture.empty())
            picture = BlockOf(CF_DIB);
        else
            mask = BlockOf(RegisterClipboardFormatW(L"Toolbar Button Mask"));
    }
    if (picture.empty()) Fail(L"The clipboard holds no picture for a button");
    ButtonFace face = FaceFromDib(picture);
    if (!mask.empty()) ApplyMask(face, mask);
    return face;
}

}  // namespace beacon::standin
