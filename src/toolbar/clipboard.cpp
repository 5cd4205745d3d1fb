#include "toolbar/clipboard.h"

#include <algorithm>

#include "support/foreign_window.h"

namespace beacon {
namespace {

bool OwnerAnswers() {
    const HWND owner = GetClipboardOwner();
    return owner == nullptr || TakesMessages(owner);
}

}  // namespace

GlobalBlock NewGlobalBlock(std::span<const std::uint8_t> bytes) noexcept {
    GlobalBlock block(GlobalAlloc(GMEM_SHARE | GMEM_MOVEABLE, bytes.size()));
    if (block == nullptr) return nullptr;
    void* target = GlobalLock(block.get());
    if (target == nullptr) return nullptr;
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(target));
    GlobalUnlock(block.get());
    return block;
}

std::vector<std::uint8_t> BytesOf(HGLOBAL block) {
    std::vector<std::uint8_t> bytes(GlobalSize(block));
    const auto* source = static_cast<const std::uint8_t*>(GlobalLock(block));
    if (source == nullptr) return {};
    std::copy_n(source, bytes.size(), bytes.begin());
    GlobalUnlock(block);
    return bytes;
}

ClipboardSession::ClipboardSession(HWND owner) noexcept {
    constexpr int kAttempts = 5;
    constexpr DWORD kPause = 10;
    for (int attempt = 0; attempt < kAttempts && !open_; ++attempt) {
        if (attempt > 0) Sleep(kPause);
        open_ = OpenClipboard(owner) != FALSE;
    }
}

void ClipboardSession::Close() noexcept {
    if (open_) CloseClipboard();
    open_ = false;
}

bool ClipboardSession::Set(UINT format, GlobalBlock block) noexcept {
    if (block == nullptr || SetClipboardData(format, block.get()) == nullptr) return false;
    static_cast<void>(block.release());  // the clipboard's now
    return true;
}

ClipboardOwner::ClipboardOwner()
    : window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {}

ClipboardOwner::~ClipboardOwner() {
    if (window_ != nullptr) DestroyWindow(window_);
}

ClipboardKeeper::ClipboardKeeper() {
    if (!OwnerAnswers()) return;
    const ClipboardSession clipboard(nullptr);
    if (!clipboard.IsOpen()) return;
    KeepFirstPicture();
    sequence_ = GetClipboardSequenceNumber();
}

void ClipboardKeeper::KeepFirstPicture() {
    const DWORD begun = GetTickCount();
    for (UINT format = EnumClipboardFormats(0); format != 0 && GetTickCount() - begun < kForeignWindowTimeout;
         format = EnumClipboardFormats(format)) {
        if (format == CF_BITMAP || format == CF_DIB || format == CF_DIBV5) {
            // A device-dependent bitmap comes converted: as a block of bytes it needs no owner.
            bitmapFormat_ = format == CF_DIBV5 ? CF_DIBV5 : CF_DIB;
            const HANDLE data = GetClipboardData(bitmapFormat_);
            if (data != nullptr) bitmap_ = BytesOf(data);
            if (!bitmap_.empty()) return;
        } else if (format == CF_ENHMETAFILE || format == CF_METAFILEPICT) {
            const HANDLE data = GetClipboardData(CF_ENHMETAFILE);
            if (data != nullptr) metafile_.reset(CopyEnhMetaFileW(static_cast<HENHMETAFILE>(data), nullptr));
            if (metafile_ != nullptr) return;
        }
    }
}

void ClipboardKeeper::Restore() noexcept {
    if (!IsReady() || GetClipboardSequenceNumber() == sequence_ || GetClipboardOwner() != nullptr) return;
    const ClipboardOwner owner;
    ClipboardSession clipboard(owner.Window());
    if (!clipboard.IsOpen()) return;
    EmptyClipboard();
    if (!bitmap_.empty())
        clipboard.Set(bitmapFormat_, NewGlobalBlock(bitmap_));
    else if (metafile_ != nullptr && SetClipboardData(CF_ENHMETAFILE, metafile_.get()) != nullptr)
        static_cast<void>(metafile_.release());
}

}  // namespace beacon
