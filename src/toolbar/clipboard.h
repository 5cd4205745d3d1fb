#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

namespace beacon {

struct FreeGlobal {
    void operator()(HGLOBAL block) const { GlobalFree(block); }
};

/// A movable, shareable block as the clipboard takes it.
using GlobalBlock = std::unique_ptr<std::remove_pointer_t<HGLOBAL>, FreeGlobal>;

/// Null when there is no memory.
GlobalBlock NewGlobalBlock(size_t size) noexcept;
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

}  // namespace beacon
