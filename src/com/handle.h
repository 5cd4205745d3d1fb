#pragma once

#include <windows.h>

#include <memory>

namespace beacon::com {

struct CloseSystemHandle {
    void operator()(HANDLE object) const noexcept { CloseHandle(object); }

    void operator()(HKEY key) const noexcept { RegCloseKey(key); }

    void operator()(HDC context) const noexcept { DeleteDC(context); }

    void operator()(HBITMAP bitmap) const noexcept { DeleteObject(bitmap); }

    void operator()(HPALETTE palette) const noexcept { DeleteObject(palette); }
};

struct FreeGlobalMemory {
    void operator()(HGLOBAL memory) const noexcept { GlobalFree(memory); }
};

/// Owners of a handle, which is never INVALID_HANDLE_VALUE. Null owns nothing.
using UniqueHandle = std::unique_ptr<void, CloseSystemHandle>;  ///< of a file, an event, a process, ...
using UniqueKey = std::unique_ptr<HKEY__, CloseSystemHandle>;
using UniqueDc = std::unique_ptr<HDC__, CloseSystemHandle>;  ///< made by CreateCompatibleDC; ReleaseDC is for others
using UniqueBitmap = std::unique_ptr<HBITMAP__, CloseSystemHandle>;
using UniquePalette = std::unique_ptr<HPALETTE__, CloseSystemHandle>;
using UniqueGlobal = std::unique_ptr<void, FreeGlobalMemory>;

/// Owns what CreateFile returned; null when that failed.
inline UniqueHandle OwnFile(HANDLE file) { return UniqueHandle(file == INVALID_HANDLE_VALUE ? nullptr : file); }

}  // namespace beacon::com
