#include "toolbar/clipboard_keeper.h"

#include "toolbar/clipboard.h"

namespace beacon {

ClipboardKeeper::ClipboardKeeper() {
    const ClipboardSession clipboard(nullptr);
    if (clipboard.IsOpen()) KeepFirstPicture();
    sequence_ = GetClipboardSequenceNumber();
}

void ClipboardKeeper::KeepFirstPicture() {
    for (UINT format = EnumClipboardFormats(0); format != 0; format = EnumClipboardFormats(format)) {
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
    if (GetClipboardSequenceNumber() == sequence_) return;
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
