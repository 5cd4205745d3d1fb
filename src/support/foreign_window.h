#pragma once

#include <windows.h>

/// Windows of other programs, which may hang.
namespace beacon {

/// Time-out for a message to such a window, in ms. The user waits for it.
inline constexpr UINT kForeignWindowTimeout = 1000;

/// Whether a window answers within the time-out. Messages that other threads send are processed meanwhile.
inline bool TakesMessages(HWND window) noexcept {
    DWORD_PTR answer = 0;
    return SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, kForeignWindowTimeout, &answer) != 0;
}

}  // namespace beacon
