#include "toolbar/clipboard.h"

#include <algorithm>
#include <utility>

#include "support/foreign_window.h"

namespace beacon {
namespace {

bool OwnerAnswers() {
    const HWND owner = GetClipboardOwner();
    return owner == nullptr || TakesMessages(owner);
}

}  // namespace

com::UniqueGlobal NewGlobalBlock(std::span<const std::uint8_t> bytes) noexcept {
    com::UniqueGlobal block(GlobalAlloc(GMEM_SHARE | GMEM_MOVEABLE, bytes.size()));
    if (block == nullptr) return nullptr;
    void* target = GlobalLock(block.get());
    if (target == nullptr) return nullptr;
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(target));
    GlobalUnlock(block.get());
    return block;
}

com::UniqueGlobal CopyOf(HGLOBAL block) noexcept {
    const auto* source = static_cast<const std::uint8_t*>(GlobalLock(block));
    if (source == nullptr) return nullptr;
    com::UniqueGlobal copy = NewGlobalBlock({source, GlobalSize(block)});
    GlobalUnlock(block);
    return copy;
}

ClipboardSession::ClipboardSession(HWND owner, DWORD patience) noexcept {
    constexpr DWORD kPause = 10;
    const DWORD begun = GetTickCount();
    while (true) {
        open_ = OpenClipboard(owner) != FALSE;
        if (open_ || GetTickCount() - begun >= patience) return;
        Sleep(kPause);
    }
}

void ClipboardSession::Close() noexcept {
    if (open_) CloseClipboard();
    open_ = false;
}

bool ClipboardSession::Set(UINT format, com::UniqueGlobal block) noexcept {
    if (block == nullptr || SetClipboardData(format, block.get()) == nullptr) return false;
    static_cast<void>(block.release());  // now the clipboard's
    return true;
}

ClipboardOwner MakeClipboardOwner() noexcept {
    return ClipboardOwner(
        CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
}

ClipboardBackup::ClipboardBackup() noexcept {
    if (owner_ == nullptr || !OwnerAnswers()) return;
    const ClipboardSession clipboard(nullptr);
    if (clipboard.IsOpen() && CopyFirstPicture()) sequence_ = GetClipboardSequenceNumber();
}

/// False if there is a picture and no copy of it could be made in time.
bool ClipboardBackup::CopyFirstPicture() noexcept {
    const DWORD begun = GetTickCount();
    bool hasPicture = false;
    for (UINT format = EnumClipboardFormats(0); format != 0; format = EnumClipboardFormats(format)) {
        const bool isBitmap = format == CF_BITMAP || format == CF_DIB || format == CF_DIBV5;
        if (!isBitmap && format != CF_ENHMETAFILE && format != CF_METAFILEPICT) continue;
        hasPicture = true;
        if (GetTickCount() - begun >= kForeignWindowTimeout) break;
        // Windows converts a device-dependent bitmap to a block of bytes and an old metafile to an enhanced one.
        bitmapFormat_ = format == CF_DIBV5 ? CF_DIBV5 : CF_DIB;
        const HANDLE data = GetClipboardData(isBitmap ? bitmapFormat_ : CF_ENHMETAFILE);
        if (data == nullptr) continue;
        if (isBitmap)
            bitmap_ = CopyOf(data);
        else
            metafile_.reset(CopyEnhMetaFileW(static_cast<HENHMETAFILE>(data), nullptr));
        if (bitmap_ != nullptr || metafile_ != nullptr) return true;
    }
    return !hasPicture;
}

bool ClipboardBackup::IsUnchangedOrReplaced() const noexcept {
    return GetClipboardSequenceNumber() == sequence_ || GetClipboardOwner() != nullptr;
}

bool ClipboardBackup::Restore() noexcept {
    constexpr DWORD kPatience = 1000;
    if (!IsTaken() || IsUnchangedOrReplaced()) return true;
    ClipboardSession clipboard(owner_.get(), kPatience);
    if (!clipboard.IsOpen()) return false;
    if (IsUnchangedOrReplaced()) return true;
    if (!EmptyClipboard()) return false;
    if (bitmap_ != nullptr) return clipboard.Set(bitmapFormat_, std::move(bitmap_));
    if (metafile_ == nullptr) return true;
    if (SetClipboardData(CF_ENHMETAFILE, metafile_.get()) == nullptr) return false;
    static_cast<void>(metafile_.release());  // now the clipboard's
    return true;
}

}  // namespace beacon
