#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

namespace beacon {

/// Keeps a copy of the picture on the clipboard while the clipboard serves to build the bar. Only a picture is kept (a
/// bitmap or a metafile, whichever its program offers first); text and other formats are lost to the build.
class ClipboardKeeper {
public:
    /// Takes the copy. A clipboard that cannot be opened counts as one without a picture.
    ClipboardKeeper();

    /// Puts the picture back in place of what is there. Without a picture the clipboard is left empty, so that nobody
    /// pastes a button's face; if nothing was put there since, it is left alone.
    void Restore() noexcept;

private:
    struct DeleteMetafile {
        void operator()(HENHMETAFILE metafile) const { DeleteEnhMetaFile(metafile); }
    };

    void KeepFirstPicture();

    DWORD sequence_ = 0;
    UINT bitmapFormat_ = 0;
    std::vector<std::uint8_t> bitmap_;
    std::unique_ptr<std::remove_pointer_t<HENHMETAFILE>, DeleteMetafile> metafile_;
};

}  // namespace beacon
