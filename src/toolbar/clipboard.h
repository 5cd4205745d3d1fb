#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <type_traits>

#include "com/handle.h"

namespace beacon {

/// A movable, shareable block with these bytes, or with those of another block; null if there is no memory.
com::UniqueGlobal NewGlobalBlock(std::span<const std::uint8_t> bytes) noexcept;
com::UniqueGlobal CopyOf(HGLOBAL block) noexcept;

/// Keeps the clipboard open for its lifetime. While another program has it open, opening is retried for `patience` ms;
/// the default is too short for a user to notice.
class ClipboardSession {
public:
    explicit ClipboardSession(HWND owner, DWORD patience = 40) noexcept;
    ClipboardSession(const ClipboardSession&) = delete;
    ClipboardSession& operator=(const ClipboardSession&) = delete;

    ~ClipboardSession() { Close(); }

    bool IsOpen() const { return open_; }

    void Close() noexcept;
    /// Transfers the block to the clipboard, or frees it if the clipboard does not accept it.
    bool Set(UINT format, com::UniqueGlobal block) noexcept;

private:
    bool open_ = false;
};

struct DestroyOwner {
    void operator()(HWND window) const noexcept { DestroyWindow(window); }
};

/// An invisible window that owns the clipboard. If the clipboard is emptied without an owner, Windows rejects the data
/// that is put there next. Null if it could not be created.
using ClipboardOwner = std::unique_ptr<HWND__, DestroyOwner>;
ClipboardOwner MakeClipboardOwner() noexcept;

/// A copy of the picture on the clipboard, for the time in which the clipboard serves to build the bar. Only a picture
/// is copied: a bitmap or a metafile, whichever its program lists first. Text and other formats are lost to the build.
class ClipboardBackup {
public:
    /// Takes the copy. Fails if another program has the clipboard open, if the program that owns it does not answer
    /// (Windows would wait for it to render the picture), or if the picture cannot be copied.
    ClipboardBackup() noexcept;

    /// Whether the content has been saved, so that it may be replaced.
    bool IsTaken() const { return sequence_.has_value(); }

    /// Puts the picture back, or empties the clipboard if there was none, so that no user pastes a button's face. Does
    /// nothing if nothing was replaced, or if a window owns the clipboard: another program has put data there since.
    /// Needs no memory. Retries for a second; false if the clipboard stayed busy, so that the picture is lost.
    bool Restore() noexcept;

private:
    struct DeleteMetafile {
        void operator()(HENHMETAFILE metafile) const { DeleteEnhMetaFile(metafile); }
    };

    bool CopyFirstPicture() noexcept;
    bool IsUnchangedOrReplaced() const noexcept;

    const ClipboardOwner owner_ = MakeClipboardOwner();
    std::optional<DWORD> sequence_;  // the clipboard's sequence number when the copy was taken
    UINT bitmapFormat_ = 0;
    com::UniqueGlobal bitmap_;
    std::unique_ptr<std::remove_pointer_t<HENHMETAFILE>, DeleteMetafile> metafile_;
};

}  // namespace beacon
