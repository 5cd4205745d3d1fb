#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

namespace beacon {

struct FreeGlobal {
    void operator()(HGLOBAL block) const { GlobalFree(block); }
};

/// A movable, shareable block as the clipboard takes it.
using GlobalBlock = std::unique_ptr<std::remove_pointer_t<HGLOBAL>, FreeGlobal>;

/// A block with these bytes; null when there is no memory.
GlobalBlock NewGlobalBlock(std::span<const std::uint8_t> bytes) noexcept;
/// All bytes of a block, which stays its owner's.
std::vector<std::uint8_t> BytesOf(HGLOBAL block);

/// The clipboard, open for as long as this lives. Another program may have it open just now, so opening is tried for up
/// to 40 ms, which nobody notices, before it counts as failed.
class ClipboardSession {
public:
    explicit ClipboardSession(HWND owner) noexcept;
    ClipboardSession(const ClipboardSession&) = delete;
    ClipboardSession& operator=(const ClipboardSession&) = delete;

    ~ClipboardSession() { Close(); }

    bool IsOpen() const { return open_; }

    void Close() noexcept;
    /// Hands the block over; it is freed when the clipboard does not take it.
    bool Set(UINT format, GlobalBlock block) noexcept;

private:
    bool open_ = false;
};

/// An invisible window to own the clipboard: without one, emptying it leaves it without an owner and Windows then
/// refuses what is put there.
class ClipboardOwner {
public:
    ClipboardOwner();
    ClipboardOwner(const ClipboardOwner&) = delete;
    ClipboardOwner& operator=(const ClipboardOwner&) = delete;
    ~ClipboardOwner();

    HWND Window() const { return window_; }

private:
    HWND window_;
};

/// Keeps a copy of the picture on the clipboard while the clipboard serves to build the bar. Only a picture is kept (a
/// bitmap or a metafile, whichever its program offers first); text and other formats are lost to the build.
class ClipboardKeeper {
public:
    /// Takes the copy, unless another program has the clipboard open or the one that owns it does not answer: it may be
    /// asked to make the picture only now, and to let go of it, and Windows waits for that.
    ClipboardKeeper();

    /// Whether the clipboard's content has been seen to, and may be replaced.
    bool IsReady() const { return sequence_.has_value(); }

    /// Puts the picture back in place of what is there. Without a picture the clipboard is left empty, so that nobody
    /// pastes a button's face. What a window owns by then is another's, since that of the faces is gone, and stays.
    void Restore() noexcept;

private:
    struct DeleteMetafile {
        void operator()(HENHMETAFILE metafile) const { DeleteEnhMetaFile(metafile); }
    };

    void KeepFirstPicture();

    std::optional<DWORD> sequence_;  // the clipboard's number when its content had been seen to
    UINT bitmapFormat_ = 0;
    std::vector<std::uint8_t> bitmap_;
    std::unique_ptr<std::remove_pointer_t<HENHMETAFILE>, DeleteMetafile> metafile_;
};

}  // namespace beacon
