#include "outlook/bars/face_clipboard.h"

#include <cstring>

#include "com/error.h"

namespace beacon::standin {
namespace {

UINT FaceFormat() { return RegisterClipboardFormatW(L"Toolbar Button Face"); }

UINT MaskFormat() { return RegisterClipboardFormatW(L"Toolbar Button Mask"); }

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
    std::vector<std::byte> copy;
    try {
        copy.resize(GlobalSize(block));
        std::memcpy(copy.data(), bytes, copy.size());
    } catch (...) {
        GlobalUnlock(block);
        throw;
    }
    GlobalUnlock(block);
    return copy;
}

void Put(UINT format, const std::vector<std::byte>& bytes) {
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    void* const target = block == nullptr ? nullptr : GlobalLock(block);
    if (target == nullptr) Fail(L"Not enough memory for the clipboard");
    std::memcpy(target, bytes.data(), bytes.size());
    GlobalUnlock(block);
    if (SetClipboardData(format, block) == nullptr) {
        GlobalFree(block);
        Fail(L"The clipboard does not take the button's face");
    }
}

}  // namespace

ButtonFace FaceFromClipboard(HWND owner) {
    std::vector<std::byte> picture;
    std::vector<std::byte> mask;
    {
        const OpenedClipboard clipboard(owner);
        picture = BlockOf(FaceFormat());
        if (picture.empty())
            picture = BlockOf(CF_DIB);
        else
            mask = BlockOf(MaskFormat());
    }
    if (picture.empty()) Fail(L"The clipboard holds no picture for a button");
    ButtonFace face = FaceFromDib(picture);
    if (!mask.empty()) ApplyMask(face, mask);
    if (face.width > kLargestFace || face.height > kLargestFace) face = Scaled(face, kFaceSize, kFaceSize);
    return face;
}

void FaceToClipboard(HWND owner, const ButtonFace& face) {
    if (face.Empty()) Fail(L"The button has no face of its own");
    const OpenedClipboard clipboard(owner);
    EmptyClipboard();
    Put(CF_DIB, DibFromFace(face));
    Put(FaceFormat(), DibFromFace(face));
    Put(MaskFormat(), MaskFromFace(face));
}

}  // namespace beacon::standin
